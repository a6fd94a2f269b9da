#include "tests/support/Test.h"

namespace {

/// Reads a field by `(b.*parse)(cursor, how..., value)`; `out` tells the value.
template <class Value, auto parse, auto... how>
bool field(const DataBuffer& b, u32& cursor, std::string& out) {
  Value value{};
  if constexpr (std::is_integral_v<Value>) value = 7;
  const bool done = (b.*parse)(cursor, how..., value);
  if constexpr (std::is_integral_v<Value>)
    out = std::to_string(value);
  else
    out = textOf(value);
  return done;
}

// Every field at every cursor: in a buffer whose capacity reaches far behind its size, in blocks that begin and end at
// an unreadable page, and without a block.
TEST(Cursor, StaysInTheBytesInUse) {
  // The width, the reader, what is read at 0, and where there is nothing.
  const std::tuple<u32, bool (*)(const DataBuffer&, u32&, std::string&), std::string, std::string> kFields[] = {
      {1, field<u8, &DataBuffer::parseByte>, "1", "7"},
      {2, field<u16, &DataBuffer::parseUint16, true>, std::to_string(0x0201), "0"},
      {2, field<u16, &DataBuffer::parseUint16, false>, std::to_string(0x0102), "0"},
      {4, field<u32, &DataBuffer::parseUint32, true>, std::to_string(0x84030201), "0"},
      {4, field<u32, &DataBuffer::parseUint32, false>, std::to_string(0x01020384), "0"},
      {8, field<s64, &DataBuffer::parseInt64, true>, std::to_string(static_cast<s64>(0xFE07060584030201)), "0"},
      {8, field<s64, &DataBuffer::parseInt64, false>, std::to_string(0x01020384050607FE), "0"},
      {3, field<DataBuffer, &DataBuffer::parseData, 3u>, "\x01\x02\x03", ""},
      {3, field<StringBuffer, &DataBuffer::parseString, 3u>, "\x01\x02\x03", ""},
      {0, field<DataBuffer, &DataBuffer::parseData, 0u>, "", ""},
      {0, field<StringBuffer, &DataBuffer::parseString, 0u>, "", ""},
  };
  const std::string content = fromHex("01 02 03 84 05 06 07 FE 09 0A");
  GuardedBytes forwards(content.size()), backwards(content.size());
  const DataBuffer buffers[] = {
      bufferOf(content), borrowing(forwards.ending(content), 10), borrowing(backwards.starting(content), 10), {}};
  for (const DataBuffer& b : buffers)
    for (const auto& [width, read, first, none] : kFields)
      for (const u32 start : {0U, 2U, 3U, 6U, 7U, 8U, 9U, 10U, 11U, 0xFFFFFFF8U, 0xFFFFFFFFU}) {
        const bool fits = width == 0 || (start <= b.size() && b.size() - start >= width);
        u32 cursor = start;
        std::string out;
        EXPECT_EQ(read(b, cursor, out), fits) << first << " at " << start;
        EXPECT_EQ(cursor, fits ? start + width : start) << first << " at " << start;
        EXPECT_TRUE(out == (fits ? first : none) || (start != 0 && fits)) << first << " at " << start;
      }
}

TEST(Cursor, ExpectsOneByte) {
  const DataBuffer b = bufferOf("0x");
  u32 cursor = 0;
  EXPECT_FALSE(DataBuffer().expectByte(cursor, 0));
  EXPECT_TRUE(b.expectByte(cursor, '0') && !b.expectByte(cursor, '0') && cursor == 1);
  EXPECT_TRUE(b.expectByte(cursor, 'x') && !b.expectByte(cursor, 'x') && cursor == 2);
}

}  // namespace
