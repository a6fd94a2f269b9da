// Letter case of UTF-16 units, and the search that ignores it, against ICU's properties and a plain search.
#include <unicode/uchar.h>

#include "tests/support/Test.h"

namespace {

u16 folded(u16 unit) {
  return static_cast<u16>(u_foldCase(unit, U_FOLD_CASE_DEFAULT));
}

s64 plainSearch(const std::u16string& text, const std::u16string& needle) {
  const auto at = std::search(text.begin(), text.end(), needle.begin(), needle.end(),
                              [](char16_t a, char16_t b) { return folded(a) == folded(b); });
  return at == text.end() && !needle.empty() ? -1 : at - text.begin();
}

// The same text at an even and at an odd address.
s64 search(const std::u16string& text, const std::u16string& needle) {
  const auto units = [](const char* p) { return reinterpret_cast<const u16*>(p); };
  s64 at[2];
  for (int shift = 0; shift < 2; ++shift) {
    const std::string moved = std::string(static_cast<std::size_t>(shift), 'x') + unitsOf(text);
    const char* const start = moved.data() + shift;
    const u16* hit = vk_findUtf16NoCase(units(start), static_cast<u32>(text.size()),
                                        reinterpret_cast<const u16*>(needle.data()), static_cast<u32>(needle.size()));
    at[shift] = hit ? (reinterpret_cast<const char*>(hit) - start) / 2 : -1;
  }
  EXPECT_EQ(at[0], at[1]);
  return at[0];
}

TEST(Utf16Case, EveryUnitMapsAsItsCharacterDoes) {
  std::u16string all, upper, lower;
  for (u32 i = 0; i < 0x10000; ++i) {
    const u16 unit = static_cast<u16>(i);
    const auto u = u_toupper(unit), l = u_tolower(unit);
    all.append(16, static_cast<char16_t>(unit));  // a block of its own
    upper.append(16, static_cast<char16_t>(u <= 0xFFFF ? u : unit));
    lower.append(16, static_cast<char16_t>(l <= 0xFFFF ? l : unit));
    ASSERT_EQ(Utf16Case::toUpper(unit), upper.back());
    ASSERT_EQ(Utf16Case::toLower(unit), lower.back());
  }
  EXPECT_EQ(Utf16Case::toUpper(0xDF), 0xDF);
  EXPECT_EQ(Utf16Case::toUpper(0xFF), 0x178);
  for (std::size_t shift = 0; shift < 3; ++shift) {
    const auto mapped = [&](void (*map)(u8*, u32)) {
      std::string bytes = std::string(shift, 'x') + unitsOf(all);
      map(reinterpret_cast<u8*>(bytes.data() + shift), static_cast<u32>(all.size()));
      return bytes.substr(shift);
    };
    EXPECT_TRUE(mapped(Utf16Case::toUpper) == unitsOf(upper));
    EXPECT_TRUE(mapped(Utf16Case::toLower) == unitsOf(lower));
  }
  Utf16Case::toUpper(nullptr, 0);
}

TEST(Utf16Search, FindsEveryUnitInEachOfItsCases) {
  std::vector<std::u16string> alike(0x10000);
  for (u32 i = 0; i < 0x10000; ++i) alike[folded(static_cast<u16>(i))] += static_cast<char16_t>(i);
  for (const std::u16string& kin : alike)
    for (const char16_t a : kin)
      for (const char16_t b : kin) {
        if (kin.size() == 1 && a % 64 != 0) continue;
        ASSERT_EQ(search(u"..." + std::u16string(1, a), std::u16string(1, b)), 3) << int{a} << " " << int{b};
        ASSERT_EQ(search(u"-------------------" + std::u16string{a, u'-', a}, std::u16string{b, u'-', b}), 19);
      }
  EXPECT_EQ(search(u"stra\u00DFe", u"STRASSE"), -1) << "unit for unit: one does not match two";
  EXPECT_EQ(search(u"\xD800", u"\xD801"), -1);
  const u16 a[] = {u'a', u'b'};
  EXPECT_EQ(vk_findUtf16NoCase(a, 2, nullptr, 0), a);
  EXPECT_EQ(vk_findUtf16NoCase(nullptr, 0, a, 1), nullptr);
  EXPECT_EQ(vk_findUtf16NoCase(a, 1, a, 2), nullptr);
  EXPECT_EQ(vk_findUtf16NoCase(a, 2, nullptr, 1), nullptr);
}

TEST(Utf16Search, AgreesWithThePlainSearch) {
  std::mt19937 next = generator(7);
  constexpr char16_t kLetters[] = u"aAbB\u00E9\u00C9\u03A3\u03C3\u03C2kK\u212A";
  for (u32 round = 0; round < 20'000; ++round) {
    const auto letters = 2 + next() % 11;  // few letters make many near misses
    std::u16string text(next() % (round % 100 == 0 ? 6000 : 300), u'a'),
        needle(next() % 9 * (round % 3 == 0 ? 5 : 1), u'a');
    for (auto* s : {&text, &needle})
      for (char16_t& c : *s) c = kLetters[next() % letters];
    if (round % 2 && needle.size() <= text.size()) text.replace(text.size() - needle.size(), needle.size(), needle);
    ASSERT_EQ(search(text, needle), plainSearch(text, needle)) << round;
  }
}

// Needles that match all but one unit, everywhere: the plain search would take minutes.
TEST(Utf16Search, IsLinearOnRepeatedText) {
  const u32 n = 400'000, m = 100'000;
  const std::u16string a(n, u'a');
  std::u16string inner(m, u'A'), period;
  inner[m / 2] = u'b';
  EXPECT_EQ(search(a, inner), -1);
  EXPECT_EQ(search(a + inner, inner), s64{n});
  for (u32 i = 0; i < n / 3; ++i) period += u"abA";
  EXPECT_EQ(search(period, period.substr(0, m / 3 * 3) + u"aBc"), -1);
  EXPECT_EQ(search(period + u"c", period.substr(1, m / 3 * 3) + u"aBac"), -1);
  EXPECT_EQ(search(period + u"BC", period.substr(0, m / 3 * 3) + u"bc"), s64{n / 3 * 3 - m / 3 * 3});
}

}  // namespace
