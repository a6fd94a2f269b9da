#include "varnik/simd/FindBytes.h"

#include <algorithm>
#include <cstring>

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

// The first place at or after `from` where the pattern's first byte stands, or `places_`.
inline u32 BytesFinder::nextByte(u32 from) const {
  const void* hit = from < places_ ? std::memchr(data_ + from, pattern_[0], places_ - from) : nullptr;
  return hit ? static_cast<u32>(static_cast<const u8*>(hit) - data_) : places_;
}

u32 BytesFinder::nextScalar(u32 from) const {
  for (u32 i = from; (i = nextByte(i)) < places_; ++i)
    if (std::memcmp(data_ + i, pattern_, m_) == 0) return i;
  return n_;
}

u32 mismatchScalar(const u8* a, const u8* b, u32 n) {
  u32 i = 0;
  while (i < n && a[i] == b[i]) ++i;
  return i;
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline __m256i load(const u8* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
[[VARNIK_AVX2]] inline __m256i equalTo(const u8* p, u8 value) {
  return _mm256_cmpeq_epi8(load(p), _mm256_set1_epi8(static_cast<char>(value)));
}
[[VARNIK_AVX2]] inline u32 bitsOf(__m256i mask) {
  return static_cast<u32>(_mm256_movemask_epi8(mask));
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

inline u32 mismatchShort(const u8* a, const u8* b, u32 n) {
  u32 i = 0;
  for (; n - i > 16; i += 8)
    if (const u64 head = difference<u64>(a + i, b + i); head != 0)
      return i + static_cast<u32>(__builtin_ctzll(head)) / 8;
  if (n - i >= 8) return i + mismatchOfWords<u64>(a + i, b + i, n - i);
  if (n - i >= 4) return i + mismatchOfWords<u32>(a + i, b + i, n - i);
  return i + mismatchScalar(a + i, b + i, n - i);
}

}  // namespace

[[VARNIK_AVX2]] u32 mismatchAvx2(const u8* a, const u8* b, u32 n) {
  if (n < 32) return mismatchShort(a, b, n);
  for (u32 i = 0; n - i > 32; i += 32)
    if (const u32 equal = equalBytes(a + i, b + i); equal != 0xFFFFFFFF)
      return i + static_cast<u32>(__builtin_ctz(~equal));
  const u32 equal = equalBytes(a + n - 32, b + n - 32);
  return equal != 0xFFFFFFFF ? n - 32 + static_cast<u32>(__builtin_ctz(~equal)) : n;
}

// Of the 32 places from `i` on, those at which both bytes agree.
[[VARNIK_AVX2]] inline u32 BytesFinder::candidates32(u32 i) const {
  const __m256i a = equalTo(data_ + older_ + i, pattern_[older_]), b = equalTo(data_ + newer_ + i, pattern_[newer_]);
  return bitsOf(_mm256_and_si256(a, b));
}

// Looks on from `seen_` to the next block that has candidates, or to the end. What the last block looks at twice is
// masked away.
[[VARNIK_AVX2]] inline void BytesFinder::lookOn() {
  const u8 *const older = data_ + older_, *const newer = data_ + newer_;
  const u8 olderByte = pattern_[older_], newerByte = pattern_[newer_];
  const u32 places = places_;
  u32 i = seen_;
  for (; places - i >= 64; i += 64) {
    const __m256i low = _mm256_and_si256(equalTo(older + i, olderByte), equalTo(newer + i, newerByte));
    const __m256i high = _mm256_and_si256(equalTo(older + i + 32, olderByte), equalTo(newer + i + 32, newerByte));
    if (bitsOf(_mm256_or_si256(low, high)) == 0) continue;
    bits_ = bitsOf(low) | u64{bitsOf(high)} << 32;
    block_ = i;
    seen_ = i + 64;
    return;
  }
  const u32 left = places - i;
  block_ = i;
  seen_ = places;
  if (left > 32) {
    bits_ = candidates32(i) | u64{candidates32(places - 32) >> (64 - left)} << 32;
  } else if (left != 0 && places >= 32) {
    bits_ = candidates32(places - 32) >> (32 - left);
  } else {
    for (u32 k = 0; k < left; ++k) bits_ |= u64{data_[i + k] == pattern_[0]} << k;
  }
}

// Whether the pattern stands at `i`. Where it does not, the byte that told is looked at from now on.
[[VARNIK_AVX2]] inline bool BytesFinder::standsAt(u32 i) {
  const u32 wrong = m_ < 32 ? mismatchShort(data_ + i, pattern_, m_) : mismatchAvx2(data_ + i, pattern_, m_);
  if (wrong == m_) return true;
  if (wrong != newer_ && wrong != older_) {
    older_ = newer_;
    newer_ = wrong;
  }
  return false;
}

// Places are looked at in blocks that do not depend on where the last occurrence was, so that the processor can be
// ahead of it; candidates before `from` are passed over.
[[VARNIK_AVX2]] inline u32 BytesFinder::nextByPairs(u32 from) {
  if (from >= seen_ && from - seen_ >= 64) {
    seen_ = from;
    bits_ = 0;
  }
  for (;;) {
    while (bits_ != 0) {
      const u32 at = block_ + static_cast<u32>(__builtin_ctzll(bits_));
      bits_ &= bits_ - 1;
      if (at < from) continue;
      if (standsAt(at)) return at;
      bits_ = 0;  // the other candidates of the block may fail the bytes that are looked at now
      seen_ = at + 1;
    }
    if (seen_ == places_) return n_;
    lookOn();
  }
}

// A false candidate costs a call of memchr, as much as looking at two bytes instead of one does in 1 KiB.
[[VARNIK_AVX2]] u32 BytesFinder::nextAvx2(u32 from) {
  constexpr u32 kFree = 3, kBytesEach = 1024;
  u32 i = from;
  for (; misses_ < kFree + i / kBytesEach; ++i, ++misses_) {
    i = nextByte(i);
    if (i == places_) return n_;
    if (standsAt(i)) return i;
  }
  return i < places_ ? nextByPairs(i) : n_;
}

namespace {

// Whether up to 16 bytes are equal: two words, which may overlap.
inline bool equalShort(const u8* a, const u8* b, u32 n) {
  if (n >= 8) return (difference<u64>(a, b) | difference<u64>(a + n - 8, b + n - 8)) == 0;
  if (n >= 4) return (difference<u32>(a, b) | difference<u32>(a + n - 4, b + n - 4)) == 0;
  return mismatchScalar(a, b, n) == n;
}

[[VARNIK_AVX2]] inline bool equalLong(const u8* a, const u8* b, u32 n) {
  return (n < 32 ? mismatchShort(a, b, n) : mismatchAvx2(a, b, n)) == n;
}

// Data so short that neither a call of memchr nor learning is worth its price: the pattern's ends at 64 places at once.
// A half that would pass the end ends there; what it sees again falls on the same bits or is no occurrence. A function
// for each kind of pattern, as the one that calls nothing keeps all in registers.
template <bool isShort>
[[VARNIK_AVX2, gnu::noinline]] u32 findShort(const u8* data, u32 n, const u8* pattern, u32 m) {
  const __m256i first = _mm256_set1_epi8(static_cast<char>(pattern[0]));
  const __m256i last = _mm256_set1_epi8(static_cast<char>(pattern[m - 1]));
  const u8* const ends = data + m - 1;
  const u32 lastHalf = n - m + 1 - 32;
  for (u32 i = 0, half;; i = std::min(half + 32, lastHalf)) {
    half = std::min(i + 32, lastHalf);
    const __m256i low =
        _mm256_and_si256(_mm256_cmpeq_epi8(load(data + i), first), _mm256_cmpeq_epi8(load(ends + i), last));
    const __m256i high =
        _mm256_and_si256(_mm256_cmpeq_epi8(load(data + half), first), _mm256_cmpeq_epi8(load(ends + half), last));
    for (u64 bits = bitsOf(low) | u64{bitsOf(high)} << (half - i); bits != 0; bits &= bits - 1) {
      const u32 at = i + static_cast<u32>(__builtin_ctzll(bits));
      if (isShort ? equalShort(data + at, pattern, m) : equalLong(data + at, pattern, m)) return at;
    }
    if (half == lastHalf) return n;
  }
}

// The first candidate, often the only one, is tried before anything is set up.
[[VARNIK_AVX2, gnu::noinline]] u32 findLong(const u8* data, u32 n, const u8* pattern, u32 m) {
  const void* hit = std::memchr(data, pattern[0], n - m + 1);
  if (!hit) return n;
  const u32 at = static_cast<u32>(static_cast<const u8*>(hit) - data);
  if (m <= 16 ? equalShort(data + at, pattern, m) : std::memcmp(hit, pattern, m) == 0) return at;
  return BytesFinder(data, n, pattern, m).nextAvx2(at + 1);
}

}  // namespace

// Each way is a function of its own, so that none pays for the registers and the stack of another.
[[VARNIK_AVX2]] u32 findBytesAvx2(const u8* data, u32 n, const u8* pattern, u32 m) {
  constexpr u32 kShort = 256;
  const u32 places = n - m + 1;
  if (places < 32 || places > kShort) return findLong(data, n, pattern, m);
  return m <= 16 ? findShort<true>(data, n, pattern, m) : findShort<false>(data, n, pattern, m);
}
#endif

u32 mismatch(const u8* a, const u8* b, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return mismatchAvx2(a, b, n);
#elif VARNIK_HAVE_NEON
  return mismatchNeon(a, b, n);
#endif
  return mismatchScalar(a, b, n);
}

u32 findBytes(const u8* data, u32 n, const u8* pattern, u32 m) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return findBytesAvx2(data, n, pattern, m);
#endif
  return BytesFinder(data, n, pattern, m).next(0);
}

u32 BytesFinder::next(u32 from) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return nextAvx2(from);
#elif VARNIK_HAVE_NEON
  return nextNeon(from);
#endif
  return nextScalar(from);
}

}  // namespace vk_simd
