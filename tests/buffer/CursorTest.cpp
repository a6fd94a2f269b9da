#include <gtest/gtest.h>

#include "tests/support/Allocations.h"
#include "tests/support/Bytes.h"

namespace {

TEST(Cursor, ReadsBackWhatTheWritersWrote) {
  DataBuffer b;
  b.appendUint16_be(0x1234);
  b.appendUint32_le(0x89ABCDEF);
  b.appendInt64_be(-2);
  u32 cursor = 0, four = 0;
  u16 two = 0;
  s64 eight = 0;
  EXPECT_TRUE(b.parseUint16(cursor, false, two));
  EXPECT_TRUE(b.parseUint32(cursor, true, four));
  EXPECT_TRUE(b.parseInt64(cursor, false, eight));
  EXPECT_EQ(cursor, 14U);
  EXPECT_EQ(two, 0x1234);
  EXPECT_EQ(four, 0x89ABCDEF);
  EXPECT_EQ(eight, -2);
  cursor = 0;
  EXPECT_TRUE(b.parseUint16(cursor, true, two) && b.parseUint32(cursor, false, four));
  EXPECT_TRUE(two == 0x3412 && four == 0xEFCDAB89);
  EXPECT_TRUE(b.parseInt64(cursor, true, eight));
  EXPECT_EQ(eight, static_cast<s64>(0xFEFFFFFFFFFFFFFF));
}

// Every field at every cursor, in a buffer whose capacity reaches far behind its size.
TEST(Cursor, StaysInTheBytesInUse) {
  const DataBuffer b = bufferOf("0123456789");
  for (const u32 start : {0U, 2U, 3U, 6U, 7U, 8U, 9U, 10U, 11U, 0xFFFFFFF8U, 0xFFFFFFFFU}) {
    const auto check = [&](const char* what, u32 width, bool ok, u32 cursor, bool outIsZero) {
      const bool fits = start <= 10 && 10 - start >= width;
      EXPECT_EQ(ok, fits) << what << " at " << start;
      EXPECT_EQ(cursor, fits ? start + width : start) << what << " at " << start;
      EXPECT_EQ(outIsZero, !fits) << what << " at " << start;
    };
    u32 cursor = start, four = 7;
    u16 two = 7;
    s64 eight = 7;
    u8 one = 0;
    bool ok = b.parseByte(cursor, one);
    check("byte", 1, ok, cursor, one == 0);
    cursor = start;
    ok = b.parseUint16(cursor, true, two);
    check("u16", 2, ok, cursor, two == 0);
    cursor = start;
    ok = b.parseUint32(cursor, false, four);
    check("u32", 4, ok, cursor, four == 0);
    cursor = start;
    ok = b.parseInt64(cursor, true, eight);
    check("s64", 8, ok, cursor, eight == 0);
    DataBuffer data;
    cursor = start;
    ok = b.parseData(cursor, 3, data);
    check("data", 3, ok, cursor, data.empty());
    StringBuffer text;
    cursor = start;
    ok = b.parseString(cursor, 3, text);
    check("text", 3, ok, cursor, text.isEmpty());
  }
}

TEST(Cursor, LeavesAByteThatIsNotThere) {
  const DataBuffer none;
  u32 cursor = 0;
  u8 out = 9;
  EXPECT_FALSE(none.parseByte(cursor, out));
  EXPECT_FALSE(none.expectByte(cursor, 0));
  EXPECT_EQ(out, 9);
  EXPECT_EQ(cursor, 0U);
}

TEST(Cursor, ExpectsOneByte) {
  const DataBuffer b = bufferOf("0x");
  u32 cursor = 0;
  EXPECT_TRUE(b.expectByte(cursor, '0'));
  EXPECT_FALSE(b.expectByte(cursor, '0'));
  EXPECT_EQ(cursor, 1U);
  EXPECT_TRUE(b.expectByte(cursor, 'x'));
  EXPECT_FALSE(b.expectByte(cursor, 'x'));
  EXPECT_EQ(cursor, 2U);
}

TEST(Cursor, ReadsNothingFromAnywhere) {
  const DataBuffer none;
  DataBuffer data;
  StringBuffer text;
  u32 cursor = 0xFFFFFFFF;
  EXPECT_TRUE(none.parseData(cursor, 0, data));
  EXPECT_TRUE(none.parseString(cursor, 0, text));
  EXPECT_EQ(cursor, 0xFFFFFFFFU);
}

TEST(Cursor, StaysWhenTheReceiverCannotGrow) {
  const DataBuffer b = bufferOf("abc");
  DataBuffer data;
  StringBuffer text;
  u32 cursor = 1;
  {
    const faults::FailAllocation fail(1, true);
    EXPECT_FALSE(b.parseData(cursor, 2, data));
    EXPECT_FALSE(b.parseString(cursor, 2, text));
  }
  EXPECT_EQ(cursor, 1U);
  EXPECT_TRUE(b.parseData(cursor, 2, data));
  EXPECT_EQ(textOf(data), "bc");
}

TEST(Cursor, AppendsABufferToItself) {
  DataBuffer b;
  b.copyData("abc", 3);
  u32 cursor = 1;
  EXPECT_TRUE(b.parseData(cursor, 2, b));
  EXPECT_EQ(textOf(b), "abcbc");
}

}  // namespace
