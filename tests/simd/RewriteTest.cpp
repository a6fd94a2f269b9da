#include <gtest/gtest.h>

#include <algorithm>

#include "tests/simd/Forms.h"
#include "tests/support/Bytes.h"
#include "tests/support/GuardedBytes.h"
#include "varnik/simd/Bitwise.h"
#include "varnik/simd/Copy.h"
#include "varnik/simd/Reverse.h"
#include "varnik/simd/SwapBytes.h"

namespace {

constexpr u32 kMost = 300;

std::string stringAt(const u8* p, u32 n) {
  return {reinterpret_cast<const char*>(p), n};
}

TEST(Bitwise, CombinesEveryLength) {
  GuardedBytes left(kMost), right(kMost), out(kMost);
  const auto check = [&](const auto& form, auto combine) {
    for (u32 n = 0; n <= kMost; ++n) {
      const std::string a = randomBytes(n, n), b = randomBytes(n, n + 1000);
      std::string want = a;
      std::transform(a.begin(), a.end(), b.begin(), want.begin(), combine);
      form.run(out.ending(n), left.ending(a), right.ending(b), n);
      ASSERT_EQ(stringAt(out.ending(n), n), want) << form.name << ", " << n << " bytes";
      form.run(left.ending(n), left.ending(n), right.ending(n), n);
      ASSERT_EQ(stringAt(left.ending(n), n), want) << form.name << " onto the first, " << n << " bytes";
      form.run(right.ending(n), left.ending(a), right.ending(n), n);
      ASSERT_EQ(stringAt(right.ending(n), n), want) << form.name << " onto the second, " << n << " bytes";
    }
  };
  for (const auto& form : VARNIK_FORMS(xorBytes)) check(form, std::bit_xor<char>());
  for (const auto& form : VARNIK_FORMS(andBytes)) check(form, std::bit_and<char>());
}

TEST(Reverse, TurnsEveryLengthRound) {
  GuardedBytes from(kMost), to(kMost);
  for (u32 n = 0; n <= kMost; ++n) {
    const std::string given = randomBytes(n, n), want(given.rbegin(), given.rend());
    for (const auto& form : VARNIK_FORMS(reverseCopy)) {
      form.run(to.ending(n), from.ending(given), n);
      ASSERT_EQ(stringAt(to.ending(n), n), want) << form.name << ", " << n << " bytes";
    }
    for (const auto& form : VARNIK_FORMS(reverseInPlace)) {
      form.run(from.ending(given), n);
      ASSERT_EQ(stringAt(from.ending(n), n), want) << form.name << ", " << n << " bytes";
      form.run(from.starting(given), n);
      ASSERT_EQ(stringAt(from.starting(std::string_view()), n), want) << form.name << ", " << n << " bytes";
    }
  }
}

TEST(SwapBytes, TurnsEachWholeGroupRound) {
  GuardedBytes area(kMost);
  const auto check = [&](const auto& form, u32 group) {
    for (u32 n = 0; n <= kMost; n += group) {
      std::string want = randomBytes(n, n);
      u8* const data = area.ending(want);
      for (u32 i = 0; i < n; i += group) std::reverse(want.begin() + i, want.begin() + i + group);
      form.run(data, n);
      ASSERT_EQ(stringAt(data, n), want) << form.name << ", " << n << " bytes in groups of " << group;
    }
  };
  for (const auto& form : VARNIK_FORMS(swapPairs)) check(form, 2);
  for (const auto& form : VARNIK_FORMS(swapFours)) check(form, 4);
}

// Counts on both sides of each limit of the special road, at distances in and beside its window.
TEST(Copy, CopiesAtEveryDistance) {
  constexpr u32 kArea = 600 * 1024;
  const std::string given = randomBytes(kArea);
  GuardedBytes from(kArea), to(kArea + 64);
  for (const u32 n : {0U, 1U, 63U, 2047U, 2048U, 2049U, 4096U, 5000U, 524'288U, 524'289U})
    for (const u32 apart : {0U, 1U, 16U, 31U, 32U}) {
      const u8* const source = from.starting(given);
      u8* const target = to.starting(std::string(n + apart + 1, '\0')) + apart;
      EXPECT_EQ(vk_simd::isSlowCopy(target, source, n), apart >= 1 && apart <= 31 && n >= 2048 && n <= 524'288);
      vk_simd::copyBytes(target, source, n);
      ASSERT_EQ(stringAt(target, n), given.substr(0, n)) << n << " bytes, " << apart << " apart";
      ASSERT_EQ(target[n], 0) << n << " bytes, " << apart << " apart";
    }
#if VARNIK_HAVE_AVX2
  if (!vk_simd::hasAvx2()) return;
  for (u32 n = 0; n <= kMost; ++n) {
    vk_simd::copyBytesAvx2(to.ending(n), from.ending(given.substr(0, n)), n);
    ASSERT_EQ(stringAt(to.ending(n), n), given.substr(0, n));
  }
#endif
}

}  // namespace
