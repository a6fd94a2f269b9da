// The values of 64 hex digits at once, looked up among all characters below 0x80, which two registers hold.
#pragma once

#include "varnik/simd/Cpu.h"

#if VARNIK_HAVE_AVX512
#include <immintrin.h>

#include <array>

#include "varnik/simd/HexUnescape.h"

namespace vk_simd {

/// The value of each character below 0x80; the high bit is set for those that are no digit.
alignas(64) inline constexpr std::array<u8, 128> kHexTable = [] {
  std::array<u8, 128> values{};
  for (u32 c = 0; c < 128; ++c) values[c] = hexValue(static_cast<u8>(c));
  return values;
}();

struct HexTable {
  __m512i low, high;
};
[[VARNIK_AVX512]] inline HexTable hexTable() {
  return {_mm512_load_si512(kHexTable.data()), _mm512_load_si512(kHexTable.data() + 64)};
}

/// The high bit is set where a character is no digit.
[[VARNIK_AVX512]] inline __m512i hexValues(__m512i text, const HexTable& table) {
  constexpr int kFirstOrBothOthers = 0xF8;
  return _mm512_ternarylogic_epi32(_mm512_permutex2var_epi8(table.low, text, table.high), text,
                                   _mm512_set1_epi8(static_cast<char>(0x80)), kFirstOrBothOthers);
}

/// 64 characters, those where an escape begins turned into the byte that it stands for, and a bit for each of these.
struct Unescaped512 {
  __m512i bytes;
  u64 escapes;
};

/// Takes those of `text` that `marked` tells and two digits follow as escapes; `second` and `third` are the same text
/// from one and two characters later on.
[[VARNIK_AVX512]] inline Unescaped512 unescape64(__m512i text, __m512i second, __m512i third, u64 marked,
                                                 const HexTable& table) {
  const __m512i high = hexValues(second, table), low = hexValues(third, table);
  const u64 escapes = marked & ~_mm512_movepi8_mask(_mm512_or_si512(high, low));
  const __m512i upper = _mm512_slli_epi16(_mm512_and_si512(high, _mm512_set1_epi8(15)), 4);
  return {_mm512_mask_mov_epi8(text, escapes, _mm512_or_si512(upper, low)), escapes};
}

}  // namespace vk_simd
#endif
