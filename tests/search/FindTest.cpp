#include <gtest/gtest.h>

#include "tests/support/Bytes.h"

namespace {

constexpr u32 kNone = 0xFFFFFFFF;

TEST(Find, FindsTheFirstOccurrence) {
  constexpr struct {
    const char *content, *pattern;
    u32 at;
  } kCases[] = {
      {"abcabc", "bc", 1}, {"abcabc", "abc", 0},    {"abcabc", "abcabc", 0},
      {"abcabc", "c", 2},  {"abcabc", "cb", kNone}, {"ab", "abc", kNone},
      {"abcabc", "", 0},   {"aaab", "ab", 2},       {"x\xFF\xFF\xFE", "\xFF\xFE", 2},
  };
  for (const auto& c : kCases) {
    DataBuffer b;
    b.copyData(c.content, countOf(c.content));
    const u8* want = c.at == kNone ? nullptr : b.getData2() + c.at;
    EXPECT_EQ(b.findBytes(bytesOf(c.pattern), static_cast<s32>(countOf(c.pattern))), want) << c.pattern;
    EXPECT_EQ(DataBuffer::findBytes2(b.getData2(), b.size(), bytesOf(c.pattern), countOf(c.pattern)), want);
    u32 index = 0;
    EXPECT_EQ(b.containsSubstring2(c.pattern, 0, 0, index), want != nullptr) << c.pattern;
    EXPECT_TRUE(!want || index == c.at) << c.pattern;
  }
}

TEST(Find, TakesNullsAndNegativeLengths) {
  DataBuffer none, cleared = bufferOf("abc"), full = bufferOf("abc");
  cleared.clear();
  const u8* a = bytesOf("a");
  bool found = true;
  EXPECT_EQ(DataBuffer::findBytes2(nullptr, 0, nullptr, 0), nullptr);
  EXPECT_EQ(DataBuffer::findBytes2(nullptr, 5, a, 6), nullptr);
  EXPECT_EQ(DataBuffer::findBytes2(a, 0, nullptr, 0), a);
  EXPECT_EQ(none.findBytes(nullptr, 0), nullptr);
  EXPECT_EQ(cleared.findBytes(nullptr, 0), cleared.getData2()) << "storage counts, not content";
  EXPECT_EQ(full.findBytes(a, -1), nullptr);
  EXPECT_EQ(full.findBytesIdx(a, -1, found, 0), 0U);
  EXPECT_FALSE(found);
  EXPECT_EQ(none.findBytesIdx(a, 0, found, 0), 0U);
  EXPECT_FALSE(none.beginsWith(a, 0));
  EXPECT_TRUE(cleared.beginsWith(nullptr, 0));
  EXPECT_FALSE(full.beginsWith(a, -1));
  EXPECT_TRUE(none.endsWithStr(""));
  EXPECT_FALSE(full.endsWithStr(nullptr));
  EXPECT_FALSE(none.containsSubstring("", 0));
  EXPECT_FALSE(full.containsSubstring(nullptr, 0));
}

TEST(Find, FindsFromAnIndexOn) {
  const DataBuffer b = bufferOf("abcabc");
  constexpr struct {
    const char* pattern;
    u32 start;
    bool found;
    u32 at;
  } kCases[] = {
      {"bc", 1, true, 1}, {"bc", 2, true, 4}, {"bc", 4, true, 4}, {"bc", 5, false, 0},     {"ab", 4, false, 0},
      {"", 3, true, 3},   {"", 6, true, 6},   {"", 7, false, 0},  {"bc", kNone, false, 0}, {"", kNone, false, 0},
  };
  for (const auto& c : kCases) {
    bool found = !c.found;
    EXPECT_EQ(b.findBytesIdx(bytesOf(c.pattern), static_cast<s32>(countOf(c.pattern)), found, c.start), c.at)
        << c.pattern << " from " << c.start;
    EXPECT_EQ(found, c.found) << c.pattern << " from " << c.start;
  }
}

TEST(Find, TestsBothEnds) {
  const DataBuffer b = bufferOf("xabc");
  EXPECT_TRUE(b.beginsWith(bytesOf("xab"), 3));
  EXPECT_TRUE(b.beginsWith(bytesOf("xabc"), 4));
  EXPECT_FALSE(b.beginsWith(bytesOf("xabcd"), 5));
  EXPECT_FALSE(b.beginsWith(bytesOf("xb"), 2));
  EXPECT_TRUE(b.endsWithStr("abc"));
  EXPECT_TRUE(b.endsWithStr("xabc"));
  EXPECT_FALSE(b.endsWithStr("yxabc"));
  EXPECT_FALSE(b.endsWithStr("ab"));
}

TEST(Find, TellsHowFarItLooked) {
  const DataBuffer b = bufferOf("abcabc");
  constexpr struct {
    const char* text;
    u32 start, most;
    bool found;
    u32 index;
  } kCases[] = {
      {"cab", 1, 0, true, 2},  {"cab", 1, 3, false, 2},  {"cab", 1, 4, true, 2},  {"cab", 1, 5, true, 2},
      {"abc", 1, 0, true, 3},  {"abc", 4, 0, false, 4},  {"abc", 1, 4, false, 3}, {"x", 0, 0, false, 6},
      {"x", 5, 0, false, 6},   {"x", 6, 0, false, 6},    {"", 5, 0, true, 5},     {"", 6, 0, false, 6},
      {"abc", 3, 99, true, 3}, {"abcd", 0, 3, false, 0}, {"a", 99, 1, false, 99},
  };
  for (const auto& c : kCases) {
    u32 index = 77;
    EXPECT_EQ(b.containsSubstring2(c.text, c.start, c.most, index), c.found) << c.text << " from " << c.start;
    EXPECT_EQ(index, c.index) << c.text << " from " << c.start;
  }
  EXPECT_TRUE(b.containsSubstring("bca", kNone));
  EXPECT_FALSE(b.containsSubstring("bca", 3));
}

}  // namespace
