#include "varnik/services/numbers/internal/BigDigits.h"

#include <gmp.h>

#include <bit>
#include <cstring>
#include <new>

static_assert(sizeof(mp_limb_t) == sizeof(u64) && GMP_NAIL_BITS == 0, "limbs are whole 64-bit words");

namespace vk_num {

namespace {

mp_limb_t* asGmp(u64* limbs) {
  return reinterpret_cast<mp_limb_t*>(limbs);
}

// GMP ends the process when it finds no memory. What a conversion takes from the heap was measured, for bases from 3 to
// 58 and numbers of 128 bytes to 4 MiB: nothing up to 25 limbs, else at most 7 times the limbs and two kilobytes. It is
// reserved and released before GMP is called.
bool memoryFor(u64 numLimbs) {
  constexpr u64 kFromStack = 16, kTimes = 8, kMore = 4096;
  if (numLimbs <= kFromStack) return true;
  return std::unique_ptr<u8[]>(new (std::nothrow) u8[numLimbs * sizeof(u64) * kTimes + kMore]) != nullptr;
}

u64 bigEndian(u64 word) {
  return std::endian::native == std::endian::little ? __builtin_bswap64(word) : word;
}

u32 withoutLeadingZeros(const u64* limbs, u32 n) {
  while (n != 0 && limbs[n - 1] == 0) --n;
  return n;
}

}  // namespace

std::unique_ptr<u64[]> allocLimbs(u64 n) {
  return std::unique_ptr<u64[]>(new (std::nothrow) u64[n != 0 ? n : 1]);
}

u32 bytesToLimbs(const u8* bytes, u32 n, u64* limbs) {
  u32 count = 0;
  for (; n >= 8; n -= 8) {
    u64 word;
    std::memcpy(&word, bytes + n - 8, 8);
    limbs[count++] = bigEndian(word);
  }
  if (n != 0) {
    u64 word = 0;
    for (u32 i = 0; i < n; ++i) word = word << 8 | bytes[i];
    limbs[count++] = word;
  }
  return withoutLeadingZeros(limbs, count);
}

u32 byteLength(const u64* limbs, u32 numLimbs) {
  if (numLimbs == 0) return 0;
  const u32 bits = 64 - static_cast<u32>(__builtin_clzll(limbs[numLimbs - 1]));
  return (numLimbs - 1) * 8 + (bits + 7) / 8;
}

void limbsToBytes(const u64* limbs, u32 n, u8* bytes) {
  for (; n >= 8; n -= 8) {
    const u64 word = bigEndian(*limbs++);
    std::memcpy(bytes + n - 8, &word, 8);
  }
  for (u64 word = n != 0 ? *limbs : 0; n != 0; word >>= 8) bytes[--n] = static_cast<u8>(word);
}

// A digit carries at least floor(log2(base)) whole bits and at most ceil(log2(base)).
u64 digitsOfLimbs(u32 numLimbs, u32 base) {
  const u32 bits = static_cast<u32>(std::bit_width(base)) - 1;
  return u64{numLimbs} * 64 / bits + 2;
}

u64 limbsOfDigits(u32 n, u32 base) {
  const u32 bits = static_cast<u32>(std::bit_width(base - 1));
  return u64{n} * bits / 64 + 2;
}

u32 limbsToDigits(u64* limbs, u32 numLimbs, u32 base, u8* digits) {
  if (!memoryFor(numLimbs)) return 0;
  const auto count =
      static_cast<u32>(mpn_get_str(digits, static_cast<int>(base), asGmp(limbs), static_cast<mp_size_t>(numLimbs)));
  u32 zeros = 0;
  while (zeros + 1 < count && digits[zeros] == 0) ++zeros;
  if (zeros != 0) std::memmove(digits, digits + zeros, count - zeros);
  return count - zeros;
}

bool digitsToLimbs(const u8* digits, u32 n, u32 base, u64* limbs, u32& numLimbs) {
  while (n != 0 && *digits == 0) {
    ++digits;
    --n;
  }
  numLimbs = 0;
  if (n == 0) return true;
  if (!memoryFor(limbsOfDigits(n, base))) return false;
  const auto count = static_cast<u32>(mpn_set_str(asGmp(limbs), digits, n, static_cast<int>(base)));
  numLimbs = withoutLeadingZeros(limbs, count);
  return true;
}

}  // namespace vk_num
