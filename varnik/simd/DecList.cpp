#include "varnik/simd/DecList.h"

#include <cstring>

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

namespace {

// The characters "ddd," of each byte value, and how many there are.
struct Table {
  u8 text[256][4];
  u8 length[256];
};
constexpr Table kTable = [] {
  Table table{};
  for (u32 value = 0; value < 256; ++value) {
    u8* p = table.text[value];
    if (value >= 100) *p++ = static_cast<u8>('0' + value / 100);
    if (value >= 10) *p++ = static_cast<u8>('0' + value / 10 % 10);
    *p++ = static_cast<u8>('0' + value % 10);
    *p++ = ',';
    table.length[value] = static_cast<u8>(p - table.text[value]);
  }
  return table;
}();

}  // namespace

u32 putDecList(const u8* from, u32 n, u8* out) {
  u8* p = out;
  for (u32 i = 0; i < n; ++i) {
    std::memcpy(p, kTable.text[from[i]], 4);
    p += kTable.length[from[i]];
  }
  return static_cast<u32>(p - out);
}

DecListRun readDecListScalar(const u8* text, u32 n, u8* out, u32 room) {
  DecListRun done{0, 0};
  while (done.values < room) {
    u32 value = 0, i = done.chars;
    while (i < n && i - done.chars < 4 && text[i] >= '0' && text[i] <= '9') value = value * 10 + (text[i++] - '0');
    const u32 digits = i - done.chars;
    if (digits == 0 || digits > 3 || value > 255 || i == n || text[i] != ',') break;
    out[done.values++] = static_cast<u8>(value);
    done.chars = i + 1;
  }
  return done;
}

#if VARNIK_HAVE_AVX2
namespace {

// One bit for each of 64 characters: which are commas, and which are neither that nor a digit.
struct Marks {
  u64 commas, others;
};

[[VARNIK_AVX2]] inline u64 maskOf(__m256i first, __m256i second) {
  return static_cast<u32>(_mm256_movemask_epi8(first)) | u64{static_cast<u32>(_mm256_movemask_epi8(second))} << 32;
}

[[VARNIK_AVX2]] inline Marks marksOf(const u8* text) {
  const __m256i comma = _mm256_set1_epi8(','), nine = _mm256_set1_epi8(9), zero = _mm256_set1_epi8('0');
  const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text));
  const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text + 32));
  const __m256i digitA = _mm256_sub_epi8(a, zero), digitB = _mm256_sub_epi8(b, zero);
  const u64 digits = maskOf(_mm256_cmpeq_epi8(_mm256_min_epu8(digitA, nine), digitA),
                            _mm256_cmpeq_epi8(_mm256_min_epu8(digitB, nine), digitB));
  const u64 commas = maskOf(_mm256_cmpeq_epi8(a, comma), _mm256_cmpeq_epi8(b, comma));
  return {commas, ~(digits | commas)};
}

// The value of the one to three digits at `p`, where four characters can be read.
inline u32 valueOf(const u8* p, u32 digits) {
  u32 word;
  std::memcpy(&word, p, 4);
  word = (word ^ 0x30303030) << (8 * (4 - digits));  // the last digit on top, zeros for those that are missing
  return (word >> 24) + (word >> 16 & 0xFF) * 10 + (word >> 8 & 0xFF) * 100;
}

}  // namespace

// The commas of 64 characters are found at once, so that no value waits for the length of the one before it.
[[VARNIK_AVX2]] DecListRun readDecListAvx2(const u8* text, u32 n, u8* out, u32 room) {
  DecListRun done{0, 0};
  while (n - done.chars >= 68 && room - done.values >= 32) {
    const u8* const block = text + done.chars;
    const Marks marks = marksOf(block);
    u64 commas = marks.commas & (_blsmsk_u64(marks.others) >> 1);  // those before the first other character
    if (marks.others == 0) commas = marks.commas;
    u32 start = 0;
    while (commas != 0) {
      const u32 at = static_cast<u32>(_tzcnt_u64(commas)), digits = at - start;
      commas = _blsr_u64(commas);
      const u32 value = digits - 1 < 3 ? valueOf(block + start, digits) : 256;
      if (value > 255) return {done.chars + start, done.values};
      out[done.values++] = static_cast<u8>(value);
      start = at + 1;
    }
    done.chars += start;
    if (start == 0 || marks.others != 0) return done;
  }
  const DecListRun rest = readDecListScalar(text + done.chars, n - done.chars, out + done.values, room - done.values);
  return {done.chars + rest.chars, done.values + rest.values};
}
#endif

DecListRun readDecList(const u8* text, u32 n, u8* out, u32 room) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return readDecListAvx2(text, n, out, room);
#endif
  return readDecListScalar(text, n, out, room);
}

}  // namespace vk_simd
