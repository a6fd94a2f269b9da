// The values of 64 hex digits at once, looked up by six bits, so that one register holds the table.
#pragma once

#include "varnik/simd/Cpu.h"

#if VARNIK_HAVE_AVX512
#include <immintrin.h>

#include <array>
#include <string_view>

#include "varnik/simd/HexUnescape.h"

namespace vk_simd {

/// By the low six bits of a character the digit with these bits, of which there is one at most: its value, and above
/// that its own upper three bits. Where there is none bit 5 is one that no such character has.
alignas(64) inline constexpr std::array<u8, 64> kHexTable = [] {
  std::array<u8, 64> digits{};
  for (u32 i = 0; i < digits.size(); ++i) digits[i] = ~i & 0x20;
  for (const char c : std::string_view("0123456789ABCDEFabcdef"))
    digits[c & 63] = static_cast<u8>(hexValue(static_cast<u8>(c)) | (c & 0xE0));
  return digits;
}();
inline constexpr char kHexFault = static_cast<char>(0xE0);

[[VARNIK_AVX512]] inline __m512i hexTable() {
  return _mm512_load_si512(kHexTable.data());
}

struct HexValues {
  __m512i values;  // in the low four bits
  __m512i faults;  // a bit of `kHexFault` is set where a character is no digit
};
[[VARNIK_AVX512]] inline HexValues hexValues(__m512i text, __m512i table) {
  const __m512i digits = _mm512_maskz_permutexvar_epi8(~u64{0}, text, table);
  return {digits, _mm512_xor_si512(digits, text)};
}

/// A bit for each fault in either of two.
[[VARNIK_AVX512]] inline u64 hexFaults(__m512i a, __m512i b) {
  return _mm512_test_epi8_mask(_mm512_or_si512(a, b), _mm512_set1_epi8(kHexFault));
}

/// 64 characters, those where an escape begins turned into the byte that it stands for, and a bit for each of these.
struct Unescaped512 {
  __m512i bytes;
  u64 escapes;
};

/// Takes those of `text` that `marked` tells and two digits follow as escapes; `second` and `third` are the same text
/// from one and two characters later on.
[[VARNIK_AVX512]] inline Unescaped512 unescape64(__m512i text, __m512i second, __m512i third, u64 marked,
                                                 __m512i table) {
  constexpr int kThirdChooses = 0xE4;
  const HexValues high = hexValues(second, table), low = hexValues(third, table);
  const u64 escapes = marked & ~hexFaults(high.faults, low.faults);
  const __m512i upper = _mm512_slli_epi16(high.values, 4), lower = low.values;
  const __m512i bytes = _mm512_ternarylogic_epi32(lower, upper, _mm512_set1_epi8(15), kThirdChooses);
  return {_mm512_mask_mov_epi8(text, escapes, bytes), escapes};
}

}  // namespace vk_simd
#endif
