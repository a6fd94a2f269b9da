// The names of charsets, and the numbers.

#include <climits>

#include "tests/services/CharsetSupport.h"

namespace {

s32 numberOf(const char* name) {
  StringBuffer label(name);
  return CharsetNames::codePageForName(label, nullptr);
}
std::string canonical(const char* name) {
  StringBuffer label(name);
  return CharsetNames::canonicalizeCharset(label) ? textOf(label) : "none, " + textOf(label);
}

const std::tuple<s32, const char*, std::vector<const char*>> kLabels[] = {
    {65001, "utf-8", {"utf-8", "UTF_8", " utf8\r\n", "unicode-1-1-utf-8"}},
    {1200, "utf-16", {"UTF-16", "ucs-2"}},
    {1200, "utf-16le", {"utf-16le"}},
    {1201, "utf-16be", {"UTF16BE", "unicodeFFFE"}},
    {12000, "utf-32", {"utf-32"}},
    {12001, "utf-32be", {"UTF-32BE"}},
    {28591, "iso-8859-1", {"Latin1", "ISO_8859-1:1987", "csISOLatin1", "iso88591"}},
    {20127, "us-ascii", {"us-ascii", "ANSI_X3.4-1968"}},
    {1252, "windows-1252", {"cp1252", "x-cp1252"}},
    {1251, "windows-1251", {"Windows-1251"}},
    {28605, "iso-8859-15", {"cp28605", "iso8859-15"}},
    {28606, "iso-8859-16", {"iso-8859-16"}},
    {38598, "iso-8859-8-i", {"iso-8859-8-i"}},
    {932, "shift_jis", {"shift-jis", "sjis", "windows-31j"}},
    {936, "gbk", {"GB2312"}},
    {54936, "gb18030", {"GB18030"}},
    {949, "ks_c_5601-1987", {"korean"}},
    {51949, "euc-kr", {"EUC-KR"}},
    {950, "big5", {"Big5"}},
    {51932, "euc-jp", {"x-euc-jp"}},
    {50220, "iso-2022-jp", {"iso-2022-jp"}},
    {20866, "koi8-r", {"KOI8_R"}},
    {866, "ibm866", {"866"}},
    {858, "ibm00858", {"CP00858"}},
    {37, "ibm037", {"ibm37", "cp037"}},
    {10000, "macintosh", {"mac"}},
    {65000, "utf-7", {"utf-7"}},
};

TEST(CharsetNames, KnowsTheLabelsOfTheStandardsAndOfPeople) {
  for (const auto& [number, name, labels] : kLabels)
    for (const char* const label : labels) {
      Charset charset;
      EXPECT_EQ(canonical(label), name) << label;
      EXPECT_EQ(numberOf(label), number) << label;
      EXPECT_TRUE(charset.setByName(label) && charset.getCodePage() == number) << label;
    }
  EXPECT_EQ(canonical("Utf-8"), _vkLit_utf8());
}

TEST(CharsetNames, LeavesUnknownNamesAlone) {
  for (const char* name : {"", " ", "-", "utf-9", "klingon", "cp", "cp0", "cp1", "cp36", "cp-1", "windows-99999",
                           "cp4294968548", "cp12521252125212521252", "iso-8859-12", "iso-8859-1x", "utf-8\xC3\xA9"}) {
    EXPECT_EQ(canonical(name), std::string("none, ") + name);
    EXPECT_EQ(numberOf(name), 0) << name;
    Charset charset;
    charset.setByName("utf-8");
    EXPECT_FALSE(charset.setByName(name));
    EXPECT_EQ(charset.getCodePage(), 0);
  }
  EXPECT_FALSE(Charset().setByName(nullptr));
  StringBuffer cut;
  cut.appendN("utf-8\0", 6);
  EXPECT_FALSE(CharsetNames::canonicalizeCharset(cut)) << "a zero byte belongs to no name";
  LogText log;
  CharsetNames::codePageForName(cut, &log);
  EXPECT_EQ(log.numErrors(), 1u);
}

TEST(CharsetNames, EveryNameThatIsListedCanBeConverted) {
  const auto check = [](const char* label) {
    const s32 number = numberOf(label);
    ASSERT_GT(number, 36) << label;
    EXPECT_EQ(numberOf(canonical(label).c_str()), number) << label;
    const Converted there = convert(65001, number, "A 1");
    EXPECT_TRUE(there.good) << label;
    EXPECT_EQ(convert(number, 65001, there.text), (Converted{"A 1", true})) << label;
  };
  u32 names = 0, labels = 0;
  for (; const char* const name = CharsetNames::nameAt(names); ++names) {
    check(name);
    EXPECT_EQ(canonical(name), name);
  }
  for (; const char* const label = CharsetNames::labelAt(labels); ++labels) check(label);
  EXPECT_TRUE(names == CharsetNames::count() && labels == CharsetNames::countLabels());
}

// The Windows code pages that ICU has a table for.
constexpr s32 kWindows[] = {
    37,    437,   500,   708,   720,   737,   775,   850,   852,   855,   857,   858,   860,   861,   862,
    863,   864,   865,   866,   869,   870,   874,   875,   932,   936,   949,   950,   1026,  1047,  1140,
    1141,  1142,  1143,  1144,  1145,  1146,  1147,  1148,  1149,  1200,  1201,  1250,  1251,  1252,  1253,
    1254,  1255,  1256,  1257,  1258,  10000, 10006, 10007, 10017, 10029, 10081, 12000, 12001, 20127, 20273,
    20277, 20278, 20280, 20284, 20285, 20290, 20297, 20420, 20424, 20838, 20866, 20871, 20932, 20936, 20949,
    21025, 21866, 28591, 28592, 28593, 28594, 28595, 28596, 28597, 28598, 28599, 28603, 28605, 38598, 50220,
    50221, 50222, 50225, 50227, 50229, 50930, 50931, 50933, 50935, 50937, 50939, 51932, 51936, 51949, 51950,
    52936, 54936, 57002, 57003, 57004, 57005, 57006, 57007, 57008, 57009, 57010, 57011, 65000, 65001};

TEST(CodePages, KnowsThoseOfWindowsAndNoOthers) {
  for (const s32 page : kWindows) {
    const std::string text = page == 20420 ? "x=1" : "x=1\\^~\x1A\x1C\x7F";  // EBCDIC Arabic has fewer
    const Converted there = convert(65001, page, text);
    EXPECT_TRUE(there.good && !there.text.empty()) << page;
    EXPECT_EQ(convert(page, 65001, there.text), (Converted{text, true})) << page;
  }
  std::vector<s32> unknown = {-1, -1200, -12000, INT_MIN, INT_MAX, 42, 1199, 1252000, 65002, 99999};
  for (s32 i = 0; i <= 36; ++i) unknown.push_back(i);
  for (const s32 page : unknown) {
    EXPECT_EQ(convert(65001, page, "x"), (Converted{"", false})) << page;
    EXPECT_EQ(convert(page, 65001, "x"), (Converted{"", false})) << page;
    EXPECT_EQ(convert(page, 65001, ""), (Converted{"", false})) << page;
  }
}

}  // namespace
