#include "tests/support/Test.h"

TEST(StringBuffer, StartsEmptyAndEndsInANul) {
  StringBuffer s;
  EXPECT_STREQ(s.getString(), "");
  EXPECT_TRUE(s.isEmpty() && s.getSize() == 0 && s.lastChar() == 0);
  s.weakClear(), s.clear(), s.shorten(3), s.trim2(), s.toLowerCase(), s.removeCharOccurances('x');
  EXPECT_TRUE(s.append("ab") && s.append(StringBuffer("cd")) && s.append(bufferOf("e\0f"s)) &&
              s.appendN("\0"s.data(), 1) && s.appendChar('g') && s.appendCharN('h', 3));
  EXPECT_EQ(textOf(s), "abcde\0f\0ghhh"s);
  EXPECT_EQ(s.lastChar(), 'h');
  EXPECT_EQ(s.getString()[s.getSize()], 0);
  EXPECT_TRUE(s.append(static_cast<const char*>(nullptr)) && s.appendN(nullptr, 3) && s.appendCharN('x', 0));
  EXPECT_EQ(s.getSize(), 12u);
  for (u32 i = 0; i < 10'000; ++i) ASSERT_TRUE(s.appendChar('z'));
  EXPECT_EQ(s.getString()[s.getSize()], 0);
}

TEST(StringBuffer, AppendsItself) {
  StringBuffer s("0123456789");
  for (u32 i = 0; i < 6; ++i) ASSERT_TRUE(s.append(s));
  EXPECT_EQ(s.getSize(), 640u);
  EXPECT_TRUE(s.append(s.getString() + 635));
  EXPECT_EQ(textOf(s).substr(630), "012345678956789");
}

TEST(StringBuffer, Edits) {
  const std::tuple<const char*, const char*, void (*)(StringBuffer&)> kCases[] = {
      {"abc", "ab", [](StringBuffer& s) { s.shorten(1); }},
      {"abc", "", [](StringBuffer& s) { s.shorten(9); }},
      {" \x08 ", "\x08", [](StringBuffer& s) { s.trim2(); }},  // other controls stay
      {" \t\r\n\v\fa b \n", "a b", [](StringBuffer& s) { s.trim2(); }},
      {" \t ", "", [](StringBuffer& s) { s.trim2(); }},
      {"AZaz[@\xC4", "azaz[@\xC4", [](StringBuffer& s) { s.toLowerCase(); }},
      {"a:b::c", "abc", [](StringBuffer& s) { s.removeCharOccurances(':'); }},
      {"aaa-aa", "ba-b", [](StringBuffer& s) { s.replaceAllOccurances("aa", "b"); }},
      {"ab", "aabb", [](StringBuffer& s) { s.replaceAllOccurances("a", "aab"); }},  // once
      {"a&b&", "ab", [](StringBuffer& s) { s.replaceAllOccurances("&", nullptr); }},
      {"ab", "ab", [](StringBuffer& s) { s.replaceAllOccurances("", "x"), s.replaceAllOccurances(nullptr, "x"); }},
      {"-_+/", "+/+/", [](StringBuffer& s) { s.replaceModBase64Chars(); }},
  };
  for (const auto& [given, left, edit] : kCases) {
    StringBuffer s(given);
    edit(s);
    EXPECT_EQ(textOf(s), left) << given;
    EXPECT_EQ(s.getString()[s.getSize()], 0) << given;
  }
}

TEST(StringBuffer, EscapesForJson) {
  StringBuffer text("a\"b\\\n/"), plain("plain \xC3\xA9");
  const char* const block = plain.getString();
  EXPECT_TRUE(text.jsonEscape() && plain.jsonEscape());
  EXPECT_STREQ(text.getString(), R"(a\"b\\\n/)");
  EXPECT_TRUE(plain.getString() == block && plain.equals("plain \xC3\xA9"));
}

TEST(StringBuffer, Compares) {
  const StringBuffer s("Base64"), empty;
  EXPECT_TRUE(s.equals("Base64") && s.equalsIgnoreCase("bASE64") && s.equalsIgnoreCase2("base64url", 6) &&
              empty.equalsIgnoreCase2(nullptr, 0));
  EXPECT_FALSE(s.equals("base64") || s.equals("Base6") || s.equals(nullptr) || s.equalsIgnoreCase("base6") ||
               s.equalsIgnoreCase2("base64", 5) || s.equalsIgnoreCase2("base65", 6));
  EXPECT_TRUE(s.beginsWith("Bas") && s.beginsWith("") && s.beginsWithIgnoreCase("BAS") && empty.equals(nullptr) &&
              empty.equals(""));
  EXPECT_FALSE(s.beginsWith("bas") || s.beginsWith("Base644") || s.beginsWithIgnoreCase("Base644") ||
               s.beginsWithIgnoreCase("bat"));
  EXPECT_FALSE(StringBuffer("[").equalsIgnoreCase("{"));  // only letters have case
}

TEST(StringBuffer, HandsItsStorageOver) {
  StringBuffer s("abc");
  u32 size = 0, capacity = 0;
  u8* block = s.extractString2(size, capacity);
  EXPECT_EQ(size, 3u);
  EXPECT_GE(capacity, 4u);
  EXPECT_EQ(vk_memcmp(block, "abc", 4), 0);
  delete[] block;
  EXPECT_TRUE(s.isEmpty() && s.append("new"));

  StringBuffer copy("old"), moved;
  copy = s, moved = std::move(s);
  EXPECT_TRUE(copy.equals("new") && moved.equals("new"));
  EXPECT_TRUE(s.isEmpty());  // NOLINT(bugprone-use-after-move): moved-from is empty
  const StringBuffer& itself = copy;
  copy = itself, moved = std::move(copy);
  EXPECT_TRUE(moved.equals("new"));
}

TEST(StringBuffer, WipesASecretWhereverItLay) {
  StringBuffer s;
  s.setSecure(true);
  s.append("secret");
  const std::string zeros(8, '\0');
  EXPECT_EQ(seenAtRelease(s.getString(), 8, [&] { s.appendCharN('x', 1'000); }), zeros)
      << "it grows: the old block goes";
  s.weakClear();  // the characters behind the NUL are still there, and go with the block
  EXPECT_EQ(seenAtRelease(s.getString(), 8, [&] { s.clear(); }), zeros);
}

TEST(StringBuffer, AsksForLessWhereMuchIsNotToBeHad) {
  StringBuffer s("0123456789");
  EXPECT_EQ(s.getAppendPtr(0xFFFFFFFF), nullptr);
  const faults::FailAllocation first(1, false);
  EXPECT_TRUE(s.appendCharN('x', 30));  // half as much again is refused, what is needed is not
  EXPECT_EQ(s.getSize(), 40u);
}

TEST(XString, GivesUtf16) {
  const std::pair<const char*, std::u16string> kCases[] = {
      {"", u""},
      {"aé€", u"aé€"},
      {"\xF0\x9F\x98\x80", u"\xD83D\xDE00"},
      {"\xEF\xBB\xBFx", u"\xFEFFx"},  // a mark is content
      {"\xE2\x82z", u"\xFFFDz"},      // cut: one maximal part
  };
  for (const auto& [utf8, units] : kCases) {
    XString x;
    EXPECT_TRUE(x.setFromUtf8(utf8));
    ASSERT_EQ(x.getNumChars(), units.size()) << utf8;
    EXPECT_EQ(vk_memcmp(x.getUtf16_xe(), units.c_str(), 2 * units.size() + 2), 0) << utf8;
    DataBuffer plain, marked;
    EXPECT_TRUE(x.getUtf16_le(false, plain) && x.getUtf16_le(true, marked));
    std::string bytes;
    for (const u32 unit : units) bytes += {static_cast<char>(unit), static_cast<char>(unit >> 8)};
    EXPECT_EQ(textOf(plain), bytes);
    EXPECT_EQ(textOf(marked), "\xFF\xFE" + bytes);
  }
}

TEST(XString, TakesUtf16AtAnyAddress) {
  const std::u16string units = u"aé€\xD83D\xDE00|\xD800|\xDC00\xD800";
  const std::string shifted = "?" + unitsOf(units);
  XString x;
  EXPECT_TRUE(x.setFromUtf16N_xe(bytesOf(shifted) + 1, static_cast<s32>(units.size())));
  EXPECT_STREQ(x.getUtf8(), "aé€\xF0\x9F\x98\x80|\xEF\xBF\xBD|\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_TRUE(x.setFromUtf16N_xe(nullptr, 3) && x.isEmpty());
  EXPECT_TRUE(x.setFromUtf16N_xe(bytesOf(shifted), -1) && x.isEmpty());
}

TEST(XString, CopiesMovesAndWipes) {
  XString a = wideOf("text"), b(a), c(std::move(a));
  EXPECT_STREQ(b.getUtf8(), "text");
  EXPECT_STREQ(c.getUtf8(), "text");
  b = c, c = std::move(b);
  EXPECT_STREQ(c.getUtf8(), "text");
  const XString& itself = c;
  c = itself, c = std::move(const_cast<XString&>(itself));
  c.setFromUtf8(c.getUtf8() + 2);
  EXPECT_STREQ(c.getUtf8(), "xt");

  c.setSecureX(true);
  c.setFromUtf8("secret");
  EXPECT_EQ(seenAtRelease(c.getUtf16_xe(), 12, [&] { c.secureClear(); }), std::string(12, '\0'));
  EXPECT_TRUE(c.isEmpty() && c.isSecure());
  const faults::FailAllocation none(1, true);
  EXPECT_EQ(c.getUtf16_xe(), nullptr);
}
