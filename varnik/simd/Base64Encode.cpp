#include <cstring>

#include "varnik/simd/Base64.h"
#include "varnik/simd/Branchless.h"
#include "varnik/simd/internal/Stream.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {
namespace {

// The character of a value from 0 to 63: 'A' to 'Z', 'a' to 'z', '0' to '9' and the two that differ.
char letter(u32 bits, bool url) {
  const s32 v = static_cast<s32>(bits & 63);
  s32 c = v + 'A';
  c += maskInRange(v, 26, 255) & ('a' - 'Z' - 1);
  c += maskInRange(v, 52, 255) & ('0' - 'z' - 1);
  c += maskInRange(v, 62, 255) & ((url ? '-' : '+') - '9' - 1);
  c += maskInRange(v, 63, 255) & (url ? '_' - '-' - 1 : '/' - '+' - 1);
  return static_cast<char>(c);
}

void encodeGroup(const u8* in, bool url, char* out) {
  const u32 bits = u32{in[0]} << 16 | u32{in[1]} << 8 | in[2];
  for (u32 k = 0; k < 4; ++k) out[k] = letter(bits >> (18 - 6 * k), url);
}

// The last group of one or two bytes.
void pad(u32 bytesOfLastGroup, char* group) {
  group[3] = '=';
  if (bytesOfLastGroup < 2) group[2] = '=';
}

// The ends of the lines and the last line are the same for both forms.
using Encode = void(const u8* in, u32 n, bool url, char* out);
void encodeLastLine(Encode& encode, const u8* in, u32 n, const LineEnd& end, char* out) {
  if (n == 0) return;
  encode(in, n, false, out);
  std::memcpy(out + (n + 2) / 3 * 4, end.text, end.length);
}

}  // namespace

void base64EncodeScalar(const u8* in, u32 n, bool url, char* out) {
  u32 i = 0;
  for (; n - i >= 3; i += 3, out += 4) encodeGroup(in + i, url, out);
  if (i == n) return;
  const u8 last[3] = {in[i], n - i == 2 ? in[i + 1] : u8{0}, 0};
  encodeGroup(last, url, out);
  pad(n - i, out);
}

void base64EncodeLinesScalar(const u8* in, u32 n, u32 lineBytes, const LineEnd& end, char* out) {
  for (; n > lineBytes; in += lineBytes, n -= lineBytes, out += lineBytes / 3 * 4 + end.length)
    encodeLastLine(base64EncodeScalar, in, lineBytes, end, out);
  encodeLastLine(base64EncodeScalar, in, n, end, out);
}

#if VARNIK_HAVE_AVX2
namespace {

constexpr u32 kBlockBytes = 24, kBlockChars = 32;
constexpr u32 kMargin = 4;  // bytes that a block in the midst of others reads before and behind its own

// What to add to a value, by the class found in `lettersOf`: 0 upper case, 1 lower case, 2 to 11 the digits, 12 and 13
// the two that differ.
[[VARNIK_AVX2]] inline __m256i offsets(bool url) {
  constexpr char lower = 'a' - 26, digit = '0' - 52;
  const char minus = static_cast<char>((url ? '-' : '+') - 62), slash = static_cast<char>((url ? '_' : '/') - 63);
  return _mm256_broadcastsi128_si256(_mm_setr_epi8('A', lower, digit, digit, digit, digit, digit, digit, digit, digit,
                                                   digit, digit, minus, slash, 0, 0));
}

[[VARNIK_AVX2]] inline __m256i lettersOf(__m256i values, __m256i offset) {
  const __m256i pastUpper = _mm256_cmpgt_epi8(values, _mm256_set1_epi8(25));  // -1 there
  const __m256i kind = _mm256_sub_epi8(_mm256_subs_epu8(values, _mm256_set1_epi8(51)), pastUpper);
  return _mm256_add_epi8(values, _mm256_shuffle_epi8(offset, kind));
}

// The 32 letters of 24 bytes, which stand at `first` in the lower half of the vector and at `second` in the upper one.
// Three bytes are spread over 32 bits as b c | a b (high to low); multiplications shift each value into its place.
template <char first, char second>
[[VARNIK_AVX2]] inline __m256i encodedFrom(__m256i bytes, __m256i offset) {
  const __m256i spread =
      _mm256_add_epi8(_mm256_broadcastsi128_si256(_mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10)),
                      _mm256_set_m128i(_mm_set1_epi8(second), _mm_set1_epi8(first)));
  const __m256i groups = _mm256_shuffle_epi8(bytes, spread);
  const __m256i evenBits = _mm256_and_si256(groups, _mm256_set1_epi32(0x0FC0FC00));
  const __m256i oddBits = _mm256_and_si256(groups, _mm256_set1_epi32(0x003F03F0));
  const __m256i values = _mm256_or_si256(_mm256_mulhi_epu16(evenBits, _mm256_set1_epi32(0x04000040)),
                                         _mm256_mullo_epi16(oddBits, _mm256_set1_epi32(0x01000010)));
  return lettersOf(values, offset);
}

[[VARNIK_AVX2]] inline void store(char* out, __m256i letters) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), letters);
}

// Reads no byte but the block's own: the second load begins earlier, so that it ends with the block.
[[VARNIK_AVX2]] inline __m256i encodedBlock(const u8* in, __m256i offset) {
  const __m128i front = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
  const __m128i back = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + 8));
  return encodedFrom<0, 4>(_mm256_set_m128i(back, front), offset);
}
[[VARNIK_AVX2]] inline void encodeBlock(const u8* in, __m256i offset, char* out) {
  store(out, encodedBlock(in, offset));
}

// One load. REQUIRES: `kMargin` readable bytes on either side.
[[VARNIK_AVX2]] inline void encodeInnerBlock(const u8* in, __m256i offset, char* out) {
  store(out, encodedFrom<4, 0>(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(in - kMargin)), offset));
}

// Encodes what is shorter than a block through a block of its own.
[[VARNIK_AVX2]] void encodeShort(const u8* in, u32 n, __m256i offset, char* out) {
  u8 bytes[kBlockBytes] = {};
  char text[kBlockChars];
  std::memcpy(bytes, in, n);
  encodeBlock(bytes, offset, text);
  const u32 chars = (n + 2) / 3 * 4;
  if (n % 3 != 0) pad(n % 3, text + chars - 4);
  std::memcpy(out, text, chars);
}

// A line of at least one block with others around it; its last block overlaps the one before.
[[VARNIK_AVX2]] inline void encodeInnerLine(const u8* in, u32 n, __m256i offset, char* out) {
  u32 i = 0;
  for (; n - i >= kBlockBytes; i += kBlockBytes) encodeInnerBlock(in + i, offset, out + i / 3 * 4);
  if (i < n) encodeInnerBlock(in + n - kBlockBytes, offset, out + (n - kBlockBytes) / 3 * 4);
}

// A group of one or two bytes.
[[VARNIK_AVX2]] inline void encodeLastGroup(const u8* in, u32 n, __m256i offset, char* out) {
  const int bytes = n == 2 ? in[0] | in[1] << 8 : in[0];
  const int text = _mm256_cvtsi256_si32(encodedFrom<0, 0>(_mm256_castsi128_si256(_mm_cvtsi32_si128(bytes)), offset));
  std::memcpy(out, &text, 4);
  pad(n, out);
}

// Whole groups by blocks, of which the last one overlaps the one before.
[[VARNIK_AVX2]] inline void encodeLine(const u8* in, u32 n, __m256i offset, char* out) {
  if (n < kBlockBytes) {
    if (n != 0) encodeShort(in, n, offset, out);
    return;
  }
  const u32 whole = n - n % 3;
  u32 i = 0;
  for (; whole - i >= kBlockBytes; i += kBlockBytes) encodeBlock(in + i, offset, out + i / 3 * 4);
  if (i < whole) encodeBlock(in + whole - kBlockBytes, offset, out + (whole - kBlockBytes) / 3 * 4);
  if (whole < n) encodeLastGroup(in + whole, n - whole, offset, out + whole / 3 * 4);
}

}  // namespace

[[VARNIK_AVX2]] void base64EncodeAvx2(const u8* in, u32 n, bool url, char* out) {
  constexpr u32 kBlocks = 4;
  const __m256i offset = offsets(url);
  if (n >= (kBlocks + 1) * kBlockBytes + kMargin) {
    encodeBlock(in, offset, out);
    in += kBlockBytes, n -= kBlockBytes, out += kBlockChars;
    for (; n >= kBlocks * kBlockBytes + kMargin;
         in += kBlocks * kBlockBytes, n -= kBlocks * kBlockBytes, out += kBlocks * kBlockChars)
      for (u32 k = 0; k < kBlocks; ++k) encodeInnerBlock(in + k * kBlockBytes, offset, out + k * kBlockChars);
  }
  encodeLine(in, n, offset, out);
}

// Whole lines of the cache, so that none is read before it is written.
[[VARNIK_AVX2]] void base64EncodeStreamAvx2(const u8* in, u32 n, bool url, char* out) {
  const u32 before = charsBeforeLine(out), bytesBefore = before / 4 * 3;
  if (before % 4 != 0 || bytesBefore > n) return base64EncodeAvx2(in, n, url, out);
  base64EncodeAvx2(in, bytesBefore, url, out);
  in += bytesBefore, n -= bytesBefore, out += before;
  const __m256i offset = offsets(url);
  for (; n >= 2 * kBlockBytes; in += 2 * kBlockBytes, n -= 2 * kBlockBytes, out += 2 * kBlockChars)
    streamLine(out, encodedBlock(in, offset), encodedBlock(in + kBlockBytes, offset));
  _mm_sfence();
  base64EncodeAvx2(in, n, url, out);
}

// The first line has no bytes before it, and the last ones have no whole block behind them. While another line follows,
// its first characters may take what is stored behind a line's end.
[[VARNIK_AVX2]] void base64EncodeLinesAvx2(const u8* in, u32 n, u32 lineBytes, const LineEnd& end, char* out) {
  if (lineBytes < kBlockBytes) return base64EncodeLinesScalar(in, n, lineBytes, end, out);
  const __m256i offset = offsets(false);
  const LineEnd lineEnd = end;  // no store of characters can be thought to change it
  const u32 lineChars = lineBytes / 3 * 4, length = lineChars + lineEnd.length;
  const auto encodeAlone = [&](u32 count) {
    encodeLastLine(base64EncodeAvx2, in, count, lineEnd, out);
    in += count, n -= count, out += length;
  };
  if (n > lineBytes) encodeAlone(lineBytes);
  for (; n >= lineBytes + kBlockBytes; in += lineBytes, n -= lineBytes, out += length) {
    encodeInnerLine(in, lineBytes, offset, out);
    std::memcpy(out + lineChars, lineEnd.text, sizeof lineEnd.text);
  }
  while (n > lineBytes) encodeAlone(lineBytes);
  encodeLastLine(base64EncodeAvx2, in, n, lineEnd, out);
}
#endif

void base64Encode(const u8* in, u32 n, bool url, char* out) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return base64EncodeAvx512(in, n, url, out);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return base64EncodeAvx2(in, n, url, out);
#elif VARNIK_HAVE_NEON
  return base64EncodeNeon(in, n, url, out);
#endif
  base64EncodeScalar(in, n, url, out);
}

void base64EncodeStream(const u8* in, u32 n, bool url, char* out) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return base64EncodeStreamAvx512(in, n, url, out);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return base64EncodeStreamAvx2(in, n, url, out);
#endif
  base64Encode(in, n, url, out);
}

void base64EncodeLines(const u8* in, u32 n, u32 lineBytes, const LineEnd& end, char* out) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return base64EncodeLinesAvx512(in, n, lineBytes, end, out);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return base64EncodeLinesAvx2(in, n, lineBytes, end, out);
#elif VARNIK_HAVE_NEON
  return base64EncodeLinesNeon(in, n, lineBytes, end, out);
#endif
  base64EncodeLinesScalar(in, n, lineBytes, end, out);
}

}  // namespace vk_simd
