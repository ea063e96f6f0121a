// One display with its contexts, surfaces and images.
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>
#include <GLES3/gl3.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include "fake_driver/context.h"

namespace zuqel::fake_driver {

thread_local Context* current_context = nullptr;

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;

// The address of each is a handle; of display and config for good, of the
// others until they come round again.
char the_display, the_config;
std::array<char, size_t{1} << 22> handle_space;
Counter handles_made;
std::atomic<bool> is_initialised{false};
thread_local EGLint last_error = EGL_SUCCESS;

enum class Kind { kContext, kSurface, kImage };

// What a handle stands for.
struct Object {
  Kind kind;
  std::unique_ptr<Context> context;
  std::shared_ptr<Image> image;
  std::atomic<int> uses{1};  // its handle, and threads that it is current on
};

Counter& LivingOf(Kind kind) {
  if (kind == Kind::kContext) return living.contexts;
  return kind == Kind::kSurface ? living.surfaces : living.images;
}

void EndUse(Object* object) {
  if (object == nullptr || object->uses.fetch_sub(1) > 1) return;
  LivingOf(object->kind).Add(-1);
  delete object;
}

// Without a lock: who passes a handle on to another thread has to order that.
struct Slot {
  std::atomic<void*> handle{nullptr};
  std::atomic<Object*> object{nullptr};
};
std::array<Slot, 64> slots;

void* MakeHandle(Object* object) {
  LivingOf(object->kind).Add(1);
  const auto number = static_cast<size_t>(handles_made.Add(1));
  for (Slot& slot : slots) {
    Object* unused = nullptr;
    if (!slot.object.compare_exchange_strong(unused, object, kRelaxed)) {
      continue;
    }
    slot.handle.store(&handle_space[number % handle_space.size()], kRelaxed);
    return slot.handle.load(kRelaxed);
  }
  std::abort();
}

Slot* SlotOf(const void* handle, Kind kind) {
  for (Slot& slot : slots) {
    if (handle == nullptr || slot.handle.load(kRelaxed) != handle) continue;
    return slot.object.load(kRelaxed)->kind == kind ? &slot : nullptr;
  }
  return nullptr;
}

// Null for a handle that is none of the kind.
Object* Find(const void* handle, Kind kind) {
  const Slot* slot = SlotOf(handle, kind);
  return slot == nullptr ? nullptr : slot->object.load(kRelaxed);
}

Object* Empty(Slot& slot) {
  slot.handle.store(nullptr, kRelaxed);
  return slot.object.exchange(nullptr, kRelaxed);
}

// What is current on this thread.
struct Current {
  EGLContext handle = EGL_NO_CONTEXT;
  Object* context = nullptr;
  EGLSurface surface_handle = EGL_NO_SURFACE;
  Object* surface = nullptr;
};
thread_local Current current;

// Counts a call. True if it goes on; else its error is set.
bool EnterEgl(Call call) {
  const bool fails = Fails(call);
  last_error = fails ? EGL_BAD_ALLOC : EGL_SUCCESS;
  return !fails;
}

// Gives what the call gives, a null handle or EGL_FALSE, with an error.
struct Nothing {
  operator EGLBoolean() const { return EGL_FALSE; }
  operator void*() const { return nullptr; }
};
Nothing EglFault(Call call, EGLint code) {
  last_error = code;
  NoteError(call, static_cast<unsigned>(code));
  return {};
}

// Enters a call on the display, with the given error where `condition` does not
// hold.
bool EnterDisplay(Call call, EGLDisplay display,
                  bool needs_initialised = true) {
  if (!EnterEgl(call)) return false;
  if (display != &the_display)
    return EglFault(call, EGL_BAD_DISPLAY) == EGL_TRUE;
  if (needs_initialised && !is_initialised.load(kRelaxed)) {
    return EglFault(call, EGL_NOT_INITIALIZED) == EGL_TRUE;
  }
  return true;
}

EGLint AttributeOf(const EGLint* attributes, EGLint name, EGLint absent) {
  for (; attributes != nullptr && *attributes != EGL_NONE; attributes += 2) {
    if (attributes[0] == name) absent = attributes[1];
  }
  return absent;
}

EGLBoolean Destroy(Call call, EGLDisplay display, const void* handle, Kind kind,
                   EGLint code) {
  if (!EnterDisplay(call, display)) return EGL_FALSE;
  Slot* const slot = SlotOf(handle, kind);
  if (slot == nullptr) return EglFault(call, code);
  EndUse(Empty(*slot));
  return EGL_TRUE;
}

// Each device is its list of extensions.
std::vector<const char*> devices;

EGLBoolean QueryDevices(EGLint size, EGLDeviceEXT* handles, EGLint* count) {
  *count = static_cast<EGLint>(devices.size());
  for (EGLint i = 0; i < std::min(size, *count); ++i) {
    handles[i] = &devices[static_cast<size_t>(i)];
  }
  return EGL_TRUE;
}

const char* QueryDeviceString(EGLDeviceEXT device, EGLint) {
  return *static_cast<const char**>(device);
}

EGLDisplay GetPlatformDisplay(EGLenum, void*, const EGLint*) {
  return EnterEgl(Call::eglGetPlatformDisplay) ? &the_display : EGL_NO_DISPLAY;
}

// Of textures of the current context only.
EGLImageKHR CreateImage(EGLDisplay display, EGLContext context, EGLenum target,
                        EGLClientBuffer buffer, const EGLint*) {
  constexpr Call kCall = Call::eglCreateImageKHR;
  if (!EnterDisplay(kCall, display)) return EGL_NO_IMAGE_KHR;
  if (context == EGL_NO_CONTEXT || context != current.handle) {
    return EglFault(kCall, EGL_BAD_CONTEXT);
  }
  const auto name = static_cast<GLuint>(reinterpret_cast<uintptr_t>(buffer));
  const auto texture = current_context->textures.Find(name);
  if (target != EGL_GL_TEXTURE_2D_KHR || !texture || !texture->image) {
    return EglFault(kCall, EGL_BAD_PARAMETER);
  }
  return MakeHandle(new Object{Kind::kImage, nullptr, texture->image});
}

EGLBoolean DestroyImage(EGLDisplay display, EGLImageKHR image) {
  return Destroy(Call::eglDestroyImageKHR, display, image, Kind::kImage,
                 EGL_BAD_PARAMETER);
}

void ImageTargetTexture(GLenum, GLeglImageOES handle) {
  ZUQEL_ENTER(glEGLImageTargetTexture2DOES);
  const Object* const image = Find(handle, Kind::kImage);
  ZUQEL_REQUIRE(image != nullptr, GL_INVALID_VALUE);
  c.TextureOf(c.ActiveUnit()).image = image->image;
}

}  // namespace

void SetDevices(std::vector<const char*> extensions) {
  devices = std::move(extensions);
}

}  // namespace zuqel::fake_driver

using namespace zuqel::fake_driver;

EGLDisplay eglGetDisplay(EGLNativeDisplayType) {
  return EnterEgl(Call::eglGetDisplay) ? &the_display : EGL_NO_DISPLAY;
}

EGLDisplay eglGetPlatformDisplay(EGLenum, void*, const EGLAttrib*) {
  return GetPlatformDisplay(0, nullptr, nullptr);
}

EGLBoolean eglInitialize(EGLDisplay display, EGLint* major, EGLint* minor) {
  if (!EnterDisplay(Call::eglInitialize, display, false)) return EGL_FALSE;
  if (major != nullptr) *major = 1;
  if (minor != nullptr) *minor = 5;
  is_initialised.store(true, kRelaxed);
  return EGL_TRUE;
}

EGLBoolean eglTerminate(EGLDisplay display) {
  if (!EnterDisplay(Call::eglTerminate, display, false)) return EGL_FALSE;
  is_initialised.store(false, kRelaxed);
  for (Slot& slot : slots) {
    Object* const object = Empty(slot);
    if (object != nullptr && object->kind == Kind::kImage) {
      NoteMisuse(Call::eglTerminate, "an image is left");
    }
    EndUse(object);
  }
  return EGL_TRUE;
}

const char* eglQueryString(EGLDisplay display, EGLint name) {
  if (display == EGL_NO_DISPLAY && name == EGL_EXTENSIONS) {
    return EnterEgl(Call::eglQueryString) ? "EGL_EXT_device_base" : nullptr;
  }
  if (!EnterDisplay(Call::eglQueryString, display, false)) return nullptr;
  if (is_initialised.load(kRelaxed)) return "";
  // Not noted: there is no other way to find out.
  last_error = EGL_NOT_INITIALIZED;
  return nullptr;
}

// No config can draw to windows.
EGLBoolean eglChooseConfig(EGLDisplay display, const EGLint* attributes,
                           EGLConfig* configs, EGLint size, EGLint* count) {
  if (!EnterDisplay(Call::eglChooseConfig, display)) return EGL_FALSE;
  const EGLint type = AttributeOf(attributes, EGL_SURFACE_TYPE, EGL_WINDOW_BIT);
  *count = (type & EGL_WINDOW_BIT) == 0 && size > 0 ? 1 : 0;
  if (*count == 1) configs[0] = &the_config;
  return EGL_TRUE;
}

EGLSurface eglCreatePbufferSurface(EGLDisplay display, EGLConfig config,
                                   const EGLint* attributes) {
  constexpr Call kCall = Call::eglCreatePbufferSurface;
  if (!EnterDisplay(kCall, display)) return EGL_NO_SURFACE;
  if (config != &the_config) return EglFault(kCall, EGL_BAD_CONFIG);
  return MakeHandle(new Object{
      Kind::kSurface, nullptr,
      std::make_shared<Image>(Image{AttributeOf(attributes, EGL_WIDTH, 0),
                                    AttributeOf(attributes, EGL_HEIGHT, 0)})});
}

// Contexts share nothing here.
EGLContext eglCreateContext(EGLDisplay display, EGLConfig config,
                            EGLContext share, const EGLint* attributes) {
  constexpr Call kCall = Call::eglCreateContext;
  if (!EnterDisplay(kCall, display)) return EGL_NO_CONTEXT;
  if (config != &the_config) return EglFault(kCall, EGL_BAD_CONFIG);
  if (share != EGL_NO_CONTEXT) return EglFault(kCall, EGL_BAD_CONTEXT);
  const EGLint version = AttributeOf(attributes, EGL_CONTEXT_CLIENT_VERSION, 1);
  return MakeHandle(
      new Object{Kind::kContext, std::make_unique<Context>(version), nullptr});
}

EGLBoolean eglDestroyContext(EGLDisplay display, EGLContext context) {
  return Destroy(Call::eglDestroyContext, display, context, Kind::kContext,
                 EGL_BAD_CONTEXT);
}

EGLBoolean eglDestroySurface(EGLDisplay display, EGLSurface surface) {
  return Destroy(Call::eglDestroySurface, display, surface, Kind::kSurface,
                 EGL_BAD_SURFACE);
}

// Nothing can be made current at any time.
EGLBoolean eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read,
                          EGLContext handle) {
  constexpr Call kCall = Call::eglMakeCurrent;
  if (!EnterDisplay(kCall, display, handle != EGL_NO_CONTEXT)) return EGL_FALSE;
  const Current after = {handle, Find(handle, Kind::kContext), draw,
                         Find(draw, Kind::kSurface)};
  if (handle != EGL_NO_CONTEXT && after.context == nullptr) {
    return EglFault(kCall, EGL_BAD_CONTEXT);
  }
  if (draw != read || (draw != EGL_NO_SURFACE && after.surface == nullptr)) {
    return EglFault(kCall, EGL_BAD_SURFACE);
  }
  for (Object* object : {after.context, after.surface}) {
    if (object == nullptr) continue;
    const bool is_elsewhere =
        object->uses.fetch_add(1) > 1 && object != current.context;
    if (!is_elsewhere || object->kind != Kind::kContext) continue;
    object->uses.fetch_sub(1);
    return EglFault(kCall, EGL_BAD_ACCESS);
  }
  const Current before = std::exchange(current, after);
  current_context = nullptr;
  EndUse(before.context);
  EndUse(before.surface);
  if (after.context == nullptr) return EGL_TRUE;
  Context& context = *after.context->context;
  current_context = &context;
  context.surface = after.surface == nullptr ? nullptr : after.surface->image;
  if (context.surface && context.viewport[2] == 0) {
    context.viewport = {0, 0, context.surface->width, context.surface->height};
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

__eglMustCastToProperFunctionPointerType eglGetProcAddress(const char* name) {
  using Function = __eglMustCastToProperFunctionPointerType;
  struct Extension {
    std::string_view name;
    Function function;
  };
#define ZUQEL_FUNCTION(name, function) \
  { name, reinterpret_cast<Function>(&(function)) }
  static const auto extensions = std::to_array<Extension>({
      ZUQEL_FUNCTION("eglCreateImageKHR", CreateImage),
      ZUQEL_FUNCTION("eglDestroyImageKHR", DestroyImage),
      ZUQEL_FUNCTION("eglGetPlatformDisplayEXT", GetPlatformDisplay),
      ZUQEL_FUNCTION("eglQueryDeviceStringEXT", QueryDeviceString),
      ZUQEL_FUNCTION("eglQueryDevicesEXT", QueryDevices),
      ZUQEL_FUNCTION("glBindVertexArray", glBindVertexArray),
      ZUQEL_FUNCTION("glEGLImageTargetTexture2DOES", ImageTargetTexture),
      ZUQEL_FUNCTION("glGetProgramBinaryOES", glGetProgramBinary),
      ZUQEL_FUNCTION("glProgramBinaryOES", glProgramBinary),
      ZUQEL_FUNCTION("glVertexAttribDivisor", glVertexAttribDivisor),
      ZUQEL_FUNCTION("glVertexAttribIPointer", glVertexAttribIPointer),
  });
#undef ZUQEL_FUNCTION
  if (!EnterEgl(Call::eglGetProcAddress)) return nullptr;
  for (const Extension& row : extensions) {
    if (row.name == name) return row.function;
  }
  return nullptr;
}
