// The way into a context, and where its draws and reads go.
#include "fake_driver/context.h"

namespace zuqel::fake_driver {

Context* Enter(Call call) {
  const bool fails = Fails(call);
  if (current_context == nullptr) {
    NoteMisuse(call, "no context is current");
    return nullptr;
  }
  if (!fails) return current_context;
  if (current_context->error == GL_NO_ERROR) {
    current_context->error = GL_OUT_OF_MEMORY;
  }
  return nullptr;
}

Image* Context::Target(Call call) {
  Image* const target = CompleteTarget();
  if (target == nullptr) Fault(call, GL_INVALID_FRAMEBUFFER_OPERATION);
  return target;
}

Image* Context::CompleteTarget() const {
  if (framebuffer == 0) return surface.get();
  const auto object = framebuffers.Find(framebuffer);
  const auto has_pixels = [](const std::shared_ptr<Texture>& attached) {
    return attached->image && attached->image->width > 0 &&
           attached->image->height > 0;
  };
  if (!object->colour || !has_pixels(object->colour)) return nullptr;
  Image* const image = object->colour->image.get();
  if (object->depth && (!has_pixels(object->depth) ||
                        object->depth->image->width != image->width ||
                        object->depth->image->height != image->height)) {
    return nullptr;
  }
  return image;
}

GLuint Context::BoundBuffer(GLenum target) const {
  if (target == GL_ELEMENT_ARRAY_BUFFER) return vertex_array->element_buffer;
  const auto found = bound_buffers.find(target);
  return found == bound_buffers.end() ? 0 : found->second;
}

const uint8_t* Context::BytesAt(Call call, GLuint buffer, const void* pointer,
                                size_t count) const {
  static constexpr uint8_t kNothing = 0;
  if (count == 0) return &kNothing;
  if (buffer == 0) {
    if (pointer == nullptr) NoteMisuse(call, "reads at a null pointer");
    return static_cast<const uint8_t*>(pointer);
  }
  const auto bytes = buffers.Find(buffer);
  const auto offset = reinterpret_cast<uintptr_t>(pointer);
  if (!bytes || offset > bytes->size() || count > bytes->size() - offset) {
    NoteMisuse(call, "reads outside of a buffer");
    return nullptr;
  }
  return bytes->data() + offset;
}

}  // namespace zuqel::fake_driver
