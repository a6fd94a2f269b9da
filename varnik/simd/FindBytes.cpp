#include "varnik/simd/FindBytes.h"

#include <cstring>

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {
namespace {

// The index of the first `value` in data[from, n), or n.
u32 nextByte(const u8* data, u32 from, u32 n, u8 value) {
  const void* hit = from < n ? std::memchr(data + from, value, n - from) : nullptr;
  return hit ? static_cast<u32>(static_cast<const u8*>(hit) - data) : n;
}

}  // namespace

u32 mismatchScalar(const u8* a, const u8* b, u32 n) {
  u32 i = 0;
  while (i < n && a[i] == b[i]) ++i;
  return i;
}

u32 findBytesScalar(const u8* data, u32 n, const u8* pattern, u32 m) {
  const u32 places = n - m + 1;
  for (u32 i = 0; (i = nextByte(data, i, places, pattern[0])) < places; ++i)
    if (std::memcmp(data + i, pattern, m) == 0) return i;
  return n;
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline __m256i load(const u8* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
[[VARNIK_AVX2]] inline u32 equalBytes(const u8* a, const u8* b) {
  return static_cast<u32>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(load(a), load(b))));
}

template <class Word>
Word difference(const u8* a, const u8* b) {
  Word x, y;
  std::memcpy(&x, a, sizeof x);
  std::memcpy(&y, b, sizeof y);
  return static_cast<Word>(x ^ y);
}

// The mismatch of sizeof(Word) to twice as many bytes: two words, the second one ending where the bytes end.
template <class Word>
u32 mismatchOfWords(const u8* a, const u8* b, u32 n) {
  if (const Word head = difference<Word>(a, b); head != 0) return static_cast<u32>(__builtin_ctzll(head)) / 8;
  const u32 last = n - static_cast<u32>(sizeof(Word));
  const Word tail = difference<Word>(a + last, b + last);
  return tail != 0 ? last + static_cast<u32>(__builtin_ctzll(tail)) / 8 : n;
}

u32 mismatchShort(const u8* a, const u8* b, u32 n) {
  u32 i = 0;
  for (; n - i > 16; i += 8)
    if (const u64 head = difference<u64>(a + i, b + i); head != 0)
      return i + static_cast<u32>(__builtin_ctzll(head)) / 8;
  if (n - i >= 8) return i + mismatchOfWords<u64>(a + i, b + i, n - i);
  if (n - i >= 4) return i + mismatchOfWords<u32>(a + i, b + i, n - i);
  return i + mismatchScalar(a + i, b + i, n - i);
}

// A pattern, the data it is looked for in, and which two bytes of the pattern are looked at first.
struct PairSearch {
  const u8* data;
  u32 places;  // candidates are the indexes below
  const u8* pattern;
  u32 m;
  u32 older, newer;  // indexes into the pattern

  // A bit for each of the 32 places from `i` on at which both bytes agree.
  [[VARNIK_AVX2]] u32 candidates32(u32 i) const {
    const __m256i a = _mm256_cmpeq_epi8(load(data + i + older), _mm256_set1_epi8(static_cast<char>(pattern[older])));
    const __m256i b = _mm256_cmpeq_epi8(load(data + i + newer), _mm256_set1_epi8(static_cast<char>(pattern[newer])));
    return static_cast<u32>(_mm256_movemask_epi8(_mm256_and_si256(a, b)));
  }

  // Moves `i` on by whole blocks of 64 places to the first that has candidates, and returns their bits; 0 when fewer
  // than 64 places are left. A function of its own so that the two bytes stay in registers.
  [[VARNIK_AVX2]] u64 nextBlock(u32& i) const {
    for (; places - i >= 64; i += 64)
      if (const u64 bits = candidates32(i) | u64{candidates32(i + 32)} << 32; bits != 0) return bits;
    return 0;
  }

  // Whether the pattern stands at `i`. Where it does not, the byte that told is looked at from now on.
  [[VARNIK_AVX2]] bool standsAt(u32 i) {
    const u32 wrong = mismatchAvx2(data + i, pattern, m);
    if (wrong == m) return true;
    if (wrong != newer && wrong != older) {
      older = newer;
      newer = wrong;
    }
    return false;
  }

  // The first of the candidates `bits` (counted from `i`) that is an occurrence, or `places`.
  [[VARNIK_AVX2]] u32 firstOf(u64 bits, u32 i) {
    for (; bits != 0; bits &= bits - 1)
      if (const u32 at = i + static_cast<u32>(__builtin_ctzll(bits)); standsAt(at)) return at;
    return places;
  }

  // The first occurrence at or after `i`, or `places`.
  [[VARNIK_AVX2]] u32 run(u32 i) {
    for (u64 bits; (bits = nextBlock(i)) != 0; i += 64)
      if (const u32 at = firstOf(bits, i); at != places) return at;
    if (places - i >= 32) {
      if (const u32 at = firstOf(candidates32(i), i); at != places) return at;
      i += 32;
    }
    const u32 left = places - i;
    if (left != 0 && places >= 32) return firstOf(candidates32(places - 32) >> (32 - left), i);
    while ((i = nextByte(data, i, places, pattern[0])) < places && !standsAt(i)) ++i;
    return i;
  }
};

}  // namespace

[[VARNIK_AVX2]] u32 mismatchAvx2(const u8* a, const u8* b, u32 n) {
  if (n < 32) return mismatchShort(a, b, n);
  for (u32 i = 0; n - i > 32; i += 32)
    if (const u32 equal = equalBytes(a + i, b + i); equal != 0xFFFFFFFF)
      return i + static_cast<u32>(__builtin_ctz(~equal));
  const u32 equal = equalBytes(a + n - 32, b + n - 32);
  return equal != 0xFFFFFFFF ? n - 32 + static_cast<u32>(__builtin_ctz(~equal)) : n;
}

[[VARNIK_AVX2]] u32 findBytesAvx2(const u8* data, u32 n, const u8* pattern, u32 m) {
  constexpr u32 kShort = 256;  // places that are not worth a call of memchr
  if (m == 1) return nextByte(data, 0, n, pattern[0]);
  const u32 places = n - m + 1;
  PairSearch search{data, places, pattern, m, 0, m - 1};
  u32 i = 0;
  // A false candidate costs a call of memchr, as much as half a KiB of looking at two bytes instead of one.
  for (u32 misses = 0; places > kShort && misses < 3 + i / 1024; ++misses, ++i) {
    i = nextByte(data, i, places, pattern[0]);
    if (i == places) return n;
    if (search.standsAt(i)) return i;
  }
  i = search.run(i);
  return i != places ? i : n;
}
#endif

u32 mismatch(const u8* a, const u8* b, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return mismatchAvx2(a, b, n);
#endif
  return mismatchScalar(a, b, n);
}

u32 findBytes(const u8* data, u32 n, const u8* pattern, u32 m) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return findBytesAvx2(data, n, pattern, m);
#endif
  return findBytesScalar(data, n, pattern, m);
}

}  // namespace vk_simd
