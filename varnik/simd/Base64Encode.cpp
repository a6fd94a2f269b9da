#include <cstring>

#include "varnik/simd/Base64.h"
#include "varnik/simd/Branchless.h"

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

void pad(u32 bytesOfLastGroup, char* group) {
  if (bytesOfLastGroup < 3) group[3] = '=';
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

// What to add to a value, by the class found in `lettersOf`: 0 lower case, 1 to 10 the digits, 11 and 12 the two that
// differ, 13 upper case.
[[VARNIK_AVX2]] inline __m256i offsets(bool url) {
  constexpr char lower = 'a' - 26, digit = '0' - 52;
  const char minus = static_cast<char>((url ? '-' : '+') - 62), slash = static_cast<char>((url ? '_' : '/') - 63);
  return _mm256_broadcastsi128_si256(_mm_setr_epi8(lower, digit, digit, digit, digit, digit, digit, digit, digit, digit,
                                                   digit, minus, slash, 'A', 0, 0));
}

// The 32 values of 24 bytes. Each half of the vector takes 12 bytes, its second load begins earlier so that it ends
// with the block. Three bytes are spread over 32 bits as b c | a b (high to low); multiplications shift each value into
// place.
[[VARNIK_AVX2]] inline __m256i valuesOf(const u8* in) {
  const __m128i front = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
  const __m128i back = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + 8));
  const __m256i spread = _mm256_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10,  //
                                          5, 4, 6, 5, 8, 7, 9, 8, 11, 10, 12, 11, 14, 13, 15, 14);
  const __m256i groups = _mm256_shuffle_epi8(_mm256_set_m128i(back, front), spread);
  const __m256i evenBits = _mm256_and_si256(groups, _mm256_set1_epi32(0x0FC0FC00));
  const __m256i oddBits = _mm256_and_si256(groups, _mm256_set1_epi32(0x003F03F0));
  return _mm256_or_si256(_mm256_mulhi_epu16(evenBits, _mm256_set1_epi32(0x04000040)),
                         _mm256_mullo_epi16(oddBits, _mm256_set1_epi32(0x01000010)));
}

[[VARNIK_AVX2]] inline __m256i lettersOf(__m256i values, __m256i offset) {
  const __m256i upper = _mm256_and_si256(_mm256_cmpgt_epi8(_mm256_set1_epi8(26), values), _mm256_set1_epi8(13));
  const __m256i kind = _mm256_or_si256(_mm256_subs_epu8(values, _mm256_set1_epi8(51)), upper);
  return _mm256_add_epi8(values, _mm256_shuffle_epi8(offset, kind));
}

[[VARNIK_AVX2]] inline void encodeBlock(const u8* in, __m256i offset, char* out) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), lettersOf(valuesOf(in), offset));
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

// A whole line of at least one block; the last block overlaps the one before it.
[[VARNIK_AVX2]] inline void encodeLine(const u8* in, u32 n, __m256i offset, char* out) {
  u32 i = 0;
  for (; n - i >= kBlockBytes; i += kBlockBytes) encodeBlock(in + i, offset, out + i / 3 * 4);
  if (i < n) encodeBlock(in + n - kBlockBytes, offset, out + (n - kBlockBytes) / 3 * 4);
}

}  // namespace

[[VARNIK_AVX2]] void base64EncodeAvx2(const u8* in, u32 n, bool url, char* out) {
  const __m256i offset = offsets(url);
  for (; n >= 2 * kBlockBytes; in += 2 * kBlockBytes, n -= 2 * kBlockBytes, out += 2 * kBlockChars) {
    encodeBlock(in, offset, out);
    encodeBlock(in + kBlockBytes, offset, out + kBlockChars);
  }
  if (n >= kBlockBytes) {
    encodeBlock(in, offset, out);
    in += kBlockBytes, n -= kBlockBytes, out += kBlockChars;
  }
  if (n != 0) encodeShort(in, n, offset, out);
}

// While another line follows, its first characters may take what is stored behind a line's end.
[[VARNIK_AVX2]] void base64EncodeLinesAvx2(const u8* in, u32 n, u32 lineBytes, const LineEnd& end, char* out) {
  if (lineBytes < kBlockBytes) return base64EncodeLinesScalar(in, n, lineBytes, end, out);
  const __m256i offset = offsets(false);
  const u32 lineChars = lineBytes / 3 * 4;
  for (; n >= lineBytes + kBlockBytes; in += lineBytes, n -= lineBytes, out += lineChars + end.length) {
    encodeLine(in, lineBytes, offset, out);
    std::memcpy(out + lineChars, end.text, sizeof end.text);
  }
  for (; n > lineBytes; in += lineBytes, n -= lineBytes, out += lineChars + end.length)
    encodeLastLine(base64EncodeAvx2, in, lineBytes, end, out);
  encodeLastLine(base64EncodeAvx2, in, n, end, out);
}
#endif

void base64Encode(const u8* in, u32 n, bool url, char* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return base64EncodeAvx2(in, n, url, out);
#endif
  base64EncodeScalar(in, n, url, out);
}

void base64EncodeLines(const u8* in, u32 n, u32 lineBytes, const LineEnd& end, char* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return base64EncodeLinesAvx2(in, n, lineBytes, end, out);
#endif
  base64EncodeLinesScalar(in, n, lineBytes, end, out);
}

}  // namespace vk_simd
