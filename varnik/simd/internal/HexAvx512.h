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

}  // namespace vk_simd
#endif
