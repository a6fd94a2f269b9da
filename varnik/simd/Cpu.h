// What the processor offers, for the choice between the forms of a kernel.
//
// Every kernel has a scalar form, which is the truth, and an AVX2 form that agrees with it on every input; the function
// without a suffix chooses. The instruction set is named at the functions that use it, never in build flags, so that no
// inline code of theirs can reach a processor without it.
#pragma once

#if defined(__x86_64__)
#define VARNIK_HAVE_AVX2 1
/// Marks a function that `vk_simd::hasAvx2()` guards. A helper that is to be inlined into one is marked, too.
#define VARNIK_AVX2 gnu::target("avx2,bmi,bmi2,popcnt")
#else
#define VARNIK_HAVE_AVX2 0
#endif

namespace vk_simd {

/// Returns true when the processor has AVX2 and the bit operations that came with it. While static objects are made it
/// may still answer false, which costs time only.
inline bool hasAvx2() {
#if VARNIK_HAVE_AVX2
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2");
#else
  return false;
#endif
}

}  // namespace vk_simd
