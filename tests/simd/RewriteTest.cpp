#include <gtest/gtest.h>

#include <algorithm>

#include "tests/simd/Forms.h"
#include "tests/support/Bytes.h"
#include "tests/support/GuardedBytes.h"
#include "varnik/simd/Bitwise.h"
#include "varnik/simd/Reverse.h"

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

}  // namespace
