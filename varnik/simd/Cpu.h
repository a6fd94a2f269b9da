// What the processor offers, for the choice between the forms of a kernel.
//
// Every kernel has a scalar form, which is the truth, and an AVX2 form that agrees with it on every input; a few have
// an AVX-512 form as well, most of them twice as fast on long inputs. Those that matter most have a NEON form: where
// there is NEON, all processors have it. The function without a suffix chooses. The instruction set is named at the
// functions that use it, never in build flags, so that no inline code of theirs can reach a processor without it.
#pragma once

#if defined(__x86_64__)
#define VARNIK_HAVE_AVX2 1
/// Marks a function that `vk_simd::hasAvx2()` guards. A helper that is to be inlined into one is marked, too.
#define VARNIK_AVX2 gnu::target("avx2,bmi,bmi2,popcnt")
#define VARNIK_HAVE_AVX512 1
/// The same for `vk_simd::hasAvx512()`.
#define VARNIK_AVX512 gnu::target("avx512f,avx512bw,avx512vl,avx512vbmi,avx512vbmi2,avx2,bmi,bmi2,lzcnt,popcnt")
#else
#define VARNIK_HAVE_AVX2 0
#define VARNIK_HAVE_AVX512 0
#endif

#if defined(__aarch64__) && defined(__AARCH64EL__)
#define VARNIK_HAVE_NEON 1
#else
#define VARNIK_HAVE_NEON 0
#endif

namespace vk_simd {

/// Returns true when the processor has AVX2 and the bit operations that came with it. While static objects are made it
/// may still answer false, which costs time only.
inline bool hasAvx2() {
#if VARNIK_HAVE_AVX2
  return (__builtin_cpu_supports("avx2") != 0) & (__builtin_cpu_supports("bmi2") != 0);
#else
  return false;
#endif
}

/// Returns true when AMD made the processor: its string instruction, by which libraries and systems copy, minds where
/// the areas lie.
inline bool isAmd() {
#if defined(__x86_64__)
  return __builtin_cpu_is("amd") != 0;
#else
  return false;
#endif
}

/// Returns true when the processor has AVX-512 with the byte permutations that came after its first generations, whose
/// clock its use lowered. All that do count leading zeros, too.
inline bool hasAvx512() {
#if VARNIK_HAVE_AVX512
  return (__builtin_cpu_supports("avx512bw") != 0) & (__builtin_cpu_supports("avx512vl") != 0) &
         (__builtin_cpu_supports("avx512vbmi") != 0) & (__builtin_cpu_supports("avx512vbmi2") != 0);
#else
  return false;
#endif
}

}  // namespace vk_simd
