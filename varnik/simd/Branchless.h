// Ranges of characters told without a branch or a table, so that the time taken says nothing about the characters.
#pragma once

#include "varnik/services/memory/Types.h"

#ifdef VARNIK_TELLS_VALGRIND
#include <valgrind/memcheck.h>
#endif

namespace vk_simd {

/// All bits set when `first` <= `c` <= `last`, else 0. REQUIRES: values from 0 to 255.
constexpr s32 maskInRange(s32 c, s32 first, s32 last) {
  return ((first - 1 - c) & (c - last - 1)) >> 31;
}

/// What anyone may know of secret characters: which of them is outside the alphabet, if any. The value itself; where
/// dependence on secrets is looked for, its bits are public from here on.
template <class T>
inline T told(T value) {
#ifdef VARNIK_TELLS_VALGRIND
  VALGRIND_MAKE_MEM_DEFINED(&value, sizeof value);
#endif
  return value;
}

}  // namespace vk_simd
