#include "tests/support/Test.h"

// Every way in which two buffers exchange their storage; the flag goes only with a swap.
TEST(Ownership, PassesBetweenBuffers) {
  constexpr struct {
    void (*pass)(DataBuffer& to, DataBuffer& from);
    const char* left[3];  // of both, for a `from` with storage of its own, lent, and empty
  } kCases[] = {
      {[](DataBuffer& to, DataBuffer& from) { to.takeBinaryData(from); },
       {"new of 3;  of 0, no block, secure", "len of 3, lent;  of 0, no block, secure", " of 20000;  of 50, secure"}},
      {[](DataBuffer& to, DataBuffer& from) { to.takeDataPtr(&from); },
       {"new of 3;  of 0, no block, secure", "len of 3, lent;  of 0, no block, secure", " of 20000;  of 50, secure"}},
      {[](DataBuffer& to, DataBuffer& from) { to.takeData_kb(from); },
       {"new of 3;  of 20000, secure", "len of 3, lent;  of 20000, secure", " of 50;  of 20000, secure"}},
      {[](DataBuffer& to, DataBuffer& from) { to.swapData(from); },
       {"new of 3, secure; old of 20000", "len of 3, lent, secure; old of 20000", " of 50, secure; old of 20000"}},
  };
  u8 lent[] = {'l', 'e', 'n'};
  for (const auto& c : kCases)
    for (u32 i = 0; i < 3; ++i) {
      DataBuffer to = bufferOf("old"), from;
      from.secure = 1;
      if (i == 0) from.copyData("new", 3);
      if (i == 1) from.borrowData(lent, 3);
      if (i == 2) from.ensureBuffer(50);
      const u8 *block = from.getData2(), *old = to.getData2();
      c.pass(to, from);
      EXPECT_EQ(stateOf(to) + "; " + stateOf(from), c.left[i]);
      EXPECT_EQ(to.getData2(), to.getBufSize() == 20'000 ? old : block) << &c - kCases;
      const std::string before = stateOf(to);
      c.pass(to, to);
      EXPECT_EQ(stateOf(to), before) << &c - kCases;
    }
  DataBuffer a = borrowing(lent, 3), b = bufferOf("b");
  a.takeData_kb(b);  // a lent block is only forgotten
  EXPECT_EQ(stateOf(a) + stateOf(b), "b of 20000 of 0, no block");
  b.takeData_kb(a);  // and here there is none to leave
  EXPECT_EQ(stateOf(b) + stateOf(a), "b of 20000 of 0, no block");
  b.takeDataPtr(nullptr);
  EXPECT_EQ(stateOf(b), " of 20000");
}

TEST(Ownership, AdoptsLendsAndHandsOut) {
  const s64 before = faults::tally.live;
  {
    DataBuffer b = bufferOf("released when replaced");
    u8* block = allocByteArray(8);
    vk_memcpy(block, "12345678", 8);
    b.takeData2(block, 3, 8);
    EXPECT_EQ(stateOf(b), "123 of 8");
    b.setData(block, 8);  // its own block again
    EXPECT_EQ(stateOf(b), "12345678 of 8");
    EXPECT_EQ(b.removeData(), block);
    EXPECT_EQ(b.removeData(), nullptr);
    EXPECT_EQ(stateOf(b), " of 0, no block");

    b.borrowData(block, 8);
    EXPECT_TRUE(b.appendChar('9'));  // moves into a block of the buffer's own
    EXPECT_EQ(stateOf(b), "123456789 of 72");
    b.borrowData(block, 8);
    EXPECT_TRUE(b.append("9", 1));
    EXPECT_EQ(stateOf(b), "123456789 of 20008");
    b.takeData(block, 8);
    b.dropData();
    EXPECT_EQ(stateOf(b), " of 0, no block");
    delete[] block;

    const u8* safe = b.getDataSafe4();
    EXPECT_EQ(vk_memcmp(safe, "\0\0\0\0", 4), 0);
    EXPECT_EQ(stateOf(b), " of 4");
    EXPECT_EQ(b.getDataSafe4(), safe);
  }
  EXPECT_EQ(faults::tally.live, before);
}

TEST(Ownership, TakesAString) {
  DataBuffer b = bufferOf("old");
  StringBuffer text, nothing;
  text.appendN("a\0b", 3);
  const void* block = text.getString();
  b.takeString(text);
  EXPECT_EQ(textOf(b), "a\0b"s);
  EXPECT_EQ(b.getData2(), block);
  EXPECT_TRUE(text.isEmpty() && text.append("again"));
  b.takeString(nothing);
  EXPECT_TRUE(b.empty());
}

TEST(Ownership, EndsInOneZeroByteForAString) {
  for (const auto& [given, left] :
       {std::pair{"abc"s, "abc\0"s}, {"ab\0\0\0"s, "ab\0"s}, {""s, "\0"s}, {"\0"s, "\0"s}, {"\0\0\0"s, "\0"s}}) {
    DataBuffer b = bufferOf(given);
    EXPECT_TRUE(b.prepForSbTake());
    EXPECT_EQ(textOf(b), left);
  }
}

TEST(Ownership, Copies) {
  DataBuffer source = bufferOf("abcde"), b = bufferOf("old");
  source.secure = 1;
  u8 lent[] = {'l', 'e', 'n', 't'};
  const auto copies = [&](const void* from, u32 n) {
    b.copyData(from, n);
    return stateOf(b);
  };
  b.copy(source);
  EXPECT_EQ(stateOf(b), "abcde of 20000");
  EXPECT_EQ(copies("xyz", 3), "xyz of 3");
  EXPECT_EQ(copies(b.getData2() + 1, 2), "yz of 2");  // its own bytes
  b.copy(b);
  EXPECT_EQ(stateOf(b), "yz of 2");
  b.borrowData(lent, 4);
  EXPECT_EQ(copies(lent + 1, 3), "ent of 3");
  b.copy(DataBuffer());
  EXPECT_EQ(stateOf(b), " of 0, no block");
}
