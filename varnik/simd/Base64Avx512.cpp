// The AVX-512 forms of base64: an alphabet fits into one register, all characters below 0x80 into two, so that letters
// and values are looked up 64 at a time. What is less than a block goes by masked loads and stores.
#include <array>
#include <cstring>

#include "varnik/simd/Base64.h"
#include "varnik/simd/internal/Stream.h"

#if VARNIK_HAVE_AVX512
#include <immintrin.h>

namespace vk_simd {
namespace {

constexpr u32 kBlockBytes = 48, kBlockChars = 64;
constexpr u32 kWholeStoreChars = 88;  // the room of these takes a store of 64 bytes
constexpr u32 kFollowing = 132;       // the same when they stand in lines, however short

constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/-_";
constexpr u32 kUrlExtra = 64;  // where the two letters of the URL-safe alphabet stand

constexpr std::array<char, 64> alphabetOf(bool url) {
  std::array<char, 64> letters{};
  for (u32 i = 0; i < letters.size(); ++i) letters[i] = kLetters[url && i >= 62 ? i + 2 : i];
  return letters;
}
alignas(64) constexpr std::array<char, 64> kAlphabets[] = {alphabetOf(false), alphabetOf(true)};

// The value of each character below 0x80; the high bit is set for those outside the alphabet.
constexpr std::array<u8, 128> valuesOf(bool url) {
  std::array<u8, 128> values{};
  values.fill(0x80);
  for (u32 i = 0; i < (url ? kLetters.size() : kUrlExtra); ++i)
    values[static_cast<u8>(kLetters[i])] = static_cast<u8>(i < kUrlExtra ? i : i - 2);
  return values;
}
alignas(64) constexpr std::array<u8, 128> kValues[] = {valuesOf(false), valuesOf(true)};

// The second, first, third and second byte of each group, from which the values are cut at bits 10, 4, 22 and 16.
alignas(64) constexpr std::array<u8, 64> kSpread = [] {
  std::array<u8, 64> places{};
  for (u32 i = 0; i < 64; i += 4)
    for (const u32 k : {0U, 1U, 2U, 3U}) places[i + k] = static_cast<u8>(i / 4 * 3 + (k == 1 ? 0 : k == 2 ? 2 : 1));
  return places;
}();
constexpr s64 kCuts = 0x3036242A1016040A;

// The three bytes of each group, of which the lowest comes last.
alignas(64) constexpr std::array<u8, 64> kJoin = [] {
  std::array<u8, 64> places{};
  for (u32 i = 0; i < kBlockBytes; ++i) places[i] = static_cast<u8>(i / 3 * 4 + 2 - i % 3);
  return places;
}();

[[VARNIK_AVX512]] inline __m512i load(const void* p) {
  return _mm512_loadu_si512(p);
}

// Under a mask of all lanes: GCC 12 warns of an uninitialised operand of the form without one.
[[VARNIK_AVX512]] inline __m512i permuted(__m512i places, __m512i bytes) {
  return _mm512_maskz_permutexvar_epi8(~u64{0}, places, bytes);
}

[[VARNIK_AVX512]] inline __m512i encoded(__m512i bytes, __m512i letters) {
  const __m512i spread = permuted(load(kSpread.data()), bytes);
  return permuted(_mm512_maskz_multishift_epi64_epi8(~u64{0}, _mm512_set1_epi64(kCuts), spread), letters);
}

// Encodes up to a block, reading and writing no more; a group that is not whole is filled up with zero bits.
[[VARNIK_AVX512]] inline void encodePart(const u8* in, u32 n, __m512i letters, char* out) {
  const __m512i text = encoded(_mm512_maskz_loadu_epi8(_bzhi_u64(~u64{0}, n), in), letters);
  _mm512_mask_storeu_epi8(out, _bzhi_u64(~u64{0}, (n + 2) / 3 * 4), text);
}

// REQUIRES: `n` > 0.
[[VARNIK_AVX512]] inline void encodeAll(const u8* in, u32 n, __m512i letters, char* out) {
  const u32 lastGroup = n % 3;
  char* const end = out + (u64{n} + 2) / 3 * 4;
  for (; n >= kBlockChars; in += kBlockBytes, n -= kBlockBytes, out += kBlockChars)
    _mm512_storeu_si512(out, encoded(load(in), letters));
  for (; n > kBlockBytes; in += kBlockBytes, n -= kBlockBytes, out += kBlockChars)
    encodePart(in, kBlockBytes, letters, out);
  encodePart(in, n, letters, out);
  if (lastGroup != 0) end[-1] = '=';
  if (lastGroup == 1) end[-2] = '=';
}

struct Decoded {
  __m512i bytes;
  u64 faults;  // a bit for each character outside the alphabet
};

[[VARNIK_AVX512]] inline Decoded decoded(__m512i text, __m512i low, __m512i high) {
  const __m512i values = _mm512_permutex2var_epi8(low, text, high);
  const __m512i pairs = _mm512_maddubs_epi16(values, _mm512_set1_epi16(0x0140));
  const __m512i groups = _mm512_madd_epi16(pairs, _mm512_set1_epi32(0x00011000));
  return {permuted(load(kJoin.data()), groups), _mm512_movepi8_mask(_mm512_or_si512(values, text))};
}

// Decodes up to a block, reading no more and writing what is right; returns how many characters that was. The branch
// lets what follows go on before the faults are known.
[[VARNIK_AVX512]] inline u32 decodePart(const char* in, u32 n, __m512i low, __m512i high, u8* out) {
  const __m512i text = _mm512_mask_loadu_epi8(_mm512_set1_epi8('A'), _bzhi_u64(~u64{0}, n), in);
  const Decoded d = decoded(text, low, high);
  if (d.faults != 0) [[unlikely]]
    n = static_cast<u32>(__builtin_ctzll(d.faults)) & ~u32{3};
  _mm512_mask_storeu_epi8(out, _bzhi_u64(~u64{0}, n / 4 * 3), d.bytes);
  return n;
}

// A single group goes by way of registers: a masked load would wait for the stores that just made it.
[[VARNIK_AVX512]] inline u32 decodeGroup(const char* in, __m512i low, __m512i high, u8* out) {
  int text;
  std::memcpy(&text, in, sizeof text);
  const Decoded d = decoded(_mm512_zextsi128_si512(_mm_cvtsi32_si128(text)), low, high);
  if ((d.faults & 15) != 0) return 0;
  const int bytes = _mm512_cvtsi512_si32(d.bytes);
  std::memcpy(out, &bytes, 3);
  return 4;
}

}  // namespace

[[VARNIK_AVX512]] void base64EncodeAvx512(const u8* in, u32 n, bool url, char* out) {
  if (n != 0) encodeAll(in, n, load(kAlphabets[url].data()), out);
}

// As the AVX2 form, a line of the cache a block.
[[VARNIK_AVX512]] void base64EncodeStreamAvx512(const u8* in, u32 n, bool url, char* out) {
  const u32 before = charsBeforeLine(out), bytesBefore = before / 4 * 3;
  if (before % 4 != 0 || bytesBefore > n) return base64EncodeAvx512(in, n, url, out);
  base64EncodeAvx512(in, bytesBefore, url, out);
  in += bytesBefore, n -= bytesBefore, out += before;
  const __m512i letters = load(kAlphabets[url].data());
  for (; n >= kBlockChars; in += kBlockBytes, n -= kBlockBytes, out += kBlockChars)
    _mm512_stream_si512(reinterpret_cast<__m512i*>(out), encoded(load(in), letters));
  _mm_sfence();
  base64EncodeAvx512(in, n, url, out);
}

// While enough follows, whole blocks are loaded and stored; what they write behind a line is overwritten.
[[VARNIK_AVX512]] void base64EncodeLinesAvx512(const u8* in, u32 n, u32 lineBytes, const LineEnd& end, char* out) {
  const __m512i letters = load(kAlphabets[false].data());
  const LineEnd lineEnd = end;  // no store of characters can be thought to change it
  const u32 lineChars = lineBytes / 3 * 4, length = lineChars + lineEnd.length;
  for (; n >= u64{lineBytes} + kBlockChars; in += lineBytes, n -= lineBytes, out += length) {
    for (u32 i = 0; i < lineBytes; i += kBlockBytes)
      _mm512_storeu_si512(out + i / 3 * 4, encoded(load(in + i), letters));
    std::memcpy(out + lineChars, lineEnd.text, sizeof lineEnd.text);
  }
  for (; n != 0; out += length) {
    const u32 count = n < lineBytes ? n : lineBytes;
    encodeAll(in, count, letters, out);
    std::memcpy(out + (count + 2) / 3 * 4, lineEnd.text, lineEnd.length);
    in += count, n -= count;
  }
}

// The last block overlaps the one before it: a masked load would wait for stores behind the text too, where the bytes
// may well go.
[[VARNIK_AVX512]] u32 base64DecodeAvx512(const char* in, u32 n, bool url, u8* out) {
  const __m512i low = load(kValues[url].data()), high = load(kValues[url].data() + 64);
  n &= ~u32{3};
  if (n == 4) return decodeGroup(in, low, high, out);
  u32 i = 0;
  for (; n - i >= kWholeStoreChars; i += kBlockChars) {
    const Decoded d = decoded(load(in + i), low, high);
    _mm512_storeu_si512(out + i / 4 * 3, d.bytes);
    if (d.faults != 0) break;
  }
  if (n < kBlockChars) return decodePart(in, n, low, high, out);
  while (i < n) {
    const u32 at = n - i < kBlockChars ? n - kBlockChars : i;
    const Decoded d = decoded(load(in + at), low, high);
    _mm512_mask_storeu_epi8(out + at / 4 * 3, _bzhi_u64(~u64{0}, kBlockBytes), d.bytes);
    if (d.faults != 0) return at + (static_cast<u32>(__builtin_ctzll(d.faults)) & ~u32{3});
    i = at + kBlockChars;
  }
  return i;
}

[[VARNIK_AVX512]] u32 base64DecodeLinesAvx512(const char* in, u32 n, u32 lineChars, std::string_view end, u8* out) {
  const __m512i low = load(kValues[false].data()), high = load(kValues[false].data() + 64);
  const char first = end.front(), last = end.back();
  const u32 endChars = static_cast<u32>(end.size()), length = lineChars + endChars;
  u32 lines = 0;
  for (; n >= length; n -= length, in += length, out += lineChars / 4 * 3, ++lines) {
    if (in[lineChars] != first || in[length - 1] != last) break;
    const bool follows = n - length >= kFollowing;
    for (u32 i = 0; i < lineChars; i += kBlockChars) {
      const u32 part = lineChars - i < kBlockChars ? lineChars - i : kBlockChars;
      if (!follows) {
        if (decodePart(in + i, part, low, high, out + i / 4 * 3) != part) return lines;
        continue;
      }
      const Decoded d = decoded(load(in + i), low, high);
      _mm512_storeu_si512(out + i / 4 * 3, d.bytes);
      if (_bzhi_u64(d.faults, part) != 0) return lines;
    }
  }
  return lines;
}

}  // namespace vk_simd
#endif
