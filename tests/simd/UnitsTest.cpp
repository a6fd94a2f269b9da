// The kernels for UTF-16 units: each form against the scalar one, at every length and two alignments, with the data's
// end at an unreadable page.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/simd/Forms.h"
#include "tests/support/GuardedBytes.h"
#include "varnik/simd/FindUnits.h"
#include "varnik/simd/LetterCase.h"

namespace {

// Text of many scripts with one unit in it that no kernel knows, or with none; that the mappings themselves are right
// is shown beside the services that use them.
TEST(LetterCase, FormsAgree) {
  constexpr std::u16string_view kKnown =
      u"azAZ09 \u00B5\u00DF\u00E9\u00F7\u00FF\u00D7\u03AC\u03C2\u03CE\u0386\u03A2\u0401\u0451\u044F\u4E2D\U0001F600";
  GuardedBytes area(4096);
  for (std::size_t n = 0; n <= 150; ++n)
    for (std::size_t odd = 0; odd <= n; odd += 1 + n / 40) {
      std::u16string text(n, u'a');
      for (std::size_t i = 0; i < n; ++i) text[i] = kKnown[(i * i + 7 * i + n) % (n % 3 == 0 ? 7 : kKnown.size())];
      if (odd < n) text[odd] = u'\u0101';
      const std::string_view given(reinterpret_cast<const char*>(text.data()), n * 2);
      const auto check = [&](const auto& forms) {
        std::string want(given);
        forms[0].run(reinterpret_cast<u8*>(want.data()), static_cast<u32>(n));
        for (const auto& form : forms) {
          u8* const at = area.ending(given);
          ASSERT_EQ(form.run(at, static_cast<u32>(n)), std::min(odd, n) / 16 * 16) << form.name << n << " " << odd;
          ASSERT_EQ(std::string(reinterpret_cast<char*>(at), n * 2), want) << form.name << n << " " << odd;
        }
      };
      check(VARNIK_FORMS(upperBlocks));
      check(VARNIK_FORMS(lowerBlocks));
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
