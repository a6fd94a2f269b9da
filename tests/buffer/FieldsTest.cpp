#include <gtest/gtest.h>

#include "tests/support/Bytes.h"

namespace {

TEST(Fields, WritesEachWidthInItsOrder) {
  constexpr struct {
    void (*write)(DataBuffer&);
    const char* hex;
  } kWritten[] = {
      {[](DataBuffer& b) { b.appendUint16_le(0x1234); }, "34 12"},
      {[](DataBuffer& b) { b.appendUint16_be(0x1234); }, "12 34"},
      {[](DataBuffer& b) { b.appendUint32_le(0x01020384); }, "84 03 02 01"},
      {[](DataBuffer& b) { b.appendUint32_be(0x01020384); }, "01 02 03 84"},
      {[](DataBuffer& b) { b.appendInt64_le(-2); }, "FE FF FF FF FF FF FF FF"},
      {[](DataBuffer& b) { b.appendInt64_be(0x0102030405060708); }, "01 02 03 04 05 06 07 08"},
      {[](DataBuffer& b) { b.appendDouble_le(-1.0); }, "00 00 00 00 00 00 F0 BF"},
  };
  for (const auto& c : kWritten) {
    DataBuffer b;
    c.write(b);
    EXPECT_EQ(textOf(b), fromHex(c.hex));
  }
}

TEST(Fields, WritesHostOrderAsTheProcessorStoresIt) {
  DataBuffer b, expected;
  const u16 two = 0x1234;
  const u32 four = 0x01020304;
  const u64 eight = 0x0102030405060708;
  EXPECT_TRUE(b.append_u16(two) && b.append_u32(four) && b.append_u64(eight));
  expected.append(&two, 2), expected.append(&four, 4), expected.append(&eight, 8);
  EXPECT_TRUE(b.equals(expected));
}

TEST(Fields, SwapsWholeGroupsAndTheRest) {
  constexpr struct {
    const char *given, *pairs, *fours;
  } kSwapped[] = {
      {"", "", ""},
      {"01", "01", "01"},
      {"01 02", "02 01", "02 01"},
      {"01 02 03", "02 01 03", "03 02 01"},
      {"01 02 03 04", "02 01 04 03", "04 03 02 01"},
      {"01 02 03 04 05", "02 01 04 03 05", "04 03 02 01 05"},
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
  const DataBuffer b = bufferOf(fromHex("00 11 22 33 44") + std::string(41, 'x'));
  const struct {
    bool sameOrder;
    u32 offset, n;
    std::string read;  // none where it fails
  } kCases[] = {
      {false, 1, 3, fromHex("33 22 11")},
      {true, 1, 3, fromHex("11 22 33")},
      {false, 45, 1, "x"},
      {true, 6, 40, std::string(40, 'x')},
      {false, 4, 0, ""},
      {true, 5, 41, ""},
      {false, 44, 3, ""},
      {false, 46, 0, ""},  // no field begins at the end, not even an empty one
      {false, 0xFFFFFFFF, 3, ""},
  };
  for (const auto& c : kCases) {
    std::string out(41, '.');
    EXPECT_EQ(b.getLittleEndian40(c.sameOrder, c.offset, c.n, reinterpret_cast<u8*>(out.data())),
              !c.read.empty() || c.offset == 4);
    EXPECT_EQ(out, c.read + std::string(41 - c.read.size(), '.')) << c.offset << ' ' << c.n;
  }
  u8 field = 0;
  EXPECT_FALSE(b.getLittleEndian40(false, 0, 3, nullptr) || DataBuffer().getLittleEndian40(true, 0, 0, &field));
}

}  // namespace
