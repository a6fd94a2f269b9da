// Stores that go to memory past the caches, a whole line at a time.
#pragma once

#include "varnik/simd/Cpu.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>

#include <cstdint>

namespace vk_simd {

inline constexpr u32 kLine = 64;

/// How many characters stand before the next line of the cache.
inline u32 charsBeforeLine(const char* at) {
  return (kLine - static_cast<u32>(reinterpret_cast<std::uintptr_t>(at) % kLine)) % kLine;
}

/// Stores a line. The last one is followed by `_mm_sfence`: other threads see these stores out of order.
/// REQUIRES: `to` is where a line begins.
[[VARNIK_AVX2]] inline void streamLine(char* to, __m256i front, __m256i back) {
  _mm256_stream_si256(reinterpret_cast<__m256i*>(to), front);
  _mm256_stream_si256(reinterpret_cast<__m256i*>(to) + 1, back);
}

}  // namespace vk_simd
#endif
