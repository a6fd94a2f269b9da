#include "tests/support/Test.h"

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

// Up to 40 bytes, all of them in use; no field begins at the end, not even an empty one.
TEST(Fields, ReadsAFieldForwardsAndBackwards) {
  const std::string whole = randomBytes(46);
  const DataBuffer b = bufferOf(whole);
  for (const bool sameOrder : {false, true})
    for (const u32 offset : {0u, 1u, 4u, 5u, 6u, 44u, 45u, 46u, 0xFFFFFFFFu})
      for (u32 n = 0; n <= 42; ++n) {
        const bool fits = offset < whole.size() && n <= 40 && n <= whole.size() - offset;
        std::string want = fits ? whole.substr(offset, n) : "", out(42, '.');
        if (!sameOrder) std::reverse(want.begin(), want.end());
        EXPECT_EQ(b.getLittleEndian40(sameOrder, offset, n, reinterpret_cast<u8*>(out.data())), fits);
        EXPECT_EQ(out, want + std::string(42 - want.size(), '.')) << offset << ' ' << n;
      }
  u8 field = 0;
  EXPECT_FALSE(b.getLittleEndian40(false, 0, 3, nullptr) || DataBuffer().getLittleEndian40(true, 0, 0, &field));
}
