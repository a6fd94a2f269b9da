// The AVX2 forms of the conversions, and what their files share.
//
// A kernel takes whole blocks, and leaves a block with something bad in it to the scalar code. It looks at nothing
// outside its block: a character that the block's end cuts off begins the next one. The last bytes of a text are a
// block that is filled up with zero bytes; zero is a character in every form, so what the filling became is subtracted
// again.
//
// Text changes between ASCII and other characters all the time, and a branch that follows it is guessed wrong all the
// time. So the loops change gear only after some blocks in a row that a faster one could have taken.
#pragma once

#include "varnik/simd/Cpu.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>

#include "varnik/simd/internal/UtfForms.h"

namespace vk_simd {

[[VARNIK_AVX2]] inline __m256i loadBlock(const u8* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
[[VARNIK_AVX2]] inline void storeBlock(u8* p, __m256i block) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), block);
}
[[VARNIK_AVX2]] inline void storeHalf(u8* p, __m128i half) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p), half);
}
[[VARNIK_AVX2]] inline __m128i loadHalf(const void* p) {
  return _mm_loadu_si128(static_cast<const __m128i*>(p));
}
[[VARNIK_AVX2]] inline bool isClear(__m256i block, __m256i bits) {
  return _mm256_testz_si256(block, bits) != 0;
}
[[VARNIK_AVX2]] inline u32 bitsOf(__m256i bytes) {
  return static_cast<u32>(_mm256_movemask_epi8(bytes));
}

/// Loads `n` bytes, at most 16, and fills up with zero bytes; nothing else is read.
[[VARNIK_AVX2]] inline __m128i loadUpTo16(const u8* p, u32 n) {
  const auto word = [p](u32 at) {
    u64 value;
    std::memcpy(&value, p + at, 8);
    return value;
  };
  const auto half = [p](u32 at) {
    u32 value;
    std::memcpy(&value, p + at, 4);
    return u64{value};
  };
  u64 low = 0, high = 0;  // two words that overlap, moved to where they belong
  if (n > 8) {
    low = word(0);
    high = word(n - 8) >> (8 * (16 - n));
  } else if (n == 8) {
    low = word(0);
  } else if (n >= 4) {
    low = half(0) | half(n - 4) << (8 * (n - 4));
  } else {
    for (u32 i = 0; i < n; ++i) low |= u64{p[i]} << (8 * i);
  }
  return _mm_set_epi64x(static_cast<s64>(high), static_cast<s64>(low));
}

/// The same for at most 32 bytes.
[[VARNIK_AVX2]] inline __m256i loadUpTo32(const u8* p, u32 n) {
  if (n <= 16) return _mm256_zextsi128_si256(loadUpTo16(p, n));
  static constexpr u8 kMoves[32] = {0,    1,    2,    3,    4,    5,    6,    7,    8,    9,    10,
                                    11,   12,   13,   14,   15,   0x80, 0x80, 0x80, 0x80, 0x80, 0x80,
                                    0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80};
  const __m128i end = _mm_shuffle_epi8(loadHalf(p + n - 16), loadHalf(kMoves + 32 - n));
  return _mm256_set_m128i(end, loadHalf(p));
}

/// A block without its first 1, 2, ... bytes, filled up with zero bytes.
template <int kCount>
[[VARNIK_AVX2]] inline __m256i without(__m256i block) {
  return _mm256_alignr_epi8(_mm256_permute2x128_si256(block, block, 0x81), block, kCount);
}

/// What is left of a conversion while a loop goes through it. A copy, so that it stays in registers: for all that the
/// compiler knows, a byte stored to the output may lie in the cursor.
struct Stretch {
  const u8* in;
  u32 left;
  u8* out;
  u32 room;

  explicit Stretch(const UtfCursor& c)
      : in(c.in + c.read), left(c.left()), out(c.out + c.written), room(c.roomLeft()) {}
  void advance(u32 read, u32 written) {
    in += read;
    left -= read;
    out += written;
    room -= written;
  }
  void save(UtfCursor& c) const {
    c.read = c.n - left;
    c.written = c.room - room;
  }
};

constexpr u32 kAsciiRun = 3;  // blocks of ASCII in a row that are worth a change of gear

template <class From>
[[VARNIK_AVX2]] void convertToUtf8Avx2(UtfCursor& c);
template <class To>
[[VARNIK_AVX2]] void convertFromUtf8Avx2(UtfCursor& c);

}  // namespace vk_simd
#endif
