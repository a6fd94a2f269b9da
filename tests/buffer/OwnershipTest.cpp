#include <gtest/gtest.h>

#include "tests/support/Allocations.h"
#include "tests/support/Bytes.h"

namespace {

TEST(Ownership, TakesAnotherBuffersStorage) {
  DataBuffer a = bufferOf("old"), b = bufferOf("new");
  const u8* block = b.getData2();
  b.secure = 1;
  a.takeData(b);
  EXPECT_EQ(a.getData2(), block);
  EXPECT_EQ(textOf(a), "new");
  EXPECT_EQ(a.getBufSize(), 20'000u);
  EXPECT_EQ(a.secure, 0);
  EXPECT_TRUE(!b.getData2() && b.size() == 0 && b.getBufSize() == 0);

  b.ensureBuffer(50);  // empty, but with storage: that stays
  a.takeBinaryData(b);
  EXPECT_TRUE(a.empty());
  EXPECT_EQ(a.getData2(), block);
  EXPECT_EQ(b.getBufSize(), 50u);

  a.append("self", 4);
  a.takeData(a);
  EXPECT_EQ(textOf(a), "self");
  a.takeDataPtr(nullptr);
  EXPECT_TRUE(a.empty() && a.getData2() == block);

  u8 lent[] = {1, 2, 3};
  b.borrowData(lent, 3);
  a.takeDataPtr(&b);
  EXPECT_EQ(a.getData2(), lent);
  EXPECT_EQ(a.heapUsage(), 0u);
}

TEST(Ownership, LeavesItsBlockToTheSource) {
  DataBuffer a = bufferOf("held"), b;
  u8* block = a.getData2();
  b.copyData("taken", 5);
  a.takeData_kb(b);
  EXPECT_EQ(textOf(a), "taken");
  EXPECT_EQ(a.getBufSize(), 5u);
  EXPECT_EQ(b.getData2(), block);
  EXPECT_TRUE(b.empty() && b.getBufSize() == 20'000);

  u8 lent[] = {1, 2, 3};
  a.borrowData(lent, 3);
  a.takeData_kb(b);  // an empty source's storage moves all the same; the lent block is only forgotten
  EXPECT_EQ(a.getData2(), block);
  EXPECT_TRUE(!b.getData2() && b.getBufSize() == 0);

  b.borrowData(lent, 3);
  a.takeData_kb(b);
  EXPECT_EQ(a.heapUsage(), 0u);
  EXPECT_EQ(b.heapUsage(), 20'000u);
  a.takeData_kb(a);
  EXPECT_EQ(a.getData2(), lent);
}

TEST(Ownership, Swaps) {
  u8 lent[] = {1, 2, 3};
  DataBuffer a = bufferOf("abc"), b;
  a.secure = 1;
  b.borrowData(lent, 3);
  a.swapData(b);
  EXPECT_EQ(a.getData2(), lent);
  EXPECT_EQ(a.heapUsage(), 0u);
  EXPECT_EQ(textOf(b), "abc");
  EXPECT_TRUE(b.secure == 1 && a.secure == 0);
  b.swapData(b);
  EXPECT_EQ(textOf(b), "abc");
}

TEST(Ownership, AdoptsLendsAndHandsOut) {
  const s64 before = faults::liveBlocks();
  {
    DataBuffer b = bufferOf("released when replaced");
    u8* block = allocByteArray(8);
    vk_memcpy(block, "12345678", 8);
    b.takeData2(block, 3, 8);
    EXPECT_EQ(textOf(b), "123");
    EXPECT_EQ(b.heapUsage(), 8u);
    b.setData(block, 8);  // its own block again
    EXPECT_EQ(textOf(b), "12345678");
    EXPECT_EQ(b.removeData(), block);
    EXPECT_EQ(b.removeData(), nullptr);
    EXPECT_TRUE(b.empty() && b.getBufSize() == 0);

    b.borrowData(block, 8);
    EXPECT_TRUE(b.appendChar('9'));  // moves into a block of the buffer's own
    EXPECT_EQ(b.getBufSize(), 8u + 64);
    EXPECT_EQ(textOf(b), "123456789");
    b.borrowData(block, 8);
    EXPECT_TRUE(b.append("9", 1));
    EXPECT_EQ(b.getBufSize(), 20'008u);
    b.takeData(block, 8);
    b.dropData();
    EXPECT_TRUE(!b.getData2() && b.empty());
    delete[] block;

    u8* safe = b.getDataSafe4();
    ASSERT_NE(safe, nullptr);
    EXPECT_EQ(vk_memcmp(safe, "\0\0\0\0", 4), 0);
    EXPECT_TRUE(b.empty() && b.getBufSize() == 4);
    EXPECT_EQ(b.getDataSafe4(), safe);
  }
  EXPECT_EQ(faults::liveBlocks(), before);
  faults::FailAllocation none(1, true);
  DataBuffer b;
  EXPECT_EQ(b.getDataSafe4(), nullptr);
}

TEST(Ownership, TakesAString) {
  DataBuffer b = bufferOf("old");
  StringBuffer text;
  text.appendN("a\0b", 3);
  const char* block = text.getString();
  b.takeString(text);
  EXPECT_EQ(textOf(b), std::string("a\0b", 3));
  EXPECT_EQ(static_cast<const void*>(b.getData2()), block);
  EXPECT_TRUE(text.isEmpty() && text.append("again"));
  StringBuffer nothing;
  b.takeString(nothing);
  EXPECT_TRUE(b.empty());
}

TEST(Ownership, EndsInOneZeroByteForAString) {
  using namespace std::string_literals;
  for (const auto& [given, left] : {std::pair{"abc"s, "abc\0"s},
                                    {"ab\0\0\0"s, "ab\0"s},
                                    {""s, "\0"s},
                                    {"\0"s, "\0"s},
                                    {"a\0b"s, "a\0b\0"s},
                                    {"\0\0\0"s, "\0"s}}) {
    DataBuffer b = bufferOf(given);
    EXPECT_TRUE(b.prepForSbTake());
    EXPECT_EQ(textOf(b), left);
  }
}

TEST(Ownership, Copies) {
  DataBuffer source = bufferOf("abcde"), b = bufferOf("old");
  source.secure = 1;
  b.copy(source);
  EXPECT_EQ(textOf(b), "abcde");
  EXPECT_EQ(b.getBufSize(), 20'000u);
  EXPECT_EQ(b.secure, 0);
  b.copyData("xyz", 3);
  EXPECT_EQ(b.getBufSize(), 3u);

  b.copyData(b.getData2() + 1, 2);  // of its own bytes
  EXPECT_EQ(textOf(b), "yz");
  EXPECT_EQ(b.getBufSize(), 2u);
  b.copy(b);
  EXPECT_EQ(textOf(b), "yz");
  u8 lent[] = {'l', 'e', 'n', 't'};
  b.borrowData(lent, 4);
  b.copyData(lent + 1, 3);
  EXPECT_EQ(textOf(b), "ent");
  EXPECT_EQ(b.heapUsage(), 3u);
  b.copy(DataBuffer());
  EXPECT_TRUE(b.empty() && !b.getData2());

  for (const bool own : {false, true}) {
    DataBuffer c = bufferOf("abc");
    faults::FailAllocation none(1, true);
    c.copy(own ? c : source);
    EXPECT_TRUE(c.empty() && !c.getData2() && c.getBufSize() == 0);
  }
}

}  // namespace
