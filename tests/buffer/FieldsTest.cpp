#include <gtest/gtest.h>

#include "tests/support/Allocations.h"
#include "tests/support/Bytes.h"

namespace {

TEST(Fields, WritesEachWidthInItsOrder) {
  constexpr struct {
    const char* what;
    void (*write)(DataBuffer&);
    const char* hex;
  } kWritten[] = {
      {"u16 little-endian", [](DataBuffer& b) { b.appendUint16_le(0x1234); }, "34 12"},
      {"u16 big-endian", [](DataBuffer& b) { b.appendUint16_be(0x1234); }, "12 34"},
      {"u32 little-endian", [](DataBuffer& b) { b.appendUint32_le(0x01020384); }, "84 03 02 01"},
      {"u32 big-endian", [](DataBuffer& b) { b.appendUint32_be(0x01020384); }, "01 02 03 84"},
      {"s64 little-endian", [](DataBuffer& b) { b.appendInt64_le(-2); }, "FE FF FF FF FF FF FF FF"},
      {"s64 big-endian", [](DataBuffer& b) { b.appendInt64_be(-2); }, "FF FF FF FF FF FF FF FE"},
      {"s64, all bytes", [](DataBuffer& b) { b.appendInt64_be(0x0102030405060708); }, "01 02 03 04 05 06 07 08"},
      {"one", [](DataBuffer& b) { b.appendDouble_le(1.0); }, "00 00 00 00 00 00 F0 3F"},
      {"negative zero", [](DataBuffer& b) { b.appendDouble_le(-0.0); }, "00 00 00 00 00 00 00 80"},
      {"UTF-16, as it is", [](DataBuffer& b) { b.appendUtf16_le("a\0b", 3); }, "61 00 62"},
  };
  for (const auto& c : kWritten) {
    DataBuffer b;
    c.write(b);
    EXPECT_EQ(textOf(b), fromHex(c.hex)) << c.what;
  }
}

TEST(Fields, WritesHostOrderAsTheProcessorStoresIt) {
  DataBuffer b;
  const u16 two = 0x1234;
  const u32 four = 0x01020304;
  const u64 eight = 0x0102030405060708;
  EXPECT_TRUE(b.append_u16(two) && b.append_u32(four) && b.append_u64(eight));
  ASSERT_EQ(b.size(), 14U);
  EXPECT_EQ(std::memcmp(b.getData2(), &two, 2), 0);
  EXPECT_EQ(std::memcmp(b.getData2() + 2, &four, 4), 0);
  EXPECT_EQ(std::memcmp(b.getData2() + 6, &eight, 8), 0);
}

TEST(Fields, LeavesTheBufferWhenMemoryRunsOut) {
  DataBuffer b;
  const faults::FailAllocation fail(1, true);
  EXPECT_FALSE(b.append_u64(1));
  EXPECT_FALSE(b.appendDouble_le(1.0));
  EXPECT_FALSE(b.appendUint16_be(1));
  EXPECT_TRUE(b.appendUtf16_le(nullptr, 4));
  EXPECT_TRUE(b.appendUtf16_le("x", 0));
  EXPECT_EQ(b.size(), 0U);
}

TEST(Fields, SwapsWholeGroupsAndTheRest) {
  constexpr struct {
    const char *given, *pairs, *fours;
  } kSwapped[] = {
      {"", "", ""},
      {"01", "01", "01"},
      {"01 02", "02 01", "02 01"},
      {"01 02 03", "02 01 03", "03 02 01"},
      {"01 02 03 04 05", "02 01 04 03 05", "04 03 02 01 05"},
      {"01 02 03 04 05 06", "02 01 04 03 06 05", "04 03 02 01 06 05"},
      {"01 02 03 04 05 06 07", "02 01 04 03 06 05 07", "04 03 02 01 07 06 05"},
  };
  for (const auto& c : kSwapped) {
    DataBuffer pairs = bufferOf(fromHex(c.given)), fours = pairs;
    pairs.byteSwap21();
    fours.byteSwap4321();
    EXPECT_EQ(textOf(pairs), fromHex(c.pairs)) << c.given;
    EXPECT_EQ(textOf(fours), fromHex(c.fours)) << c.given;
  }
}

TEST(Fields, ReadsAFieldForwardsAndBackwards) {
  DataBuffer b = bufferOf(fromHex("00 11 22 33 44"));
  std::string out = "......";
  u8* const to = reinterpret_cast<u8*>(out.data());
  EXPECT_TRUE(b.getLittleEndian40(false, 1, 3, to));
  EXPECT_EQ(out, fromHex("33 22 11") + "...");
  EXPECT_TRUE(b.getLittleEndian40(true, 1, 3, to));
  EXPECT_EQ(out, fromHex("11 22 33") + "...");
  EXPECT_TRUE(b.getLittleEndian40(false, 4, 0, to));
  EXPECT_FALSE(b.getLittleEndian40(false, 3, 3, to));
  EXPECT_FALSE(b.getLittleEndian40(false, 5, 0, to)) << "no field begins at the end, not even an empty one";
  EXPECT_FALSE(b.getLittleEndian40(false, 0xFFFFFFFF, 3, to)) << "the sum must not wrap";
  EXPECT_FALSE(b.getLittleEndian40(false, 0, 3, nullptr));
  EXPECT_EQ(out, fromHex("11 22 33") + "...") << "a failure writes nothing";

  b.appendCharN('x', 41);
  u8 field[41] = {};
  EXPECT_TRUE(b.getLittleEndian40(true, 2, 40, field));
  EXPECT_FALSE(b.getLittleEndian40(true, 2, 41, field));
  EXPECT_FALSE(DataBuffer().getLittleEndian40(true, 0, 0, field));
}

}  // namespace
