// Graphic buffers on Linux: each is a GL texture shared as an EGL image, made
// and read on the thread whose context is current.
#include <EGL/egl.h>
#include <GLES2/gl2.h>
#include <native_buffer.h>
#include <sys/system_properties.h>

#include <array>
#include <map>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

#include "gb_wrapper.h"

namespace {

class TextureBuffer {
 public:
  TextureBuffer(int width, int height) {
    context_ = eglGetCurrentContext();
    native_.width = width;
    native_.height = height;
    GLint bound = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    glGenTextures(1, &native_.texture);
    glBindTexture(GL_TEXTURE_2D, native_.texture);
    // Above its maximum size, a driver's own arithmetic may overflow.
    GLint largest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    if (width <= largest && height <= largest) {
      // A frame on screen reads what nobody has written. Also, a driver that
      // zeroes memory late does not see what is written through the EGL image.
      const std::vector<unsigned char> zeros(ByteCount());
      glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA,
                   GL_UNSIGNED_BYTE, zeros.data());
    }
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(bound));
  }
  // In another context the name may belong to another texture.
  ~TextureBuffer() {
    if (eglGetCurrentContext() == context_) {
      glDeleteTextures(1, &native_.texture);
    }
  }
  TextureBuffer(const TextureBuffer&) = delete;
  TextureBuffer& operator=(const TextureBuffer&) = delete;

  zuqel::NativeBuffer* native() { return &native_; }

  // The texture's pixels, valid until Unlock.
  void* Lock() {
    pixels_.resize(ByteCount());
    GLint bound = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                           native_.texture, 0);
    glReadPixels(0, 0, native_.width, native_.height, GL_RGBA, GL_UNSIGNED_BYTE,
                 pixels_.data());
    glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(bound));
    glDeleteFramebuffers(1, &framebuffer);
    return pixels_.data();
  }
  void Unlock() { pixels_ = {}; }

 private:
  [[nodiscard]] size_t ByteCount() const {
    return static_cast<size_t>(native_.width) *
           static_cast<size_t>(native_.height) * 4;
  }

  EGLContext context_ = EGL_NO_CONTEXT;
  zuqel::NativeBuffer native_;
  std::vector<unsigned char> pixels_;
};

bool PropertyIs(std::string_view text) {
  std::array<char, PROP_VALUE_MAX> value = {};
  __system_property_get("zuqel.graphicbuffer", value.data());
  return std::string_view(value.data()) == text;
}

using Buffers = std::map<int, std::unique_ptr<TextureBuffer>>;

// The buffers live in the wrapper's opaque storage.
template <typename Storage>
Buffers& BuffersIn(Storage& storage) {
  static_assert(sizeof(Buffers) <= sizeof(Storage));
  return *std::launder(reinterpret_cast<Buffers*>(storage.data()));
}

}  // namespace

bool isValidGBWrapper() {
  return !PropertyIs("0");
}

GBWrapper::GBWrapper() {
  new (storage_.data()) Buffers;
}

GBWrapper::~GBWrapper() {
  BuffersIn(storage_).~Buffers();
}

int GBWrapper::AllocBuffer(int width, int height, unsigned /*format*/,
                           int index) {
  BuffersIn(storage_)[index] = std::make_unique<TextureBuffer>(width, height);
  return 0;
}

void* GBWrapper::getNativeBuffer(int index) {
  const auto found = BuffersIn(storage_).find(index);
  return found == BuffersIn(storage_).end() ? nullptr : found->second->native();
}

int GBWrapper::lock_read(void** pixels, int index) {
  const auto found = BuffersIn(storage_).find(index);
  const bool can_read =
      found != BuffersIn(storage_).end() && !PropertyIs("unreadable");
  *pixels = can_read ? found->second->Lock() : nullptr;
  return can_read ? 0 : -1;
}

int GBWrapper::unlock(int index) {
  const auto found = BuffersIn(storage_).find(index);
  if (found == BuffersIn(storage_).end()) return -1;
  found->second->Unlock();
  return 0;
}
