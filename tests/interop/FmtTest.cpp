#include "varnik/interop/Fmt.h"

#include <fmt/ranges.h>

#include "tests/support/Test.h"

TEST(Fmt, FormatsTextAndDescribesBytes) {
  EXPECT_EQ(fmt::format("{}|{:>6}|{:.2}", StringBuffer("abc"), StringBuffer("abc"), StringBuffer("abc")),
            "abc|   abc|ab");
  EXPECT_EQ(fmt::format("[{}] [{:*<12}]", bufferOf("hello"), DataBuffer()), "[5 bytes: 68 65 6c 6c 6f] [0 bytes*****]");
}

// fmt/ranges.h takes whatever has a begin and an end; it must not get at the bytes.
TEST(Fmt, ShowsNothingOfASecret) {
  DataBuffer secret = bufferOf("open sesame");
  secret.secure = 1;
  EXPECT_EQ(fmt::format("{}", secret), "11 bytes, secure");
}
