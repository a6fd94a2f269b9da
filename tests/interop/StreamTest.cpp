#include "varnik/interop/Stream.h"

#include <iomanip>
#include <sstream>

#include "tests/support/Test.h"

namespace {

template <class T>
std::string streamed(const T& value) {
  std::ostringstream to;
  to << std::setfill('.') << std::setw(10) << value;
  return to.str();
}

TEST(Stream, WritesTextAndDescribesBytes) {
  std::string bytes = fromHex("000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f");
  const std::string hex32 =
      " 00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f 10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 1f";
  EXPECT_EQ(streamed(StringBuffer("text")), "......text");
  EXPECT_EQ(streamed(DataBuffer()), "...0 bytes");
  EXPECT_EQ(streamed(bufferOf("\xFF")), "1 byte: ff");
  EXPECT_EQ(streamed(bufferOf("hello")), "5 bytes: 68 65 6c 6c 6f");
  EXPECT_EQ(streamed(bufferOf(bytes)), "32 bytes:" + hex32);
  EXPECT_EQ(streamed(bufferOf(bytes + "x")), "33 bytes:" + hex32 + " ...");

  // The size may say anything of a block that is borrowed: the text still fits its area.
  const DataBuffer b = borrowing(bytes.data(), 0xFFFFFFFF);
  char area[kVkDescribeRoom];
  EXPECT_EQ(std::string(area, vk_describe(b, area)), "4294967295 bytes:" + hex32 + " ...");
}

TEST(Stream, ShowsNothingOfASecretOrADeadBuffer) {
  DataBuffer secret = bufferOf("open sesame");
  secret.secure = 1;
  EXPECT_EQ(streamed(secret), "11 bytes, secure");
  alignas(DataBuffer) unsigned char place[sizeof(DataBuffer)];
  auto* dead = new (place) DataBuffer(bufferOf("gone"));
  dead->~DataBuffer();
  EXPECT_EQ(streamed(*dead), ".destroyed");
}

}  // namespace
