// The kernels for UTF-16 units: each form against the scalar one, at every length and two alignments, with the data's
// end at an unreadable page.
#include <gtest/gtest.h>

#include <bit>

#include "tests/simd/Forms.h"
#include "tests/support/Bytes.h"
#include "tests/support/GuardedBytes.h"
#include "varnik/simd/AsciiCase.h"
#include "varnik/simd/FindUnits.h"

namespace {

constexpr std::size_t kLow = std::endian::native == std::endian::little ? 0 : 1;  // of a unit's bytes

std::string units(std::size_t n, u32 seed, u8 high) {
  std::string bytes = randomBytes(n * 2, seed);
  for (std::size_t i = 0; i < n; ++i) {
    bytes[2 * i + 1 - kLow] = static_cast<char>(high);
    bytes[2 * i + kLow] = static_cast<char>(bytes[2 * i + kLow] & 0x7F);
  }
  return bytes;
}

TEST(AsciiCase, FormsAgree) {
  GuardedBytes area(4096);
  for (std::size_t n = 0; n <= 100; ++n)
    for (std::size_t odd = 0; odd <= n; ++odd) {  // where a unit that is not ASCII stands; n for none
      std::string text = units(n, static_cast<u32>(n), 0);
      if (odd < n) text[2 * odd + odd % 2] = static_cast<char>(0x80);
      const u32 want = static_cast<u32>(std::min(odd, n) / 16 * 16);
      const auto check = [&](const auto& forms, char first) {
        std::string expected = text;
        for (std::size_t i = kLow; i < 2 * want; i += 2)
          if (text[i] >= first && text[i] < first + 26) expected[i] = static_cast<char>(text[i] ^ 0x20);
        for (const auto& form : forms) {
          u8* const at = area.ending(text);
          ASSERT_EQ(form.run(at, static_cast<u32>(n)), want) << form.name << n << " " << odd;
          ASSERT_EQ(std::string(reinterpret_cast<char*>(at), n * 2), expected) << form.name << n;
        }
      };
      check(VARNIK_FORMS(upperAsciiBlocks), 'a');
      check(VARNIK_FORMS(lowerAsciiBlocks), 'A');
    }
}

TEST(FindUnitPair, FormsAgree) {
  const vk_simd::UnitPair near{{'k', 'K', 0x212A, 'k'}, {'s', 'S', 0x17F, 's'}, 0};
  GuardedBytes area(4096);
  for (const u32 distance : {0u, 1u, 5u, 16u, 33u})
    for (u32 places = 0; places <= 70; ++places)
      for (u32 hit = 0; hit <= places; ++hit) {
        vk_simd::UnitPair pair = near;
        pair.distance = distance;
        if (distance == 0) std::copy(near.first, near.first + 4, pair.second);
        std::u16string text(places + distance, u'k');  // half of what is wanted is everywhere
        if (distance == 0) text.assign(places, u'x');
        if (hit < places) {
          text[hit] = u'\u212A';
          if (distance != 0) text[hit + distance] = hit % 2 ? u'\u017F' : u'S';
        }
        const std::string_view bytes(reinterpret_cast<const char*>(text.data()), text.size() * 2);
        for (const auto& form : VARNIK_FORMS(findUnitPair))
          ASSERT_EQ(form.run(area.ending(bytes), places, pair), hit) << form.name << places << " " << distance;
      }
}

}  // namespace
