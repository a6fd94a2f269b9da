#include "varnik/simd/Base64.h"

#if VARNIK_HAVE_NEON
#include <arm_neon.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace vk_simd {
namespace {

// The tables are held in registers, so no address depends on the data.
using Letters = std::array<u8, 64>;
using Values = std::array<u8, 128>;

constexpr Letters lettersOf(bool url) {
  Letters letters{};
  for (u32 v = 0; v < 64; ++v)
    letters[v] = static_cast<u8>(v < 26    ? 'A' + v
                                 : v < 52  ? 'a' + v - 26
                                 : v < 62  ? '0' + v - 52
                                 : v == 62 ? '+'
                                           : '/');
  if (url) letters[62] = '-', letters[63] = '_';
  return letters;
}

// The value of each ASCII character with the highest bit set, 0 outside the alphabet.
constexpr Values valuesOf(bool url) {
  Values values{};
  for (const bool form : {false, url})
    for (u32 v = 0; v < 64; ++v) values[lettersOf(form)[v]] = static_cast<u8>(0x80 | v);
  return values;
}

constexpr Letters kLetters[2] = {lettersOf(false), lettersOf(true)};
constexpr Values kValues[2] = {valuesOf(false), valuesOf(true)};

// A table gives 0 for an index of 64 or more.
uint8x16_t valuesOf(uint8x16_t c, const uint8x16x4_t& low, const uint8x16x4_t& high) {
  return vorrq_u8(vqtbl4q_u8(low, c), vqtbl4q_u8(high, veorq_u8(c, vdupq_n_u8(0x40))));
}

}  // namespace

void base64EncodeNeon(const u8* in, u32 n, bool url, char* out) {
  const uint8x16x4_t letters = vld1q_u8_x4(kLetters[url].data());
  const uint8x16_t six = vdupq_n_u8(63);
  for (; n >= 48; n -= 48, in += 48, out += 64) {
    const uint8x16x3_t b = vld3q_u8(in);
    const uint8x16_t second = vsliq_n_u8(vshrq_n_u8(b.val[1], 4), b.val[0], 4);
    const uint8x16_t third = vsliq_n_u8(vshrq_n_u8(b.val[2], 6), b.val[1], 2);
    vst4q_u8(reinterpret_cast<u8*>(out), {{vqtbl4q_u8(letters, vshrq_n_u8(b.val[0], 2)),  //
                                           vqtbl4q_u8(letters, vandq_u8(second, six)),    //
                                           vqtbl4q_u8(letters, vandq_u8(third, six)),     //
                                           vqtbl4q_u8(letters, vandq_u8(b.val[2], six))}});
  }
  base64EncodeScalar(in, n, url, out);
}

// The scalar finds the fault in the block that has one.
u32 base64DecodeNeon(const char* in, u32 n, bool url, u8* out) {
  const uint8x16x4_t low = vld1q_u8_x4(kValues[url].data()), high = vld1q_u8_x4(kValues[url].data() + 64);
  u32 i = 0;
  for (; n - i >= 64; i += 64, out += 48) {
    const uint8x16x4_t c = vld4q_u8(reinterpret_cast<const u8*>(in + i));
    const uint8x16_t v0 = valuesOf(c.val[0], low, high), v1 = valuesOf(c.val[1], low, high),
                     v2 = valuesOf(c.val[2], low, high), v3 = valuesOf(c.val[3], low, high);
    if (vminvq_u8(vandq_u8(vandq_u8(v0, v1), vandq_u8(v2, v3))) < 0x80) break;
    // A shift drops the highest bit or the next value's overwrites it.
    const uint8x16_t six1 = vshlq_n_u8(v1, 2), six2 = vshlq_n_u8(v2, 2);
    vst3q_u8(out, {{vsriq_n_u8(vshlq_n_u8(v0, 2), six1, 6),  //
                    vsriq_n_u8(vshlq_n_u8(v1, 4), six2, 4),  //
                    vsliq_n_u8(vandq_u8(v3, vdupq_n_u8(63)), v2, 6)}});
  }
  return i + base64DecodeScalar(in + i, n - i, url, out);
}

void base64EncodeLinesNeon(const u8* in, u32 n, u32 lineBytes, const LineEnd& end, char* out) {
  while (n != 0) {
    const u32 count = std::min(n, lineBytes);
    base64EncodeNeon(in, count, false, out);
    out += std::size_t{count + 2} / 3 * 4;
    std::memcpy(out, end.text, end.length);
    out += end.length, in += count, n -= count;
  }
}

u32 base64DecodeLinesNeon(const char* in, u32 n, u32 lineChars, std::string_view end, u8* out) {
  const u32 length = lineChars + static_cast<u32>(end.size());
  u32 lines = 0;
  for (; n >= length; n -= length, in += length, out += lineChars / 4 * 3, ++lines)
    if (std::string_view(in + lineChars, end.size()) != end || base64DecodeNeon(in, lineChars, false, out) != lineChars)
      break;
  return lines;
}

}  // namespace vk_simd
#endif
