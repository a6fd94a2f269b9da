#include "tests/support/Test.h"

namespace {

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
  const struct {
    const char *what, *given;
    std::function<void(StringBuffer&)> edit;
    const char* left;
  } kCases[] = {
      {"shorter", "abc", [](StringBuffer& s) { s.shorten(1); }, "ab"},
      {"much shorter", "abc", [](StringBuffer& s) { s.shorten(9); }, ""},
      {"trimmed but for other controls", " \x08 ", [](StringBuffer& s) { s.trim2(); }, "\x08"},
      {"trimmed", " \t\r\n\v\fa b \n", [](StringBuffer& s) { s.trim2(); }, "a b"},
      {"trimmed to nothing", " \t ", [](StringBuffer& s) { s.trim2(); }, ""},
      {"lower case", "AZaz[@\xC4", [](StringBuffer& s) { s.toLowerCase(); }, "azaz[@\xC4"},
      {"character removed", "a:b::c", [](StringBuffer& s) { s.removeCharOccurances(':'); }, "abc"},
      {"replaced", "aaa-aa", [](StringBuffer& s) { s.replaceAllOccurances("aa", "b"); }, "ba-b"},
      {"replacement not searched", "ab", [](StringBuffer& s) { s.replaceAllOccurances("a", "aab"); }, "aabb"},
      {"deleted", "a&b&", [](StringBuffer& s) { s.replaceAllOccurances("&", nullptr); }, "ab"},
      {"nothing to find", "ab",
       [](StringBuffer& s) { s.replaceAllOccurances("", "x"), s.replaceAllOccurances(nullptr, "x"); }, "ab"},
      {"URL-safe base64", "-_+/", [](StringBuffer& s) { s.replaceModBase64Chars(); }, "+/+/"},
  };
  for (const auto& c : kCases) {
    StringBuffer s(c.given);
    c.edit(s);
    EXPECT_STREQ(s.getString(), c.left) << c.what;
    EXPECT_EQ(s.getSize(), std::strlen(c.left)) << c.what;
  }
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
  {
    const faults::WatchRelease watch(s.getString(), 8);
    s.appendCharN('x', 1'000);  // grows: the old block goes
    ASSERT_TRUE(watch.released());
    EXPECT_EQ(vk_memcmp(watch.bytes(), "\0\0\0\0\0\0\0\0", 8), 0);
  }
  s.weakClear();  // the characters behind the NUL are still there, and go with the block
  const faults::WatchRelease watch(s.getString(), 8);
  s.clear();
  ASSERT_TRUE(watch.released());
  EXPECT_EQ(vk_memcmp(watch.bytes(), "\0\0\0\0\0\0\0\0", 8), 0);
}

TEST(StringBuffer, AsksForLessWhereMuchIsNotToBeHad) {
  StringBuffer s("0123456789");
  EXPECT_EQ(s.getAppendPtr(0xFFFFFFFF), nullptr);
  const faults::FailAllocation first(1, false);
  EXPECT_TRUE(s.appendCharN('x', 30));  // half as much again is refused, what is needed is not
  EXPECT_EQ(s.getSize(), 40u);
}

TEST(XString, GivesUtf16) {
  const struct {
    const char* utf8;
    std::u16string units;
  } kCases[] = {
      {"", u""},
      {"aé€", u"aé€"},
      {"\xF0\x9F\x98\x80", u"\xD83D\xDE00"},
      {"\xEF\xBB\xBFx", u"\xFEFFx"},  // a mark is content
      {"\xE2\x82z", u"\xFFFDz"},      // cut: one maximal part
  };
  for (const auto& c : kCases) {
    XString x;
    EXPECT_TRUE(x.setFromUtf8(c.utf8));
    ASSERT_EQ(x.getNumChars(), c.units.size()) << c.utf8;
    EXPECT_EQ(vk_memcmp(x.getUtf16_xe(), c.units.c_str(), 2 * c.units.size() + 2), 0) << c.utf8;
    DataBuffer plain, marked;
    EXPECT_TRUE(x.getUtf16_le(false, plain) && x.getUtf16_le(true, marked));
    ASSERT_EQ(plain.size(), 2 * c.units.size());
    for (u32 i = 0; i < c.units.size(); ++i) EXPECT_EQ(plain.byteAt(2 * i) | plain.byteAt(2 * i + 1) << 8, c.units[i]);
    EXPECT_EQ(textOf(marked), "\xFF\xFE" + textOf(plain));
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
  const u16* units = c.getUtf16_xe();
  const faults::WatchRelease watch(units, 12);
  c.secureClear();
  ASSERT_TRUE(watch.released());
  EXPECT_EQ(vk_memcmp(watch.bytes(), std::string(12, '\0').data(), 12), 0);
  EXPECT_TRUE(c.isEmpty() && c.isSecure());
  const faults::FailAllocation none(1, true);
  EXPECT_EQ(c.getUtf16_xe(), nullptr);
}

}  // namespace
