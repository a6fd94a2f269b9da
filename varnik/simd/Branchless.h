// Ranges of characters told without a branch or a table, so that the time taken says nothing about the characters.
#pragma once

#include "varnik/services/memory/Types.h"

namespace vk_simd {

/// All bits set when `first` <= `c` <= `last`, else 0. REQUIRES: values from 0 to 255.
constexpr s32 maskInRange(s32 c, s32 first, s32 last) {
  return ((first - 1 - c) & (c - last - 1)) >> 31;
}

}  // namespace vk_simd
