#include "tests/support/Test.h"

namespace {

TEST(Fields, WritesEachWidthInItsOrder) {
  DataBuffer b, host;
  EXPECT_TRUE(b.appendUint16_le(0x1234) && b.appendUint16_be(0x1234) && b.appendUint32_le(0x01020384) &&
              b.appendUint32_be(0x01020384) && b.appendInt64_le(-2) && b.appendInt64_be(0x0102030405060708) &&
              b.appendDouble_le(-1.0));
  EXPECT_EQ(textOf(b), fromHex("3412 1234 84030201 01020384 FEFFFFFFFFFFFFFF 0102030405060708 000000000000F0BF"));
  const u16 two = 0x1234;
  const u32 four = 0x01020304;
  const u64 eight = 0x0102030405060708;
  EXPECT_TRUE(host.append_u16(two) && host.append_u32(four) && host.append_u64(eight));
  EXPECT_EQ(textOf(host), stringAt(&two, 2) + stringAt(&four, 4) + stringAt(&eight, 8));
}

TEST(Fields, SwapsWholeGroupsAndTheRest) {
  const std::string whole = "abcdefghi";
  for (u32 n = 0; n <= whole.size(); ++n) {
    std::string two = whole.substr(0, n), four = two;
    for (u32 i = 0; i + 1 < n; i += 2) std::reverse(two.begin() + i, two.begin() + i + 2);
    for (u32 i = 0; i < n; i += 4) std::reverse(four.begin() + i, four.begin() + std::min(i + 4, n));
    DataBuffer pairs = bufferOf(whole.substr(0, n)), fours = pairs;
    pairs.byteSwap21();
    fours.byteSwap4321();
    EXPECT_EQ(textOf(pairs) + textOf(fours), two + four);
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
