// Asks the processor.
#include "base/kernel_set.h"

#include <cstdlib>
#include <cstring>

#ifdef __x86_64__
#include <cpuid.h>
#endif

namespace zuqel {
namespace {

#ifdef __x86_64__
// The compiler's own test knows whether the system keeps the wide registers,
// but not all of the set's instructions.
bool HasX86V3() {
  constexpr uint32_t kMovbe = 1U << 22, kF16c = 1U << 29, kLzcnt = 1U << 5;
  uint32_t a = 0, b = 0, basic = 0, extended = 0, d = 0;
  __builtin_cpu_init();
  return static_cast<bool>(__builtin_cpu_supports("avx2")) &&
         static_cast<bool>(__builtin_cpu_supports("bmi")) &&
         static_cast<bool>(__builtin_cpu_supports("bmi2")) &&
         static_cast<bool>(__builtin_cpu_supports("fma")) &&
         __get_cpuid(1, &a, &b, &basic, &d) != 0 && (basic & kMovbe) != 0 &&
         (basic & kF16c) != 0 &&
         __get_cpuid(0x80000001, &a, &b, &extended, &d) != 0 &&
         (extended & kLzcnt) != 0;
}
#else
bool HasX86V3() {
  return false;
}
#endif

KernelSet Choose() {
  const char* forced = std::getenv("ZUQEL_KERNEL_SET");
  const bool wants_baseline =
      forced != nullptr &&
      std::strcmp(forced, NameOf(KernelSet::kBaseline)) == 0;
  return !wants_baseline && HasX86V3() ? KernelSet::kX86V3
                                       : KernelSet::kBaseline;
}

}  // namespace

KernelSet ChosenKernelSet() {
  static const KernelSet chosen = Choose();
  return chosen;
}

const char* NameOf(KernelSet set) {
  return set == KernelSet::kX86V3 ? "x86-64-v3" : "baseline";
}

}  // namespace zuqel
