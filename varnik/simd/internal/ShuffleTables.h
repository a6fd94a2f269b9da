// Byte shuffles that close the gaps between what stays of four or eight lanes, computed by the compiler.
#pragma once

#include <array>

#include "varnik/services/memory/Types.h"

namespace vk_simd {

using Shuffle = std::array<u8, 16>;
constexpr u8 kNothing = 0x80;  // the index that makes a shuffle write zero

/// Shuffles, and how many bytes each keeps.
struct TailTable {
  alignas(64) std::array<Shuffle, 256> order;
  std::array<u8, 256> size;
};

/// Four lanes of four bytes, of which the last 1 to 4 stay; `sizeOf(low, high)` tells how many, from bits k and 4 + k
/// of the index.
template <class SizeOf>
constexpr TailTable makeLaneTails(SizeOf sizeOf) {
  TailTable table{};
  for (u32 index = 0; index < 256; ++index) {
    u32 at = 0;
    for (u32 lane = 0; lane < 4; ++lane) {
      const u32 size = sizeOf(index >> lane & 1, index >> (4 + lane) & 1);
      for (u32 i = 4 - size; i < 4; ++i) table.order[index][at++] = static_cast<u8>(4 * lane + i);
    }
    table.size[index] = static_cast<u8>(at);
    while (at < 16) table.order[index][at++] = kNothing;
  }
  return table;
}

/// Eight lanes of two bytes. A lane whose bit is set stays.
constexpr std::array<Shuffle, 256> makeKeptPairs() {
  std::array<Shuffle, 256> table{};
  for (u32 index = 0; index < 256; ++index) {
    u32 at = 0;
    for (u32 lane = 0; lane < 8; ++lane) {
      if ((index >> lane & 1) == 0) continue;
      table[index][at++] = static_cast<u8>(2 * lane);
      table[index][at++] = static_cast<u8>(2 * lane + 1);
    }
    while (at < 16) table[index][at++] = kNothing;
  }
  return table;
}

/// Eight lanes of two bytes, of which one whose bit is set keeps the last byte alone.
constexpr std::array<Shuffle, 256> makePairTails() {
  std::array<Shuffle, 256> table{};
  for (u32 index = 0; index < 256; ++index) {
    u32 at = 0;
    for (u32 lane = 0; lane < 8; ++lane) {
      if ((index >> lane & 1) == 0) table[index][at++] = static_cast<u8>(2 * lane);
      table[index][at++] = static_cast<u8>(2 * lane + 1);
    }
    while (at < 16) table[index][at++] = kNothing;
  }
  return table;
}

/// The numbers of the lanes of eight whose bits are set; 8 behind them.
constexpr std::array<std::array<u8, 8>, 256> makeKeptLanes() {
  std::array<std::array<u8, 8>, 256> table{};
  for (u32 index = 0; index < 256; ++index) {
    u32 at = 0;
    for (u32 lane = 0; lane < 8; ++lane)
      if ((index >> lane & 1) != 0) table[index][at++] = static_cast<u8>(lane);
    while (at < 8) table[index][at++] = 8;
  }
  return table;
}

/// By two bits of the length less one; by whether the character is ASCII, and whether it is below U+0800.
inline constexpr TailTable kTailsOfLengths = makeLaneTails([](u32 bit0, u32 bit1) { return 1 + bit0 + 2 * bit1; });
inline constexpr TailTable kTailsOfKinds = makeLaneTails([](u32 ascii, u32 narrow) { return 3 - ascii - narrow; });
alignas(64) inline constexpr std::array<Shuffle, 256> kKeptPairs = makeKeptPairs();
alignas(64) inline constexpr std::array<Shuffle, 256> kPairTails = makePairTails();
alignas(64) inline constexpr std::array<std::array<u8, 8>, 256> kKeptLanes = makeKeptLanes();

}  // namespace vk_simd
