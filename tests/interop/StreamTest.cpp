#include "varnik/interop/Stream.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

#include "tests/support/Bytes.h"

namespace {

template <class T>
std::string streamed(const T& value) {
  std::ostringstream to;
  to << std::setfill('.') << std::setw(10) << value;
  return to.str();
}

std::string bytesFrom0(u32 n) {
  std::string bytes;
  for (u32 i = 0; i < n; ++i) bytes.push_back(static_cast<char>(i));
  return bytes;
}

TEST(Stream, WritesTextAndDescribesBytes) {
  const std::string hex32 =
      " 00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f 10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 1f";
  EXPECT_EQ(streamed(StringBuffer("text")), "......text");
  EXPECT_EQ(streamed(DataBuffer()), "...0 bytes");
  EXPECT_EQ(streamed(bufferOf("\xFF")), "1 byte: ff");
  EXPECT_EQ(streamed(bufferOf("hello")), "5 bytes: 68 65 6c 6c 6f");
  EXPECT_EQ(streamed(bufferOf(bytesFrom0(32))), "32 bytes:" + hex32);
  EXPECT_EQ(streamed(bufferOf(bytesFrom0(33))), "33 bytes:" + hex32 + " ...");
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

// The size field may say anything of a block that is borrowed: the text still fits its area.
TEST(Stream, FitsItsAreaForTheLargestSize) {
  std::string block(32, '\xAA');
  DataBuffer b;
  b.borrowData(block.data(), 0xFFFFFFFF);
  char area[kVkDescribeRoom];
  const std::string text(area, vk_describe(b, area));
  EXPECT_EQ(text.substr(0, 22), "4294967295 bytes: aa a");
  EXPECT_EQ(text.substr(text.size() - 7), " aa ...");
  b.dropData();
}

}  // namespace
