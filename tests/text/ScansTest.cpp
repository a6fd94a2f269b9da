#include "tests/support/Test.h"

namespace {

bool longerModel(const std::string& s, u32 most) {
  u32 run = 0;
  for (const char c : s)
    if ((run = c == '\r' || c == '\n' ? 0 : run + 1) > most) return true;
  return false;
}

TEST(Scans, MeasuresLines) {
  constexpr struct {
    const char* text;
    u32 most;
    bool longer;
  } kCases[] = {
      {"abc\r\n", 3, false},      {"abcd\r\n", 3, true},    {"abc\r\nabcd", 3, true},
      {"abc", 3, false},          {"", 0, false},           {"\r\n\r\n", 0, false},
      {"\r\na", 0, true},         {"ab\rab\nab", 2, false}, {"abc", 0xFFFFFFFF, false},
      {"abc", 0xFFFFFFFE, false}, {"abc", 2, true},
  };
  for (const auto& c : kCases) EXPECT_EQ(bufferOf(c.text).hasLineLonger(c.most), c.longer) << c.text << ", " << c.most;

  GuardedBytes area(2000);
  for (u32 seed = 0; seed < 3000; ++seed) {
    Random random(seed);
    std::string text;
    const u32 longest = 1 + random.below(seed % 2 == 0 ? 12 : 200);
    const u32 end = random.below(1500);
    while (text.size() < end)
      text += std::string(random.below(longest + 1), 'x') + random.text(1 + random.below(2), "\r\n");
    if (text.empty()) continue;
    const DataBuffer b = borrowing(area.ending(text), text.size());
    for (const u32 most : {0U, longest - 1, longest, longest / 2, longest + 40})
      ASSERT_EQ(b.hasLineLonger(most), longerModel(text, most)) << "seed " << seed << ", " << most;
  }
}

TEST(Scans, FindsBareLineEnds) {
  for (const char* text : {"", "\r\n", "a\r\nb\r\n\r\n", "no end"})
    EXPECT_FALSE(bufferOf(text).containsBareCRLF()) << text;
  for (const char* text : {"\n", "\r", "a\r", "\r\r\n", "\r\n\n", "a\r\nb\r", "\n\r"})
    EXPECT_TRUE(bufferOf(text).containsBareCRLF()) << text;
}

TEST(Scans, FindsOneByte) {
  DataBuffer b = bufferOf("a\x80\xFFz\0"s), none;
  EXPECT_EQ(b.findByte(0xFF), b.getData2() + 2);
  EXPECT_EQ(b.findByte(0), b.getData2() + 4);
  EXPECT_EQ(b.findByte('b'), nullptr);
  EXPECT_TRUE(b.containsChar('\x80') && b.containsChar('\0') && b.containsChar('a'));
  EXPECT_FALSE(b.containsChar('b'));
  b.shorten(2);
  EXPECT_FALSE(b.containsChar('z')) << "behind the bytes in use";
  EXPECT_EQ(none.findByte('a'), nullptr);
  EXPECT_FALSE(none.containsChar('a'));
}

TEST(Scans, KnowsAlternateZeros) {
  for (const char* hex : {"41 00 42 00", "41 00 42", "00 00"})
    EXPECT_TRUE(bufferOf(fromHex(hex)).altBytesNull()) << hex;
  for (const char* hex : {"", "41", "41 42"}) EXPECT_FALSE(bufferOf(fromHex(hex)).altBytesNull()) << hex;
}

}  // namespace
