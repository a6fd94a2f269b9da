// Code pages found in the bytes, and conversions from and to Unicode.

#include "tests/services/CharsetSupport.h"

namespace {

std::string zerosAt(u32 n, u32 first, u32 count) {
  std::string text(n, 'x');
  for (u32 i = 0; i < count; ++i) text[first + 2 * i] = '\0';
  return text;
}

TEST(Unicode, DetectsTheObviousCodePage) {
  const std::pair<s32, std::vector<std::string>> kCases[] = {
      {-1,
       {"", "A", fromHex("EFBB"), "plain ASCII text, a good deal of it", zerosAt(16, 1, 1), zerosAt(1000, 1, 20),
        zerosAt(1000, 1, 32), zerosAt(200, 0, 24)}},
      {65001, {fromHex("EFBBBF")}},
      {12000, {fromHex("FFFE0000 3C"), fromHex("FFFE0000")}},
      {12001, {fromHex("0000FEFF")}},
      {1200,
       {fromHex("FFFE3C00"), fromHex("FFFE"), fromHex("0000FE"), fromHex("3C003F00"), zerosAt(7, 1, 1),
        zerosAt(8, 7, 1), zerosAt(16, 1, 2), zerosAt(1000, 901, 33), zerosAt(2500, 0, 1000) + zerosAt(2500, 1, 33)}},
      {1201,
       {std::string(1, '\0'), fromHex("FEFF"), fromHex("003C003F"), zerosAt(1001, 936, 33), zerosAt(200, 0, 25),
        zerosAt(100, 0, 30) + zerosAt(100, 1, 1)}},
  };
  for (const auto& [codePage, texts] : kCases)
    for (const std::string& text : texts)
      EXPECT_EQ(bufferOf(text).detectObviousCodePage(), codePage) << ::testing::PrintToString(text);
  DataBuffer cleared = bufferOf("x");
  cleared.clear();
  EXPECT_TRUE(cleared.detectObviousCodePage() == -1 && DataBuffer().detectObviousCodePage() == -1);
}

TEST(Unicode, Is7bit) {
  const DataBuffer b = bufferOf("ab\xC3");
  EXPECT_TRUE(b.is7bit(1) && b.is7bit(2));
  EXPECT_FALSE(b.is7bit(3) || b.is7bit(0) || b.is7bit(4));
  EXPECT_TRUE(DataBuffer().is7bit(0) && DataBuffer().is7bit(9));
  for (u32 at = 0; at < 300; ++at) {
    std::string text(300, '\x7F');
    text[at] = '\x80';
    EXPECT_FALSE(bufferOf(text).is7bit(0));
    EXPECT_TRUE(at == 0 || bufferOf(text).is7bit(at));
  }
}

// No conversion from an unknown code page succeeds; there has to be a character below U+0100.
TEST(Unicode, IsReallyUtf8) {
  for (const auto& [text, page] : {std::pair{"caf\u00E9", 20127}, {"\u00FFcaf", 1}, {"\xFF\xC3\xFF", 20127}})
    EXPECT_TRUE(bufferOf(text).isReallyUtf8(page)) << text;
  for (const char* text : {"plain", "\u0153uvre", "\xC3", "\xC3z\xC3"})
    EXPECT_FALSE(bufferOf(text).isReallyUtf8(20127)) << text;
  DataBuffer cut = bufferOf("caf\u00E9");
  cut.shorten(1);
  EXPECT_FALSE(cut.isReallyUtf8(20127));
  EXPECT_FALSE(bufferOf("").isReallyUtf8(1) || bufferOf("caf\u00E9").isReallyUtf8(1252));
}

TEST(Unicode, CountsTheBytesOfACharacterThatIsCut) {
  for (const std::string_view whole : {"a", "\u00E9", "\u20AC", "\U0001F600"})
    for (const std::string head : {"", "x", "\u00E9", "\u20AC"})
      for (u32 n = 0; n <= whole.size(); ++n)
        EXPECT_EQ(bufferOf(head + std::string(whole.substr(0, n))).numPartialTrailingUtf8Bytes(), n % whole.size());
  for (const char* complete : {"a\x80", "\x82\x82\x82\x82", "\xF8", "a\xFF", "\xC3\xA9\xA9", "\xF8\x80"})
    EXPECT_EQ(bufferOf(complete).numPartialTrailingUtf8Bytes(), 0u) << complete;
}

TEST(Unicode, DecodesIntoAString) {
  XString text = wideOf("before");
  bufferOf("caf\xE9 \x80").toXString("windows-1252", text);
  EXPECT_STREQ(text.getUtf8(), "caf\u00E9 \u20AC");
  bufferOf("\uFEFF\U0001F600\xFF").toXString("utf-8", text);
  EXPECT_STREQ(text.getUtf8(), "\U0001F600\uFFFD");
  for (const char* name : {"klingon", static_cast<const char*>(nullptr)}) {
    text.setFromUtf8("before");
    bufferOf("x").toXString(name, text);
    EXPECT_TRUE(text.isEmpty());
  }
  bufferOf("").toXString("utf-8", text);
  EXPECT_TRUE(text.isEmpty());
}

TEST(Unicode, ConvertsUtf16Content) {
  for (const std::string want : {"", "caf\u00E9 \U0001F600", "long text, long text, long text, long text, \u20AC"}) {
    const DataBuffer b = bufferOf(convert(65001, 1200, want).text);
    StringBuffer text("before");
    b.cvUnicodeToUtf8(text);
    EXPECT_EQ(textOf(text), want);
    DataBuffer bytes = bufferOf("before");
    b.cvUnicodeToUtf8_db(bytes);
    EXPECT_EQ(textOf(bytes), want);
  }
  DataBuffer bytes;
  bufferOf(fromHex("FFFE 4100 00D8 42")).cvUnicodeToUtf8_db(bytes);
  EXPECT_EQ(textOf(bytes), "A\uFFFD");
}

TEST(Unicode, AppendsNulTerminatedUnits) {
  const std::string two = fromHex("41 00 00 42 00 00 43"), four = fromHex("41 00 00 00 00 00 00 42 00 00 00 00 43");
  DataBuffer b = bufferOf("x");
  EXPECT_TRUE(b.appendNullTerminatedUtf16_xe(bytesOf(two)));
  std::string want = std::string("x").append(two, 0, 6);
  EXPECT_EQ(textOf(b), want);
  EXPECT_TRUE(b.appendNullTerminatedUtf32_xe(bytesOf(four)));
  EXPECT_EQ(textOf(b), want.append(four, 0, 12));
  DataBuffer zeros;
  EXPECT_TRUE(zeros.appendNullTerminatedUtf16_xe(nullptr) && zeros.appendNullTerminatedUtf32_xe(nullptr));
  EXPECT_TRUE(zeros.appendNullTerminatedUtf16_xe(zeros.getData2()));
  EXPECT_EQ(textOf(zeros), std::string(8, '\0'));
}

}  // namespace
