// Saves and restores vertex attributes.
#include "gl/vertex_attribute.h"

#include "gl/extensions.h"

namespace zuqel {
namespace {

// The ES 3 names that the ES 2 headers lack.
constexpr GLenum kVertexAttribArrayInteger = 0x88FD;
constexpr GLenum kVertexAttribArrayDivisor = 0x88FE;

void SetDivisor(GLuint index, GLint divisor) {
  const auto set_divisor = GetExtensions().VertexAttribDivisor;
  if (set_divisor != nullptr) set_divisor(index, static_cast<GLuint>(divisor));
}

}  // namespace

SavedVertexAttribute::SavedVertexAttribute(GLuint index, bool is_es3)
    : index_(index),
      is_enabled_(Get(GL_VERTEX_ATTRIB_ARRAY_ENABLED)),
      component_count_(Get(GL_VERTEX_ATTRIB_ARRAY_SIZE)),
      type_(Get(GL_VERTEX_ATTRIB_ARRAY_TYPE)),
      is_normalised_(Get(GL_VERTEX_ATTRIB_ARRAY_NORMALIZED)),
      stride_bytes_(Get(GL_VERTEX_ATTRIB_ARRAY_STRIDE)),
      buffer_(Get(GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING)) {
  glGetVertexAttribPointerv(index, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer_);
  if (!is_es3) return;
  is_integer_ = Get(kVertexAttribArrayInteger);
  divisor_ = Get(kVertexAttribArrayDivisor);
  if (divisor_ != 0) SetDivisor(index, 0);
}

SavedVertexAttribute::~SavedVertexAttribute() {
  if (buffer_ != 0) {
    glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(buffer_));
  }
  const auto type = static_cast<GLenum>(type_);
  const auto set_integers = GetExtensions().VertexAttribIPointer;
  if (is_integer_ != 0 && set_integers != nullptr) {
    set_integers(index_, component_count_, type, stride_bytes_, pointer_);
  } else {
    glVertexAttribPointer(index_, component_count_, type,
                          is_normalised_ != 0 ? GL_TRUE : GL_FALSE,
                          stride_bytes_, pointer_);
  }
  if (buffer_ != 0) glBindBuffer(GL_ARRAY_BUFFER, 0);
  if (divisor_ != 0) SetDivisor(index_, divisor_);
  if (is_enabled_ != 0) {
    glEnableVertexAttribArray(index_);
  } else {
    glDisableVertexAttribArray(index_);
  }
}

GLint SavedVertexAttribute::Get(GLenum value) const {
  GLint result = 0;
  glGetVertexAttribiv(index_, value, &result);
  return result;
}

}  // namespace zuqel
