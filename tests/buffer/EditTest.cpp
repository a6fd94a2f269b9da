#include "tests/support/Test.h"

namespace {

using Edit = std::function<bool(DataBuffer&)>;

TEST(Append, GrowsInSteps) {
  constexpr std::pair<u32, u32> kSteps[] = {{0u, 64u},      {63u, 127u},      {64u, 320u},      {255u, 511u},
                                            {256u, 1'280u}, {1'023u, 2'047u}, {1'024u, 11'024u}};
  for (const auto& [size, capacity] : kSteps)
    for (const bool two : {false, true}) {
      DataBuffer b;
      b.copyData(randomBytes(size).data(), size);
      EXPECT_TRUE(two ? b.appendChar2('x', 'y') : b.push_back('x'));
      EXPECT_EQ(b.getBufSize(), size == 0 ? 64 : capacity) << size;
      EXPECT_EQ(textOf(b), randomBytes(size) + (two ? "xy" : "x"));
    }
  DataBuffer b = bufferOf("0123456789"), x;
  const u8* block = b.getData2();
  EXPECT_TRUE(b.append(randomBytes(19'990).data(), 19'990));
  EXPECT_EQ(b.getData2(), block);
  EXPECT_TRUE(b.append("x", 1) && x.appendCharN('x', 5));
  EXPECT_EQ(b.getBufSize(), 40'000u);
  EXPECT_EQ(x.getBufSize(), 10'005u);
  EXPECT_TRUE(x.appendRandomBytes(16) && x.size() == 21);
}

// Each edit of "abcde" in a block that is full, in one with room, and in a lent one; the last ones take the buffer's
// own bytes.
TEST(Edit, Forms) {
  DataBuffer source = bufferOf("01234");
  const std::pair<std::string, Edit> kCases[] = {
      {"abcde", [](DataBuffer& b) { return b.append(nullptr, 5) && b.append("x", 0) && b.appendStr(nullptr); }},
      {"abcde", [](DataBuffer& b) { return b.appendUtf16_le(nullptr, 5) && b.appendUtf16_le("x", 0); }},
      {"abcde", [](DataBuffer& b) { return b.appendReverse(nullptr, 3, true) && b.prepend(nullptr, 2); }},
      {"abcde", [&](DataBuffer& b) { return b.insertAt(1, nullptr, 2) && b.appendRange(source, 4, 0); }},
      {"abcde", [](DataBuffer& b) { return b.removeChunk(5, 2) && b.removeChunk(1, 0) && b.removeChunk(1, -5); }},
      {"abcde", [&](DataBuffer& b) { return !b.appendRange(source, 5, 1) && !b.removeChunk(-1, 2); }},
      {"abcde", [&](DataBuffer& b) { return !b.appendRange2(source, 2, 4) && !b.appendRange2(source, 5, 0); }},
      {"abcde", [&](DataBuffer& b) { return !b.appendRange2(source, 2, 0xFFFFFFFF); }},
      {"abcdea\0b"s, [](DataBuffer& b) { return b.appendUtf16_le("a\0b", 3); }},
      {"abcdexyz", [](DataBuffer& b) { return b.appendStr("xyz"); }},
      {"abcde01234", [&](DataBuffer& b) { return b.append(source); }},
      {"abcdexyz", [](DataBuffer& b) { return b.append(StringBuffer("xyz")); }},
      {"abcde234", [&](DataBuffer& b) { return b.appendRange(source, 2, 100); }},
      {"abcde234", [&](DataBuffer& b) { return b.appendRange2(source, 2, 3); }},
      {"abcde321", [](DataBuffer& b) { return b.appendReverse("123", 3, true); }},
      {"abcde123", [](DataBuffer& b) { return b.appendReverse("123", 3, false); }},
      {"abcdexxxx", [](DataBuffer& b) { return b.appendCharN('x', 4); }},
      {"abcde\0\0\0"s, [](DataBuffer& b) { return b.resize(8); }},
      {"ab", [](DataBuffer& b) { return b.resize(2); }},
      {"XYabcde", [](DataBuffer& b) { return b.prepend("XY", 2); }},
      {"aXYbcde", [](DataBuffer& b) { return b.insertAt(1, "XY", 2); }},
      {"XYabcde", [](DataBuffer& b) { return b.insertAt(0, "XY", 2); }},
      {"abcdeXY", [](DataBuffer& b) { return b.insertAt(7, "XY", 2); }},
      {"cde", [](DataBuffer& b) { return b.removeHead(2), true; }},
      {"", [](DataBuffer& b) { return b.removeHead(5), true; }},
      {"ade", [](DataBuffer& b) { return b.removeChunk(1, 2); }},
      {"abc", [](DataBuffer& b) { return b.removeChunk(3, 0x7FFFFFFF); }},
      {"abc", [](DataBuffer& b) { return b.shorten(2), true; }},
      {"", [](DataBuffer& b) { return b.shorten(6), true; }},
      {"de", [](DataBuffer& b) { return b.slideTailToFront(2, nowhere), true; }},
      {"abcde", [](DataBuffer& b) { return b.slideTailToFront(9, nowhere), b.slideTailToFront(0, nowhere), true; }},
      {"\x01`cd\x05", [](DataBuffer& b) { return b.applyMask("\x0F\xF0\xFF\x7F\x0F\0", 6), true; }},
      {"\1bcde", [](DataBuffer& b) { return b.applyMask("\x0F", 1), b.applyMask(nullptr, 3), true; }},
      {"abcdeabcde", [](DataBuffer& b) { return b.append(b); }},
      {"abcdede", [](DataBuffer& b) { return b.append(b.getData2() + 3, 2); }},
      {"abcdecd", [at = 2u](DataBuffer& b) mutable { return at = 2, b.parseData(at, 2, b); }},
      {"abcdedcb", [](DataBuffer& b) { return b.appendReverse(b.getData2() + 1, 3, true); }},
      {"cdeabcde", [](DataBuffer& b) { return b.prepend(b.getData2() + 2, 3); }},
      {"adebcde", [](DataBuffer& b) { return b.insertAt(1, b.getData2() + 3, 2); }},
      {"abccdede", [](DataBuffer& b) { return b.insertAt(3, b.getData2() + 2, 3); }},
      {"abcdabe", [](DataBuffer& b) { return b.insertAt(4, b.getData2(), 2); }},
  };
  for (const auto& each : kCases)
    for (const u32 capacity : {5u, 100u, 0u}) {
      u8 lent[] = {'a', 'b', 'c', 'd', 'e'};
      DataBuffer b;
      b.ensureBuffer(capacity);
      b.append(lent, 5);
      if (capacity == 0) b.borrowData(lent, 5);
      EXPECT_TRUE(each.second(b)) << &each - kCases;
      EXPECT_EQ(textOf(b), each.first) << &each - kCases << " of " << capacity;
    }
  u8 lent[] = {'1', '2', '3'};
  DataBuffer b = borrowing(lent, 3);
  b.removeHead(1);
  EXPECT_EQ(stateOf(b), "23 of 3, lent");
  EXPECT_TRUE(b.prepend("XY", 2));
  EXPECT_EQ(stateOf(b), "XY23 of 4");
  b.borrowData(lent, 3);
  b.removeHead(3);
  EXPECT_EQ(stateOf(b), " of 0, no block");
}

TEST(Edit, CombinesAndCompares) {
  DataBuffer a = bufferOf("\x01\x02\x03"), b = bufferOf("\xFF\xFE\x03"), out = bufferOf("old content"), fresh;
  EXPECT_TRUE(out.exclusiveOr(a, b) && textOf(out) == "\xFE\xFC\x00"s);
  EXPECT_FALSE(out.exclusiveOr(a, bufferOf("four")) || out.size() != 3);
  EXPECT_TRUE(out.exclusiveOr(fresh, fresh) && stateOf(out) == " of 20000");
  EXPECT_TRUE(fresh.exclusiveOr(b, b) && stateOf(fresh) == "\0\0\0 of 3"s);
  EXPECT_TRUE(a.exclusiveOr(a, a) && a.equals(fresh) && a.equals2("\0\0\0", 3) && out.equals2(nullptr, 0));
  EXPECT_FALSE(a.equals(b) || a.equals(out) || b.equals2("\xFF\xFE", 2) || a.equals2(nullptr, 3));
}

// No operation passes 2^32 - 1 bytes: refused before anything is asked for or changed. Blocks of such sizes are only
// claimed, never touched; the source lies behind them or in them.
TEST(Edit, RefusesMoreThan32Bits) {
  static u8 elsewhere[256];
  for (const u32 size : {0xFFFFFFFFu, 0xFFFFFFFEu, 0xFFFFFF00u})
    for (const bool own : {false, true}) {
      u8 claimed[256] = {};
      const u8* const block = own ? claimed : elsewhere;
      const u32 over = 0xFFFFFFFF - size + 1;
      const Edit kCalls[] = {
          [&](DataBuffer& b) { return b.append(block, over); },
          [&](DataBuffer& b) { return b.appendReverse(block, over, true); },
          [&](DataBuffer& b) { return b.prepend(block, over); },
          [&](DataBuffer& b) { return b.insertAt(1, block, over); },
          [&](DataBuffer& b) { return b.appendCharN('x', over) || b.appendCharN('x', 1); },  // 10,000 more are wanted
          [&](DataBuffer& b) { return b.appendChar('x') || b.appendChar2('x', 'y'); },
          [&](DataBuffer& b) { return b.expandBuffer(over) || b.getAppendPtr(over); },
          [&](DataBuffer& b) { return b.canAppendWithoutRealloc(over); },
      };
      for (const Edit& call : kCalls) {
        DataBuffer b = borrowing(claimed, size);
        const u64 asked = faults::tally.blocks;
        const u32 reports = Psdk::numReports();
        const bool done = call(b);
        EXPECT_EQ(faults::tally.blocks - asked, 0u);
        EXPECT_FALSE(done) << size;
        EXPECT_EQ(Psdk::numReports(), reports);
        EXPECT_TRUE(b.getData2() == claimed && b.size() == size && b.getBufSize() == size);
      }
    }
}

}  // namespace
