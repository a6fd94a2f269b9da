#include <gtest/gtest.h>

#include <vector>

#include "tests/simd/Forms.h"
#include "tests/support/Bytes.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/Random.h"
#include "varnik/simd/AsciiRun.h"
#include "varnik/simd/ByteHits.h"
#include "varnik/simd/Lines.h"

namespace {

TEST(AsciiRun, StopsAtTheFirstHighByteAtEveryPlace) {
  GuardedBytes guarded(300);
  for (const auto& form : VARNIK_FORMS(asciiRun))
    for (u32 n = 0; n <= 300; ++n)
      for (u32 at = 0; at <= n; ++at) {
        u8* const data = guarded.ending(std::string(n, '\x7F'));
        if (at < n) data[at] = 0x80;
        if (at + 1 < n) data[n - 1] = 0xFF;
        ASSERT_EQ(form.run(data, n), at) << form.name << ", " << n << " bytes";
      }
}

// A content of good pairs, and one that is spoilt at every place by every kind of fault.
TEST(Lines, FindsABareLineEndAtEveryPlace) {
  GuardedBytes guarded(300);
  for (const auto& form : VARNIK_FORMS(hasBareLineEnd))
    for (u32 n = 0; n <= 300; ++n) {
      std::string good(n, 'x');
      for (u32 i = n % 3; i + 2 <= n; i += 5) good.replace(i, 2, "\r\n");
      ASSERT_FALSE(form.run(guarded.ending(good), n)) << form.name << ", " << n << " bytes";
      for (u32 at = 0; at < n; ++at) {
        std::string bad = good;
        bad[at] = bad[at] == '\n' ? '\r' : bad[at] == '\r' ? 'x' : at % 2 == 0 ? '\n' : '\r';
        const bool stillGood = bad[at] == '\r' && at + 1 < n && bad[at + 1] == '\n';
        ASSERT_EQ(form.run(guarded.ending(bad), n), !stillGood) << form.name << ", " << n << " bytes, at " << at;
      }
    }
}

TEST(Lines, FindsTheLastLineEndOfARange) {
  GuardedBytes guarded(300);
  for (const auto& form : VARNIK_FORMS(behindLastLineEnd))
    for (u32 n = 0; n <= 300; n += n < 70 ? 1 : 23)
      for (u32 from = 0; from <= n; from += from < 40 ? 1 : 9)
        for (u32 at = 0; at < n; ++at) {
          std::string content(n, 'x');
          content[at] = at % 2 == 0 ? '\r' : '\n';
          if (at != 0) content[at - 1] = '\n';
          const u32 want = std::max(from, at + 1);
          ASSERT_EQ(form.run(guarded.ending(content), from, n), want) << form.name << ", " << from << " to " << n;
          ASSERT_EQ(form.run(guarded.starting(content), from, n), want) << form.name << ", " << from << " to " << n;
          ASSERT_EQ(form.run(guarded.starting(content), n, n), n) << form.name;
        }
}

TEST(Lines, FindsANonzeroByteAtAnOddIndex) {
  GuardedBytes guarded(300);
  for (const auto& form : VARNIK_FORMS(oddBytesAreZero))
    for (u32 n = 0; n <= 300; ++n) {
      std::string content(n, '\0');
      for (u32 i = 0; i < n; i += 2) content[i] = '\xFF';
      u8* const data = guarded.ending(content);
      ASSERT_TRUE(form.run(data, n)) << form.name << ", " << n << " bytes";
      for (u32 at = 1; at < n; at += 2) {
        data[at] = static_cast<u8>(at % 255 + 1);
        ASSERT_FALSE(form.run(data, n)) << form.name << ", " << n << " bytes, at " << at;
        data[at] = 0;
      }
    }
}

TEST(ByteHits, ReportsEachHitInOrder) {
  GuardedBytes guarded(300);
  for (u32 n = 0; n <= 300; ++n)
    for (const std::string_view alphabet : {".", "ab.", "abcdefghijklmnopqrstuvwxyzabcdefghijklm.", "a"}) {
      const std::string content = Random(n).text(n, alphabet);
      const u8* const data = guarded.ending(content);
      std::vector<u32> want, scalar, chosen;
      for (u32 i = 0; i < n; ++i)
        if (content[i] == '.') want.push_back(i);
      vk_simd::eachHitScalar(data, n, '.', [&](u32 i) { scalar.push_back(i); });
      vk_simd::eachHit(data, n, '.', [&](u32 i) { chosen.push_back(i); });
      ASSERT_EQ(scalar, want) << n;
      ASSERT_EQ(chosen, want) << n;
    }
}

}  // namespace
