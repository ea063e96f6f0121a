// GL names together with the context they live in.
#ifndef ZUQEL_GL_IN_CONTEXT_H_
#define ZUQEL_GL_IN_CONTEXT_H_

#include <EGL/egl.h>

#include <memory>
#include <type_traits>
#include <utility>

#include "gl/context.h"

namespace zuqel {

// Owns `Names`, a record of GL handles and nothing else, or nothing. Names can
// be used and given back only where they were made; ending this owner elsewhere
// forgets them, and they die with their context. To forget names is not to run
// the handles' destructors, so that no list of them has to be kept.
template <typename Names>
class InContext {
  static_assert(std::is_nothrow_move_constructible_v<Names>);

 public:
  InContext() : names_() {}
  // Takes names that were made in the context that is current now.
  explicit InContext(Names&& names)
      : home_(eglGetCurrentContext()), names_(std::move(names)) {}
  InContext(InContext&& other) noexcept
      : home_(std::exchange(other.home_, EGL_NO_CONTEXT)),
        names_(std::move(other.names_)) {}
  InContext& operator=(InContext&& other) noexcept {
    if (this == &other) return *this;
    std::destroy_at(this);
    std::construct_at(this, std::move(other));
    return *this;
  }
  InContext(const InContext&) = delete;
  InContext& operator=(const InContext&) = delete;
  ~InContext() {
    if (IsCurrent(home_)) std::destroy_at(&names_);
  }

  // The names, where their context is this thread's; else null.
  [[nodiscard]] Names* IfCurrent() {
    return IsCurrent(home_) ? &names_ : nullptr;
  }

  // Leaves the names to their context.
  void Forget() { home_ = EGL_NO_CONTEXT; }

 private:
  EGLContext home_ = EGL_NO_CONTEXT;
  union {  // which leaves the destructor to the one above
    Names names_;
  };
};

}  // namespace zuqel

#endif  // ZUQEL_GL_IN_CONTEXT_H_
