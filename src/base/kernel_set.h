// Kernels that are compiled once for each instruction set, and the choice
// between them.
#ifndef ZUQEL_BASE_KERNEL_SET_H_
#define ZUQEL_BASE_KERNEL_SET_H_

#include <cstdint>

namespace zuqel {

// All give the same bits.
enum class KernelSet : uint8_t {
  kBaseline,  // what every 64-bit processor of its kind has
  kX86V3,     // x86-64-v3: AVX2, BMI2 and what came with them
};

#ifdef ZUQEL_COMPILED_SET
// What the including file, X_kernels.cpp, is being compiled for. Whatever such
// a file emits has to be its own: a function that it shared with other files,
// as those of std are, might run on processors that lack its instructions.
constexpr KernelSet kCompiledSet = KernelSet::ZUQEL_COMPILED_SET;
#endif

// A set's functions of one kind. `Table` is a struct of pointers to them; its
// file defines one for each set.
template <typename Table, KernelSet kSet>
const Table& KernelsOf();

// The best set that this processor has, or the one that the environment
// variable ZUQEL_KERNEL_SET names, if this processor has it; chosen once.
KernelSet ChosenKernelSet();

// The name that ZUQEL_KERNEL_SET takes, "baseline" or "x86-64-v3".
const char* NameOf(KernelSet set);

template <typename Table>
const Table& Kernels() {
#ifdef __x86_64__
  if (ChosenKernelSet() == KernelSet::kX86V3) {
    return KernelsOf<Table, KernelSet::kX86V3>();
  }
#endif
  return KernelsOf<Table, KernelSet::kBaseline>();
}

}  // namespace zuqel

#endif  // ZUQEL_BASE_KERNEL_SET_H_
