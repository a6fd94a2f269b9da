#include <gtest/gtest.h>

#include <algorithm>

#include "tests/simd/Forms.h"
#include "tests/support/Bytes.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/Random.h"
#include "varnik/simd/CombiningMarks.h"
#include "varnik/simd/Compact.h"
#include "varnik/simd/ReplaceByte.h"

namespace {

constexpr u32 kMost = 300;

// Random bytes of which none, few, many or all are the interesting ones.
std::string contentOf(u32 n, u32 density) {
  constexpr std::string_view kAlphabets[] = {"abc", "abcdefghijklmnop", "ab.", "."};
  return Random(n * 4 + density).text(n, density == 1 ? "abcdefghijklmnopqrstuvwxyz." : kAlphabets[density]);
}

class Compacting {
 public:
  // Into another area, in place, and to a place closely before.
  template <class Run>
  void check(const char* name, const std::string& given, const std::string& want, Run run) {
    const u32 n = countOf(given);
    const auto expect = [&](const u8* out, u32 kept, const char* where) {
      ASSERT_EQ(kept, want.size()) << name << ' ' << where << ", " << n << " bytes";
      ASSERT_EQ(std::memcmp(out, want.data(), kept), 0) << name << ' ' << where << ", " << n << " bytes";
    };
    expect(to_.ending(n), run(to_.ending(n), from_.ending(given), n), "apart");
    for (const u32 before : {0U, 1U, 7U, 40U}) {
      u8* const out = from_.ending(given) - before;
      expect(out, run(out, out + before, n), "in place");
    }
  }

 private:
  GuardedBytes from_{kMost + 40}, to_{kMost};
};

TEST(Compact, DropsOneValue) {
  Compacting compacting;
  for (const auto& form : VARNIK_FORMS_512(dropByte))
    for (u32 n = 0; n <= kMost; ++n)
      for (u32 density = 0; density < 4; ++density) {
        const std::string given = contentOf(n, density);
        std::string want = given;
        std::erase(want, '.');
        compacting.check(form.name, given, want,
                         [&](u8* out, const u8* from, u32 count) { return form.run(out, from, count, '.'); });
      }
}

TEST(Compact, KeepsAscii) {
  Compacting compacting;
  for (const auto& form : VARNIK_FORMS_512(keepAscii))
    for (u32 n = 0; n <= kMost; ++n)
      for (const std::string_view alphabet : {std::string_view("a\0\x01\x7F\x80\xFF", 6), std::string_view("ab")}) {
        const std::string given = Random(n).text(n, alphabet);
        std::string want = given;
        std::erase_if(want, [](char c) { return c == 0 || static_cast<u8>(c) >= 0x80; });
        compacting.check(form.name, given, want, form.run);
      }
}

TEST(Compact, KeepsEvenIndexes) {
  Compacting compacting;
  for (const auto& form : VARNIK_FORMS(keepEven))
    for (u32 n = 0; n <= kMost; ++n) {
      const std::string given = randomBytes(n, n);
      std::string want;
      for (u32 i = 0; i < n; i += 2) want.push_back(given[i]);
      compacting.check(form.name, given, want, form.run);
    }
}

TEST(ReplaceByte, ReplacesEveryValueAtEveryLength) {
  GuardedBytes area(kMost);
  for (const auto& form : VARNIK_FORMS(replaceByte))
    for (u32 n = 0; n <= kMost; ++n) {
      const std::string given = contentOf(n, n % 4);
      std::string want = given;
      std::replace(want.begin(), want.end(), '.', '\xFE');
      u8* const data = area.ending(given);
      form.run(data, n, '.', 0xFE);
      ASSERT_EQ(std::memcmp(data, want.data(), n), 0) << form.name << ", " << n << " bytes";
    }
}

// Every byte with every second byte of a mark, each pair at another place of a block than the one before.
TEST(CombiningMarks, FormsComposeEveryPair) {
  GuardedBytes area(4000);
  for (u32 letter = 0; letter < 256; ++letter) {
    std::string given, want;
    for (u32 mark = 0; mark < 256; ++mark) {
      std::string pair = {static_cast<char>(letter), '\xCC', static_cast<char>(mark)};
      const std::string gap(1 + mark % 11, '.');
      given += gap + pair;
      pair.resize(vk_simd::composeMarksScalar(reinterpret_cast<u8*>(pair.data()), 3));
      want += gap + pair;
    }
    for (const auto& form : VARNIK_FORMS_512(composeMarks)) {
      u8* const data = area.ending(given);
      ASSERT_EQ(form.run(data, countOf(given)), want.size()) << form.name << ", " << letter;
      ASSERT_EQ(std::memcmp(data, want.data(), want.size()), 0) << form.name << ", " << letter;
    }
  }
}

}  // namespace
