// A vertex attribute that the caller may be using.
#ifndef ZUQEL_GL_VERTEX_ATTRIBUTE_H_
#define ZUQEL_GL_VERTEX_ATTRIBUTE_H_

#include <GLES2/gl2.h>

namespace zuqel {

// Saves one attribute's array and restores it when it dies. Array buffer 0 is
// bound, and stays so. Between them the attribute advances per vertex, also
// where the caller had made it advance per instance.
class SavedVertexAttribute {
 public:
  SavedVertexAttribute(GLuint index, bool is_es3);
  ~SavedVertexAttribute();
  SavedVertexAttribute(const SavedVertexAttribute&) = delete;
  SavedVertexAttribute& operator=(const SavedVertexAttribute&) = delete;

 private:
  [[nodiscard]] GLint Get(GLenum value) const;

  GLuint index_;
  GLint is_enabled_;
  GLint component_count_;
  GLint type_;
  GLint is_normalised_;
  GLint stride_bytes_;
  GLint buffer_;
  GLint is_integer_ = 0;  // ES 3, as the next one
  GLint divisor_ = 0;
  void* pointer_ = nullptr;
};

}  // namespace zuqel

#endif  // ZUQEL_GL_VERTEX_ATTRIBUTE_H_
