#pragma once

#include <cstdint>
#include <cstring>

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Returns true for a copy that AMD's processors make ten times slower than others: for middling counts the C library
/// uses a string instruction there, which minds a target 1 to 31 bytes behind its source modulo the page size. Two
/// blocks of a page allocated one after the other lie that way.
inline bool isSlowCopy(const u8* to, const u8* from, u32 n) {
  constexpr u32 kLeast = 2 * 1024, kMost = 512 * 1024, kPage = 4096;
  const auto behind = (reinterpret_cast<std::uintptr_t>(to) - reinterpret_cast<std::uintptr_t>(from)) % kPage;
  return n >= kLeast && n <= kMost && behind - 1 < 31;
}

#if VARNIK_HAVE_AVX2
void copyBytesAvx2(u8* to, const u8* from, u32 n);
#endif

/// Copies `n` bytes; the areas must not overlap. The C library's copy is the fastest there is but for `isSlowCopy`:
/// such copies go by vectors where they are slow, and nowhere else, as elsewhere they would take twice the time.
inline void copyBytes(u8* to, const u8* from, u32 n) {
#if VARNIK_HAVE_AVX2
  if (isSlowCopy(to, from, n) && isAmd() && hasAvx2()) [[unlikely]]
    return copyBytesAvx2(to, from, n);
#endif
  if (n != 0) [[likely]]
    std::memcpy(to, from, n);
}

}  // namespace vk_simd
