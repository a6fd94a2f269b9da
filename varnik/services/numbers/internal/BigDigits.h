// Numbers of any size between their three forms: big-endian bytes, 64-bit limbs (least significant first) and raw
// digits (values below the base, most significant first). What takes more than linear time goes through GMP.
#pragma once

#include <memory>

#include "varnik/services/memory/Types.h"

namespace vk_num {

/// Returns `n` limbs, null when memory is exhausted; at least one even for `n` = 0.
std::unique_ptr<u64[]> allocLimbs(u64 n);

/// The limbs that `n` bytes need.
constexpr u32 limbsOfBytes(u32 n) {
  return n / 8 + (n % 8 != 0 ? 1 : 0);
}

/// Fills the limbs from `n` bytes and returns how many of them count: no leading one is zero.
u32 bytesToLimbs(const u8* bytes, u32 n, u64* limbs);

/// Returns how many bytes the number has without leading zeros, and writes them.
u32 byteLength(const u64* limbs, u32 numLimbs);
void limbsToBytes(const u64* limbs, u32 n, u8* bytes);

/// The most digits that a number of `numLimbs` limbs has in a base from 2 to 256, with the one more that the conversion
/// wants as room; the most limbs that `n` digits make, likewise.
u64 digitsOfLimbs(u32 numLimbs, u32 base);
u64 limbsOfDigits(u32 n, u32 base);

/// Writes the digits of a number above 0 in a base from 2 to 256 and returns their count, no leading zero among them; 0
/// when memory runs out. The limbs are destroyed.
u32 limbsToDigits(u64* limbs, u32 numLimbs, u32 base, u8* digits);
/// Fills the limbs from `n` digits and sets `numLimbs` to how many count. False when memory runs out.
bool digitsToLimbs(const u8* digits, u32 n, u32 base, u64* limbs, u32& numLimbs);

}  // namespace vk_num
