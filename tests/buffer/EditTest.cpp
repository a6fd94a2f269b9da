#include <gtest/gtest.h>

#include <functional>

#include "tests/support/Allocations.h"
#include "tests/support/Bytes.h"

namespace {

using namespace std::string_literals;

TEST(Append, ReusesTheBlockUntilItIsFull) {
  DataBuffer b = bufferOf("0123456789");
  const u8* block = b.getData2();
  EXPECT_TRUE(b.append(randomBytes(19'990).data(), 19'990));
  EXPECT_EQ(b.getData2(), block);
  EXPECT_TRUE(b.append("x", 1));
  EXPECT_EQ(b.getBufSize(), 40'000u);
}

TEST(Append, GrowsForSingleBytesInSmallSteps) {
  for (const auto& [size, capacity] : {std::pair{0u, 64u},
                                       {63u, 127u},
                                       {64u, 320u},
                                       {255u, 511u},
                                       {256u, 1'280u},
                                       {300u, 1'324u},
                                       {1'023u, 2'047u},
                                       {1'024u, 11'024u},
                                       {2'000u, 12'000u}}) {
    for (const bool two : {false, true}) {
      DataBuffer b;
      b.ensureBuffer(size);
      b.setDataSize_CAUTION(size);
      EXPECT_TRUE(two ? b.appendChar2('x', 'y') : b.push_back('x'));
      EXPECT_EQ(b.getBufSize(), capacity) << size;
      EXPECT_EQ(b.size(), size + (two ? 2 : 1));
      EXPECT_EQ(b.byteAt(size), 'x');
    }
  }
}

TEST(Append, Forms) {
  DataBuffer source = bufferOf("01234");
  const struct {
    const char* what;
    std::function<bool(DataBuffer&)> append;
    bool done;
    std::string added;
  } kCases[] = {
      {"null", [](DataBuffer& b) { return b.append(nullptr, 5); }, true, ""},
      {"nothing", [](DataBuffer& b) { return b.append("x", 0); }, true, ""},
      {"text without its NUL", [](DataBuffer& b) { return b.appendStr("abc"); }, true, "abc"},
      {"null text", [](DataBuffer& b) { return b.appendStr(nullptr); }, true, ""},
      {"buffer", [&](DataBuffer& b) { return b.append(source); }, true, "01234"},
      {"string", [](DataBuffer& b) { return b.append(StringBuffer("abc")); }, true, "abc"},
      {"range, clipped", [&](DataBuffer& b) { return b.appendRange(source, 2, 100); }, true, "234"},
      {"range past the end", [&](DataBuffer& b) { return b.appendRange(source, 5, 1); }, false, ""},
      {"range of nothing", [&](DataBuffer& b) { return b.appendRange(source, 4, 0); }, true, ""},
      {"strict range", [&](DataBuffer& b) { return b.appendRange2(source, 2, 3); }, true, "234"},
      {"strict range too long", [&](DataBuffer& b) { return b.appendRange2(source, 2, 4); }, false, ""},
      {"strict range that would wrap", [&](DataBuffer& b) { return b.appendRange2(source, 2, 0xFFFFFFFF); }, false, ""},
      {"strict range at the end", [&](DataBuffer& b) { return b.appendRange2(source, 5, 0); }, false, ""},
      {"reversed", [](DataBuffer& b) { return b.appendReverse("123", 3, true); }, true, "321"},
      {"not reversed", [](DataBuffer& b) { return b.appendReverse("123", 3, false); }, true, "123"},
      {"reversed null", [](DataBuffer& b) { return b.appendReverse(nullptr, 3, true); }, true, ""},
      {"copies", [](DataBuffer& b) { return b.appendCharN('x', 4); }, true, "xxxx"},
      {"longer", [](DataBuffer& b) { return b.resize(b.size() + 3); }, true, "\0\0\0"s},
  };
  for (const auto& c : kCases) {
    DataBuffer b = bufferOf("head");
    EXPECT_EQ(c.append(b), c.done) << c.what;
    EXPECT_EQ(textOf(b), "head" + c.added) << c.what;
  }
  DataBuffer b;
  b.appendCharN('x', 5);
  EXPECT_EQ(b.getBufSize(), 10'005u);
  EXPECT_TRUE(b.appendRandomBytes(16) && b.size() == 21);
}

TEST(Edit, InsertsAndRemoves) {
  const struct {
    const char *what, *given;
    std::function<bool(DataBuffer&)> edit;
    bool done;
    const char* left;
  } kCases[] = {
      {"front", "cd", [](DataBuffer& b) { return b.prepend("ab", 2); }, true, "abcd"},
      {"front of nothing", "", [](DataBuffer& b) { return b.prepend("ab", 2) && b.getBufSize() == 2; }, true, "ab"},
      {"middle", "abc", [](DataBuffer& b) { return b.insertAt(1, "XY", 2); }, true, "aXYbc"},
      {"at 0", "abc", [](DataBuffer& b) { return b.insertAt(0, "XY", 2); }, true, "XYabc"},
      {"at the end", "abc", [](DataBuffer& b) { return b.insertAt(3, "XY", 2); }, true, "abcXY"},
      {"past the end", "abc", [](DataBuffer& b) { return b.insertAt(7, "XY", 2); }, true, "abcXY"},
      {"null", "abc", [](DataBuffer& b) { return b.insertAt(1, nullptr, 2) && b.prepend(nullptr, 2); }, true, "abc"},
      {"head", "abcd", [](DataBuffer& b) { return b.removeHead(2), true; }, true, "cd"},
      {"whole head", "abcd", [](DataBuffer& b) { return b.removeHead(4), true; }, true, ""},
      {"more than the head", "abcd", [](DataBuffer& b) { return b.removeHead(9), true; }, true, ""},
      {"chunk", "abcde", [](DataBuffer& b) { return b.removeChunk(1, 2); }, true, "ade"},
      {"chunk, clipped", "abcde", [](DataBuffer& b) { return b.removeChunk(3, 0x7FFFFFFF); }, true, "abc"},
      {"chunk to the end", "abcde", [](DataBuffer& b) { return b.removeChunk(3, 2); }, true, "abc"},
      {"chunk past the end", "abcde", [](DataBuffer& b) { return b.removeChunk(5, 2); }, true, "abcde"},
      {"negative chunk", "abcde", [](DataBuffer& b) { return b.removeChunk(-1, 2); }, false, "abcde"},
      {"chunk of nothing", "abcde", [](DataBuffer& b) { return b.removeChunk(1, 0) && b.removeChunk(1, -5); }, true,
       "abcde"},
      {"shorter", "abcde", [](DataBuffer& b) { return b.shorten(2), true; }, true, "abc"},
      {"much shorter", "abcde", [](DataBuffer& b) { return b.shorten(6), true; }, true, ""},
      {"cut", "abcde", [](DataBuffer& b) { return b.resize(2); }, true, "ab"},
      {"tail", "abcde",
       [](DataBuffer& b) {
         LogNull log;
         return b.slideTailToFront(2, log), true;
       },
       true, "de"},
      {"long tail", "abcde",
       [](DataBuffer& b) {
         LogNull log;
         return b.slideTailToFront(9, log), true;
       },
       true, "abcde"},
      {"no tail", "abcde",
       [](DataBuffer& b) {
         LogNull log;
         return b.slideTailToFront(0, log), true;
       },
       true, "abcde"},
      {"mask", "abc", [](DataBuffer& b) { return b.applyMask("\x0F\xF0\xFF\x00", 4), true; }, true, "\x01\x60\x63"},
      {"short mask", "abc", [](DataBuffer& b) { return b.applyMask("\x0F", 1), b.applyMask(nullptr, 3), true; }, true,
       "\x01"
       "bc"},
  };
  for (const auto& c : kCases) {
    DataBuffer b;
    b.copyData(c.given, static_cast<u32>(std::strlen(c.given)));
    EXPECT_EQ(c.edit(b), c.done) << c.what;
    EXPECT_EQ(textOf(b), c.left) << c.what;
  }
  u8 lent[] = {1, 2, 3};
  DataBuffer b;
  b.borrowData(lent, 3);
  b.removeHead(1);
  EXPECT_EQ(b.getData2(), lent);
  b.removeHead(2);
  EXPECT_EQ(b.getData2(), nullptr);
}

TEST(Edit, CombinesTwoBuffers) {
  DataBuffer a = bufferOf("\x01\x02\x03"), b = bufferOf("\xFF\xFE\x03"), out = bufferOf("old content");
  EXPECT_TRUE(out.exclusiveOr(a, b));
  EXPECT_EQ(textOf(out), "\xFE\xFC\x00"s);
  EXPECT_TRUE(a.exclusiveOr(a, a));
  EXPECT_EQ(textOf(a), "\0\0\0"s);
  EXPECT_FALSE(out.exclusiveOr(a, bufferOf("four")));
  EXPECT_EQ(out.size(), 3u);
  EXPECT_TRUE(out.exclusiveOr(DataBuffer(), DataBuffer()));
  EXPECT_TRUE(out.empty() && out.getBufSize() == 20'000);
  DataBuffer fresh;
  EXPECT_TRUE(fresh.exclusiveOr(b, b));
  EXPECT_EQ(fresh.getBufSize(), 3u);
}

TEST(Edit, Compares) {
  const DataBuffer a = bufferOf("abc"), empty;
  EXPECT_TRUE(a.equals(bufferOf("abc")) && empty.equals(DataBuffer()) && a.equals2("abc", 3) &&
              empty.equals2(nullptr, 0));
  EXPECT_FALSE(a.equals(bufferOf("abd")) || a.equals(empty) || a.equals2("abc", 2) || a.equals2(nullptr, 3));
}

// Arguments in the buffer's own storage, with room for the result and without.
TEST(Edit, ServesItsOwnBytes) {
  const struct {
    const char* what;
    std::function<bool(DataBuffer&)> edit;
    const char* left;
  } kCases[] = {
      {"append all", [](DataBuffer& b) { return b.append(b); }, "abcdefabcdef"},
      {"append some", [](DataBuffer& b) { return b.append(b.getData2() + 4, 2); }, "abcdefef"},
      {"append reversed", [](DataBuffer& b) { return b.appendReverse(b.getData2() + 1, 3, true); }, "abcdefdcb"},
      {"prepend", [](DataBuffer& b) { return b.prepend(b.getData2() + 2, 3); }, "cdeabcdef"},
      {"insert before it", [](DataBuffer& b) { return b.insertAt(1, b.getData2() + 3, 3); }, "adefbcdef"},
      {"insert into it", [](DataBuffer& b) { return b.insertAt(3, b.getData2() + 2, 3); }, "abccdedef"},
      {"insert behind it", [](DataBuffer& b) { return b.insertAt(5, b.getData2(), 2); }, "abcdeabf"},
  };
  for (const auto& c : kCases)
    for (const u32 capacity : {6u, 100u})
      for (const bool borrowed : {false, true}) {
        u8 lent[] = {'a', 'b', 'c', 'd', 'e', 'f'};
        DataBuffer b;
        b.ensureBuffer(capacity);
        b.append(lent, 6);
        if (borrowed) b.borrowData(lent, 6);
        EXPECT_TRUE(c.edit(b)) << c.what;
        EXPECT_EQ(textOf(b), c.left) << c.what << ' ' << capacity << borrowed;
      }
}

// No operation passes 2^32 - 1 bytes: refused before anything is asked for or changed. Blocks of such sizes are only
// claimed, never touched.
TEST(Edit, RefusesMoreThan32Bits) {
  u8 block[64] = {};
  for (const u32 size : {0xFFFFFFFFu, 0xFFFFFFFEu, 0xFFFFFF00u}) {
    const u32 over = 0xFFFFFFFF - size + 1;
    const std::function<bool(DataBuffer&)> kCalls[] = {
        [&](DataBuffer& b) { return b.append(block, over); },
        [&](DataBuffer& b) { return b.appendReverse(block, over, true); },
        [&](DataBuffer& b) { return b.prepend(block, over); },
        [&](DataBuffer& b) { return b.insertAt(1, block, over); },
        [&](DataBuffer& b) { return b.appendCharN('x', over); },
        [&](DataBuffer& b) { return b.appendCharN('x', 1); },  // 10,000 more are wanted
        [&](DataBuffer& b) { return b.appendChar('x'); },
        [&](DataBuffer& b) { return b.appendChar2('x', 'y'); },
        [&](DataBuffer& b) { return b.expandBuffer(over); },
        [&](DataBuffer& b) { return b.getAppendPtr(over) != nullptr; },
        [&](DataBuffer& b) { return b.canAppendWithoutRealloc(over); },
    };
    for (const auto& call : kCalls) {
      u8 claimed[8] = {};
      DataBuffer b;
      b.borrowData(claimed, size);
      const u64 asked = faults::allocations();
      const u32 reports = Psdk::numReports();
      const bool done = call(b);
      EXPECT_EQ(faults::allocations() - asked, 0u);
      EXPECT_FALSE(done) << size;
      EXPECT_EQ(Psdk::numReports(), reports);
      EXPECT_TRUE(b.getData2() == claimed && b.size() == size && b.getBufSize() == size);
    }
  }
}

}  // namespace
