#include "tests/support/Test.h"

constexpr u32 kNone = 0xFFFFFFFF;

// Every search, from every place on, and both ends.
TEST(Find, AgreesWithTheStandardLibrary) {
  for (const std::string content : {"abcabc", "xabc", "ab", "aaab", "x\xFF\xFF\xFE"})
    for (const std::string pattern :
         {"", "a", "c", "x", "ab", "bc", "cb", "abc", "xab", "xabc", "abcabc", "xabcd", "yxabc", "xb", "\xFF\xFE"}) {
      DataBuffer b;
      b.copyData(content.data(), countOf(content));
      const auto n = static_cast<s32>(pattern.size());
      const std::size_t first = content.find(pattern);
      const u8* want = first == content.npos ? nullptr : b.getData2() + first;
      u32 index = 0;
      EXPECT_EQ(b.findBytes(bytesOf(pattern), n), want) << pattern;
      EXPECT_EQ(DataBuffer::findBytes2(b.getData2(), b.size(), bytesOf(pattern), countOf(pattern)), want) << pattern;
      EXPECT_EQ(b.containsSubstring2(pattern.c_str(), 0, 0, index), want != nullptr) << pattern;
      EXPECT_TRUE(!want || index == first) << pattern;
      EXPECT_EQ(b.beginsWith(bytesOf(pattern), n), content.starts_with(pattern)) << pattern;
      EXPECT_EQ(b.endsWithStr(pattern.c_str()), content.ends_with(pattern)) << pattern;
      for (const u32 start : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, kNone}) {
        const std::size_t at = content.find(pattern, start);
        bool found = at == content.npos;
        EXPECT_EQ(b.findBytesIdx(bytesOf(pattern), n, found, start), at == content.npos ? 0 : at)
            << pattern << " from " << start;
        EXPECT_EQ(found, at != content.npos) << pattern << " from " << start;
      }
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
  EXPECT_TRUE(full.findBytesIdx(a, -1, found, 0) == 0 && !found && none.findBytesIdx(a, 0, found, 0) == 0);
  EXPECT_FALSE(none.beginsWith(a, 0) || full.beginsWith(a, -1) || full.endsWithStr(nullptr));
  EXPECT_TRUE(cleared.beginsWith(nullptr, 0) && none.endsWithStr(""));
  EXPECT_FALSE(none.containsSubstring("", 0) || full.containsSubstring(nullptr, 0));
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
