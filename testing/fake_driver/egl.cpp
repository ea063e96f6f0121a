// Displays, contexts, surfaces and images.
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include <sstream>
#include <string_view>
#include <utility>

#include "fake_driver/context.h"
#include "fake_driver/extension_calls.h"

namespace zuqel::fake_driver {

thread_local Context* current_context = nullptr;

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;

// The address of each is a handle; of display and config for good.
char the_display, the_config;
std::atomic<bool> is_initialised{false};
thread_local EGLint last_error = EGL_SUCCESS;

// Handles come round again after this many.
std::array<char, size_t{1} << 22> handle_space;
Counter handles_made;

// What a handle stands for, destroyed when it is neither wanted nor current.
struct Handled {
  static constexpr int kCurrent = 1, kUnwanted = 2;
  std::atomic<int> state{0};
};

struct EglContext : Handled {
  explicit EglContext(int version) : context(version) {}
  Context context;
};

struct EglSurface : Handled {
  std::shared_ptr<Image> image;
};

struct EglImage : Handled {
  std::shared_ptr<Image> image;
};

void NoteNames(const Context& context) {
  std::ostringstream text;
  const auto add = [&](size_t count, const char* kind) {
    if (count == 0) return;
    text << (text.tellp() == 0 ? "" : ", ") << count << " " << kind;
  };
  add(context.textures.size(), "textures");
  add(context.renderbuffers.size(), "renderbuffers");
  add(context.framebuffers.size(), "framebuffers");
  add(context.shaders.size(), "shaders");
  add(context.programs.size(), "programs");
  add(context.buffers.size(), "buffers");
  if (text.tellp() != 0) NoteAbandoned(text.str());
}

void Delete(EglContext* context) {
  NoteNames(context->context);
  delete context;
  living.contexts.Add(-1);
}
void Delete(EglSurface* surface) {
  delete surface;
  living.surfaces.Add(-1);
}
void Delete(EglImage* image) {
  delete image;
  living.images.Add(-1);
}

template <typename T>
void Unwant(T* object) {
  const int before = object->state.fetch_or(Handled::kUnwanted);
  if ((before & Handled::kCurrent) == 0) Delete(object);
}

template <typename T>
void EndCurrent(T* object) {
  const int before = object->state.fetch_and(~Handled::kCurrent);
  if ((before & Handled::kUnwanted) != 0) Delete(object);
}

// Objects by handle, without a lock: who passes a handle on to another thread
// has to order that.
template <typename T>
class Handles {
 public:
  void* Add(T* object) {
    void* const handle =
        &handle_space[static_cast<size_t>(handles_made.Add(1)) %
                      handle_space.size()];
    for (Slot& slot : slots_) {
      T* unused = nullptr;
      if (!slot.object.compare_exchange_strong(unused, object, kRelaxed)) {
        continue;
      }
      slot.handle.store(handle, kRelaxed);
      return handle;
    }
    std::abort();
  }
  T* Find(const void* handle) {
    for (Slot& slot : slots_) {
      if (handle != nullptr && slot.handle.load(kRelaxed) == handle) {
        return slot.object.load(kRelaxed);
      }
    }
    return nullptr;
  }
  // Null where it is not here.
  T* Remove(const void* handle) {
    for (Slot& slot : slots_) {
      if (handle == nullptr || slot.handle.load(kRelaxed) != handle) continue;
      slot.handle.store(nullptr, kRelaxed);
      return slot.object.exchange(nullptr, kRelaxed);
    }
    return nullptr;
  }
  // Those that were left.
  int RemoveAll() {
    int count = 0;
    for (Slot& slot : slots_) {
      slot.handle.store(nullptr, kRelaxed);
      T* const object = slot.object.exchange(nullptr, kRelaxed);
      if (object == nullptr) continue;
      Unwant(object);
      ++count;
    }
    return count;
  }

 private:
  struct Slot {
    std::atomic<void*> handle{nullptr};
    std::atomic<T*> object{nullptr};
  };
  std::array<Slot, 64> slots_;
};

Handles<EglContext> contexts;
Handles<EglSurface> surfaces;
Handles<EglImage> images;

// What is current on this thread.
struct Current {
  EGLContext handle = EGL_NO_CONTEXT;
  EglContext* context = nullptr;
  EGLSurface surface_handle = EGL_NO_SURFACE;
  EglSurface* surface = nullptr;
};
thread_local Current current;

// Counts a call. True if it goes on; else its error is set.
bool EnterEgl(Call call, EGLint error_when_failing = EGL_BAD_ALLOC) {
  const bool fails = Fails(call);
  last_error = fails ? error_when_failing : EGL_SUCCESS;
  return !fails;
}

template <typename Result>
Result EglFault(Call call, EGLint code, Result result) {
  last_error = code;
  NoteError(call, static_cast<unsigned>(code));
  return result;
}

bool IsReady(Call call, EGLDisplay display) {
  if (display != &the_display) return EglFault(call, EGL_BAD_DISPLAY, false);
  if (!is_initialised.load(kRelaxed)) {
    return EglFault(call, EGL_NOT_INITIALIZED, false);
  }
  return true;
}

EGLint AttributeOf(const EGLint* attributes, EGLint name, EGLint absent) {
  for (; attributes != nullptr && *attributes != EGL_NONE; attributes += 2) {
    if (attributes[0] == name) absent = attributes[1];
  }
  return absent;
}

template <typename T>
EGLBoolean Destroy(Call call, EGLDisplay display, Handles<T>& handles,
                   const void* handle, EGLint code) {
  if (!EnterEgl(call)) return EGL_FALSE;
  if (!IsReady(call, display)) return EGL_FALSE;
  T* const object = handles.Remove(handle);
  if (object == nullptr) return EglFault(call, code, EGLBoolean{EGL_FALSE});
  Unwant(object);
  return EGL_TRUE;
}

EGLDisplay GivePlatformDisplay(EGLenum, void*, const EGLint*) {
  return EnterEgl(Call::eglGetPlatformDisplay) ? &the_display : EGL_NO_DISPLAY;
}

// Of textures of the current context only.
EGLImageKHR CreateImage(EGLDisplay display, EGLContext handle, EGLenum target,
                        EGLClientBuffer buffer, const EGLint*) {
  constexpr Call kCall = Call::eglCreateImageKHR;
  if (!EnterEgl(kCall) || !IsReady(kCall, display)) return EGL_NO_IMAGE_KHR;
  if (handle == EGL_NO_CONTEXT || handle != current.handle) {
    return EglFault(kCall, EGL_BAD_CONTEXT, EGL_NO_IMAGE_KHR);
  }
  const auto name = reinterpret_cast<uintptr_t>(buffer);
  const auto texture =
      current_context->textures.Find(static_cast<GLuint>(name));
  if (target != EGL_GL_TEXTURE_2D_KHR || !texture || !texture->image) {
    return EglFault(kCall, EGL_BAD_PARAMETER, EGL_NO_IMAGE_KHR);
  }
  living.images.Add(1);
  return images.Add(new EglImage{{}, texture->image});
}

EGLBoolean DestroyImage(EGLDisplay display, EGLImageKHR image) {
  return Destroy(Call::eglDestroyImageKHR, display, images, image,
                 EGL_BAD_PARAMETER);
}

void ImageTargetTexture(GLenum target, GLeglImageOES handle) {
  ZUQEL_ENTER(glEGLImageTargetTexture2DOES);
  const EglImage* const image = images.Find(handle);
  const auto texture = c.TextureOf(c.active_unit);
  ZUQEL_REQUIRE(target == GL_TEXTURE_2D, GL_INVALID_ENUM);
  ZUQEL_REQUIRE(image != nullptr, GL_INVALID_VALUE);
  if (texture) texture->image = image->image;
}

using AnyFunction = __eglMustCastToProperFunctionPointerType;

struct Extension {
  std::string_view name;
  AnyFunction function;
};

}  // namespace
}  // namespace zuqel::fake_driver

using namespace zuqel::fake_driver;

EGLDisplay eglGetDisplay(EGLNativeDisplayType) {
  return EnterEgl(Call::eglGetDisplay) ? &the_display : EGL_NO_DISPLAY;
}

EGLDisplay eglGetPlatformDisplay(EGLenum, void*, const EGLAttrib*) {
  return GivePlatformDisplay(0, nullptr, nullptr);
}

EGLBoolean eglInitialize(EGLDisplay display, EGLint* major, EGLint* minor) {
  constexpr Call kCall = Call::eglInitialize;
  if (!EnterEgl(kCall, EGL_NOT_INITIALIZED)) return EGL_FALSE;
  if (display != &the_display) {
    return EglFault(kCall, EGL_BAD_DISPLAY, EGLBoolean{EGL_FALSE});
  }
  if (major != nullptr) *major = 1;
  if (minor != nullptr) *minor = 5;
  is_initialised.store(true, kRelaxed);
  return EGL_TRUE;
}

EGLBoolean eglTerminate(EGLDisplay display) {
  constexpr Call kCall = Call::eglTerminate;
  if (!EnterEgl(kCall)) return EGL_FALSE;
  if (display != &the_display) {
    return EglFault(kCall, EGL_BAD_DISPLAY, EGLBoolean{EGL_FALSE});
  }
  is_initialised.store(false, kRelaxed);
  contexts.RemoveAll();
  surfaces.RemoveAll();
  if (images.RemoveAll() > 0) NoteMisuse(kCall, "an image is left");
  return EGL_TRUE;
}

const char* eglQueryString(EGLDisplay display, EGLint) {
  constexpr Call kCall = Call::eglQueryString;
  return EnterEgl(kCall) && IsReady(kCall, display) ? "" : nullptr;
}

// No config can draw to windows.
EGLBoolean eglChooseConfig(EGLDisplay display, const EGLint* attributes,
                           EGLConfig* configs, EGLint size, EGLint* count) {
  constexpr Call kCall = Call::eglChooseConfig;
  if (!EnterEgl(kCall) || !IsReady(kCall, display)) return EGL_FALSE;
  const EGLint type = AttributeOf(attributes, EGL_SURFACE_TYPE, EGL_WINDOW_BIT);
  *count = (type & EGL_WINDOW_BIT) == 0 && size > 0 ? 1 : 0;
  if (*count == 1) configs[0] = &the_config;
  return EGL_TRUE;
}

EGLSurface eglCreatePbufferSurface(EGLDisplay display, EGLConfig config,
                                   const EGLint* attributes) {
  constexpr Call kCall = Call::eglCreatePbufferSurface;
  if (!EnterEgl(kCall) || !IsReady(kCall, display)) return EGL_NO_SURFACE;
  if (config != &the_config) {
    return EglFault(kCall, EGL_BAD_CONFIG, EGL_NO_SURFACE);
  }
  auto* surface = new EglSurface;
  surface->image = std::make_shared<Image>();
  surface->image->width = AttributeOf(attributes, EGL_WIDTH, 0);
  surface->image->height = AttributeOf(attributes, EGL_HEIGHT, 0);
  living.surfaces.Add(1);
  return surfaces.Add(surface);
}

EGLContext eglCreateContext(EGLDisplay display, EGLConfig config,
                            EGLContext share, const EGLint* attributes) {
  constexpr Call kCall = Call::eglCreateContext;
  if (!EnterEgl(kCall) || !IsReady(kCall, display)) return EGL_NO_CONTEXT;
  if (config != &the_config) {
    return EglFault(kCall, EGL_BAD_CONFIG, EGL_NO_CONTEXT);
  }
  if (share != EGL_NO_CONTEXT) {  // nobody here shares objects
    return EglFault(kCall, EGL_BAD_CONTEXT, EGL_NO_CONTEXT);
  }
  living.contexts.Add(1);
  return contexts.Add(
      new EglContext(AttributeOf(attributes, EGL_CONTEXT_CLIENT_VERSION, 1)));
}

EGLBoolean eglDestroyContext(EGLDisplay display, EGLContext context) {
  return Destroy(Call::eglDestroyContext, display, contexts, context,
                 EGL_BAD_CONTEXT);
}

EGLBoolean eglDestroySurface(EGLDisplay display, EGLSurface surface) {
  return Destroy(Call::eglDestroySurface, display, surfaces, surface,
                 EGL_BAD_SURFACE);
}

EGLBoolean eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read,
                          EGLContext handle) {
  constexpr Call kCall = Call::eglMakeCurrent;
  constexpr auto kFalse = EGLBoolean{EGL_FALSE};
  if (!EnterEgl(kCall)) return EGL_FALSE;
  // Nothing can be made current at any time.
  if (handle != EGL_NO_CONTEXT && !IsReady(kCall, display)) return EGL_FALSE;
  EglContext* const context = contexts.Find(handle);
  EglSurface* const surface = surfaces.Find(draw);
  if (handle != EGL_NO_CONTEXT && context == nullptr) {
    return EglFault(kCall, EGL_BAD_CONTEXT, kFalse);
  }
  if (draw != read || (draw != EGL_NO_SURFACE && surface == nullptr)) {
    return EglFault(kCall, EGL_BAD_SURFACE, kFalse);
  }
  if (context != current.context && context != nullptr &&
      (context->state.fetch_or(Handled::kCurrent) & Handled::kCurrent) != 0) {
    return EglFault(kCall, EGL_BAD_ACCESS, kFalse);
  }
  if (surface != nullptr) surface->state.fetch_or(Handled::kCurrent);
  const Current before = current;
  current = {handle, context, draw, surface};
  current_context = context == nullptr ? nullptr : &context->context;
  if (before.context != nullptr && before.context != context) {
    EndCurrent(before.context);
  }
  if (before.surface != nullptr && before.surface != surface) {
    EndCurrent(before.surface);
  }
  if (context == nullptr) return EGL_TRUE;
  context->context.surface = surface == nullptr ? nullptr : surface->image;
  if (surface != nullptr && context->context.viewport[2] == 0) {
    context->context.viewport = {0, 0, surface->image->width,
                                 surface->image->height};
  }
  return EGL_TRUE;
}

EGLContext eglGetCurrentContext() {
  EnterEgl(Call::eglGetCurrentContext);
  return current.handle;
}

EGLDisplay eglGetCurrentDisplay() {
  EnterEgl(Call::eglGetCurrentDisplay);
  return current.context == nullptr ? EGL_NO_DISPLAY : &the_display;
}

EGLSurface eglGetCurrentSurface(EGLint) {
  EnterEgl(Call::eglGetCurrentSurface);
  return current.surface_handle;
}

EGLint eglGetError() {
  static_cast<void>(Fails(Call::eglGetError));
  return std::exchange(last_error, EGL_SUCCESS);
}

AnyFunction eglGetProcAddress(const char* name) {
#define ZUQEL_FUNCTION(name, function)               \
  Extension {                                        \
    name, reinterpret_cast<AnyFunction>(&(function)) \
  }
  static const auto extensions = std::to_array<Extension>({
      ZUQEL_FUNCTION("eglCreateImageKHR", CreateImage),
      ZUQEL_FUNCTION("eglDestroyImageKHR", DestroyImage),
      ZUQEL_FUNCTION("eglGetPlatformDisplayEXT", GivePlatformDisplay),
      ZUQEL_FUNCTION("glBindVertexArray", BindVertexArray),
      ZUQEL_FUNCTION("glEGLImageTargetTexture2DOES", ImageTargetTexture),
      ZUQEL_FUNCTION("glGenVertexArrays", GenVertexArrays),
      ZUQEL_FUNCTION("glGetProgramBinaryOES", GetProgramBinary),
      ZUQEL_FUNCTION("glProgramBinaryOES", ProgramBinary),
      ZUQEL_FUNCTION("glVertexAttribDivisor", VertexAttribDivisor),
      ZUQEL_FUNCTION("glVertexAttribIPointer", VertexAttribIPointer),
  });
#undef ZUQEL_FUNCTION
  if (!EnterEgl(Call::eglGetProcAddress)) return nullptr;
  for (const Extension& row : extensions) {
    if (row.name == name) return row.function;
  }
  return nullptr;
}
