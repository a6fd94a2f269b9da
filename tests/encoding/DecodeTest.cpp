// Texts under every decoder: the bytes, where the fault is said to be, and what is left before it.

#include "tests/support/Test.h"
#include "varnik/encoding/internal/DecodeText.h"
#include "varnik/services/codecs/UrlCodec.h"

namespace {

struct Text {
  s32 id;
  std::string_view text, bytes;
  u32 badAt = kNoFault;
};

const struct {
  s32 id;
  std::vector<std::string_view> cases;  // the text, |, the bytes and, where there is a fault, | and its place
} kTexts[] = {
    // Padding, white space, the references to CR, spare bits.
    {1, {"QQ|A",        "QQ=|A",          "QQ= =\r\n|A",  " Q\tQ\v=\f=\n|A", "QQ===|A|4",
         "QUI==|AB",    "QUJD=|ABC",      "QUJD==|ABC",   "QUJD===|ABC|6",   "=|",
         "===||2",      " \r\n|",         "Q||0",         "QUJDQ===|ABC|4",  "QUJD\r\nQ\r\n|ABC|6",
         "QR==||1",     "QUJDQUJ=|ABC|6", "QQ==QQ==|A|4", "QQ==\nQQ==|A|5",  "QQ=A|A|3",
         "QUJD!|ABC|4", "QU!D||2",        "Q!&||1",       "Q!=||1"}},
    {1,
     {"QUJD&#xD;\nQUJD&#13;|ABCABC", "Q&#xD;U&#13;&#xD;JD|ABC", "QQ=&#xD;=&#xD;\n|A", "QUJD&|ABC|4", "QUJD&#xD|ABC|4",
      "QUJD&#xd;|ABC|4", "QQ==&#10;|A|4", "Pz8-Pg||3"}},
    {24, {"QUI|AB", "QUJD!|ABC|4"}},
    {20, {"Pz8-Pg|\x3F\x3F>>", "_-Aa|\xFF\xE0\x1A", "QR||1"}},
    {10, {"Pz8+Pg==|\x3F\x3F>>", "QQ=D|A|3"}},
    {30,
     {"MY|f", "MY=|f", "MY======\r\n|f", "MY=======|f|8", "MZXW6YTB======|fooba", "M||0", "MYA||2", "MZXW6Y||5",
      "MZ||1", "MZXW6YTBMZXW7|fooba|12", "my======||0", "MZXW6YT1||7", "MZXW6YTB&#xD;|fooba|8", "MY==MY|f|4"}},
    {3, {"4||0", "4142 4|AB|5", "4 1|A", "41zz42|A|2", "4z||1", "41=|A|2", "0x41||1", "41:42|A|2", "4&||1"}},
    {25, {" 0a\t0B\r\n|\n\v"}},
    {18, {" :0a:0B: |\n\v", "4:1:4z|A|5", "4:1:4|A|4", "41:42|AB"}},
    // The blank is the digit 36.
    {21,
     {"QED8WEX0|ietf!", "FGW|\xFF\xFF", "GGW||0", "BB8:::|AB|3", "U5|\xFF", "U\r\n\t5\n|\xFF", "V5||0", "::||0",
      "BB8A|AB|3", "BB8Aa|AB|4", "bb8||0", "  ||0", " 4|\xD8"}},
    // Values above those of a group, z inside one, one digit left, the frame.
    {17,
     {" 5l |A", "s8W-\"||0", "zuuuuu|\0\0\0\0|1"sv, "!!z||2", "@:E^v||4", "z!|\0\0\0\0|1"sv, "s8W.||0", "@0||0", "s||0",
      "<~@/|a|3", "<~@/~|a|4", "@/~>|a", "<~@/~>x|a|6", "<~~>|", " <~@\n:E^~>\r\n|abc"}},
    {7, {" 28 |A", "2NEp0o7||4", "2NEplo7||4", "2NEp\xC3o7||4", "2 \r\nNE\tpo7O||10"}},
    {19, {" 12x4|\x0C|3", "x|\0|0"sv, " 12 |\x0C", "-5|\0|0"sv}},
    {23,
     {"1, 2,255|\x01\x02\xFF", "12a3|\x0C\x03", "12:3/4|\x0C\x03\x04", "\t7\r\n ,,8 ;9|\x07\x08\x09",
      "007,0000000000000000012|\x07\x0C", "1,256,3|\x01|2", "1, \t4294967297|\x01|4", "1,18446744073709551617|\x01|2",
      "9999999999999999999999999999999||0", "-1|\x01"}},
    // What is no escape stays.
    {4, {"%|%", "a%4|a%4", "%4g%zz|%4g%zz", "%%41|%A", "%4%41|%4A", "a+b|a+b", "%c3%A9|\xC3\xA9", "%2541|%41"}},
    // Pairs join, lone surrogates are replaced, a zero byte ends the text, a broken escape stays.
    {22,
     {"|", "\\ud83d\\nabcd|\uFFFD\nabcd", "\\\"\\\\\\/\\b\\f\\n\\r\\t|\"\\/\b\f\n\r\t",
      "\\u0041\\u00e9\\u0100\\u0800\\u20AC|A\u00E9\u0100\u0800\u20AC", "\\ud83d\\ude00|\U0001F600",
      "\\udbff\\udfff\\ud800\\udc00|\U0010FFFF\U00010000", "\\ud83dx\\ude00|\uFFFDx\uFFFD",
      "\\ud83d\\ud83d\\ude00|\uFFFD\U0001F600", "\\ud83d\\u0041\\ud83d|\uFFFDA\uFFFD", "ab\\u0000cd|ab",
      "a\\qb\\x|a\\qb\\x|1", "ab\\|ab\\|2", "\\u12g4\\u|\\u12g4\\u|0", "\\ud83d\\ude0|\uFFFD\\ude0|6"}},
    // Soft breaks, blanks at the end of a line, stray =.
    {2,
     {"a=\r\nb=\nc|abc", "a= \t\r\nb|ab", "a \t=\r\nb|a \tb", "a \t\r\nb \nc |a\r\nb\nc",
      "a=20\r\nb=20 \r\n|a \r\nb \r\n", "=c3=a9=Cf|\xC3\xA9\xCF", "a\nb\n|a\nb\n", "a\rb \r|a\rb \r",
      "a=b=4=xy==41=|a=b=4=xy=A=", "a==\r\nb|a=b", "a=|a=", "a= |a=", "a \t|a", "=41\t|A", "a=4|a=4", "=\r\n|",
      "\r\n\n\r\n|\r\n\n\r\n"}},
    // Blanks between words go, split characters join, what is no word stays.
    {26,
     {"(=?ISO-8859-1?Q?a?= b)|(a b)", "=?utf-8?Q?a?= \r\n\t=?UTF-8?b?Yg==?=|ab", "=?utf-8?Q?a?= =?utf-8?Q?_b?=|a b",
      "=?utf-8?Q?a?= and =?utf-8?Q?b?=|a and b", "=?iso-8859-1?q?Andr=E9?= <x>|Andr\u00E9 <x>", "=?utf-8*de?Q?a?=|a",
      "=?utf-8?Q?=D0?= =?utf-8?B?nw==?=|\u041F",
      "=?shift_jis?B?g2U=?= =?Shift_JIS?Q?=83?= =?shift_jis?Q?=4C?=|\u30C6\u30AD",
      "=?iso-8859-1?q?=E9?= =?utf-8?q?=C3=A9?=|\u00E9\u00E9", "=?utf-8?q?a b=?=|a b=", "=?utf-8?q?\?=x|x",
      "=?utf-8?b?QQ?=|A", "a =? b ?= =?utf-8?z?a?= =?x?|a =? b ?= =?utf-8?z?a?= =?x?",
      "=?utf-8?q?a\r\nb?=|=?utf-8?q?a\r\nb?=", "=?utf-8?q?a\rb?= =?utf-8?q?c?=|=?utf-8?q?a\rb?= c",
      "=?x-none?q?a?= =?utf-8?q?b?=|=?x-none?q?a?= b|0", "x =?utf-8?b?QUJD!?= y|x ABC y|16", "=?utf-8?q?a=4gb?=|a=4gb",
      "a =?us-ascii?q?=FF?=|a \uFFFD|2"}},
    // Charsets that shift end their words where they began.
    {26,
     {"=?iso-2022-jp?B?GyRCRnwbKEI=?= =?iso-2022-jp?B?GyRCS1wbKEI=?=|\u65E5\u672C",
      "=?iso-2022-jp?B?GyRCRnwbKEo=?= =?iso-2022-jp?B?GyRCS1wbKEo=?=|\u65E5\u672C",
      "=?iso-2022-jp?B?GyRCRg==?= =?iso-2022-jp?B?fBsoQg==?=|\u65E5",
      "=?iso-2022-kr?B?GyQpQw5HUQ8=?= =?iso-2022-kr?B?GyQpQw4xWw8=?=|\uD55C\uAE00",
      "=?hz-gb-2312?B?fntIVX59?= =?hz-gb-2312?Q?~{1>~}?=|\u65E5\u672C"}},
    // A count against its line, what is lost on the way, no end.
    {37,
     {"Hello,\nbegin to read\nbegin 644 /etc/passwd\n#0V%T\n`\nend\n-- \nme|Cat",
      "begin 644\r\n#0V%T\r\n`\r\nend\r\n|Cat", "begin 644 a\n#    \n \nend\n|\0\0\0"sv,
      "begin 644 a\n#\n#86)C\n\nend\n|\0\0\0abc"sv, "begin 644 a\n#0V%T\nend\n|Cat", "#0V%T\n`\nend\n||0", "begi||0",
      "begin \n`\nend\n||0", "begin 644 a\n#0V%T\n`\n|Cat|18", "begin 644 a||10", "begin 644 a\nabc\n`\nend\n||12",
      "begin 644 a\n&86)C86}C\n`\nend\n|abc|19", "begin 644 a\n#0V%T!!!!\n`\nend\n|Cat|17",
      "begin 644 a\n#0V%T  `\n`\nend\n|Cat", "begin 644 a\n`\n#0V%T\nend\n||14"}},
    {0, {" A | A "}},
    {6, {" A | A "}},
    {65001, {"\xC3\xA9|\xC3\xA9"}},
    {28591, {"\xC3\xA9|\xE9"}},
};

constexpr struct {
  s32 id;
  std::string_view text, bytes;
} kHeads[] = {{1, "QUJD", "ABC"}, {20, "QUJD", "ABC"}, {30, "MZXW6YTB", "fooba"}, {3, "4142", "AB"},
              {21, "BB8", "AB"},  {2, "x\n", "x\n"},   {4, "x\n", "x\n"},         {22, "x\n", "x\n"}};

Text parsed(s32 id, std::string_view one) {
  const std::size_t first = one.find('|'), second = one.find('|', first + 1);
  const u32 badAt = second == one.npos ? kNoFault : static_cast<u32>(std::stoul(std::string(one.substr(second + 1))));
  return {id, one.substr(0, first), one.substr(first + 1, std::min(second, one.size()) - first - 1), badAt};
}

// The text ends at an unreadable page, NUL included. Numbers, JSON and escapes answer true for what they leave as it
// is.
void check(const Text& c) {
  GuardedBytes guarded(c.text.size() + 1);
  const char* const text = reinterpret_cast<const char*>(guarded.ending(std::string(c.text) + '\0'));
  DataBuffer out, filled = bufferOf("held");
  const DecodeResult result = vk_decodeText(c.id, text, countOf(c.text), out);
  EXPECT_EQ(result.badAt, c.badAt) << c.id << ": " << c.text;
  EXPECT_EQ(result.ok, c.badAt == kNoFault || c.id == 19 || c.id == 22) << c.id << ": " << c.text;
  EXPECT_EQ(textOf(out), c.bytes) << c.id << ": " << c.text;
  const bool forgives = c.id == 1 || c.id == 10 || c.id == 20 || c.id == 24;  // only the append decides
  EXPECT_EQ(filled.appendEncodedById(text, c.id), result.ok || forgives) << c.id << ": " << c.text;
  EXPECT_EQ(textOf(filled), std::string("held").append(c.bytes)) << c.id << ": " << c.text;
  EXPECT_EQ(vk_decodeText(c.id, text, countOf(c.text), filled).badAt, c.badAt) << c.id << ": " << c.text;
}

TEST(Decode, GivesTheBytesAndThePlaceOfTheFault) {
  for (const auto& row : kTexts)
    for (const std::string_view one : row.cases) {
      const Text c = parsed(row.id, one);
      check(c);
      for (const auto& head : kHeads)
        for (const u32 times : {1u, 64u}) {  // the same behind text that goes by blocks
          if (head.id != c.id) continue;
          std::string text, bytes;
          for (u32 i = 0; i < times; ++i) text += head.text, bytes += head.bytes;
          const u32 before = countOf(text);
          text += c.text, bytes += c.bytes;
          check({c.id, text, bytes, c.badAt == kNoFault ? kNoFault : c.badAt + before});
        }
    }
}

// The end of a long text is looked for while it is decoded where there is room: all is as if the length were known.
TEST(Decode, FindsTheEndOfALongText) {
  constexpr u32 kChunk = 16384, kLength = 3 * kChunk + 8;
  GuardedBytes guarded(kLength + 1);
  for (const s32 id : {3, 30, 1, 20})
    for (const u32 n : {kChunk - 1, kChunk, kChunk + 1, 2 * kChunk, kLength})
      for (const u32 room : {0U, 9000U, 20000U, kLength, 2 * kLength})
        for (const std::string_view spoilt : {"", " ", "!", "=", "\r\n"})
          for (const u32 at : {0U, kChunk - 1, kChunk, n - 3}) {
            std::string text(n, '\0');
            for (u32 i = 0; i < n; ++i) text[i] = "ABCDEF234567"[(i * i + i / 12) % 12];
            text.replace(std::min(at, n - 3), spoilt.size(), spoilt);
            const u8* const bytes = guarded.ending(text + '\0');
            DataBuffer known, out;
            ASSERT_TRUE((room == 0 || (known.ensureBuffer(room) && out.ensureBuffer(room))));
            const bool ok = vk_decodeText(id, text.data(), n, known).ok;
            ASSERT_EQ(out.appendEncodedById(reinterpret_cast<const char*>(bytes), id), ok) << id << " " << n;
            ASSERT_EQ(textOf(out), textOf(known)) << id << " " << n << " " << room << " " << spoilt << " " << at;
            ASSERT_EQ(out.getBufSize(), known.getBufSize()) << id << " " << n << " " << room;
          }
}

TEST(Decode, KnowsNamesCharsetsAndNothing) {
  constexpr struct {
    const char *name, *text;
    std::string_view bytes;
    bool ok = true;
  } kNamed[] = {
      {" BASE64 ", " QUI\r\n", "AB"},
      {"base64_crEntity", "QUI=&#xD;\n", "AB"},
      {"ISO-8859-1", "\u00E9", "\xE9"},
      {" Latin1 ", "\u00E9", "\xE9"},
      {"such-a-name", "as is", "as is"},
      {"such-a-name", "", ""},
      {"hex", nullptr, ""},
      {nullptr, nullptr, ""},
      {nullptr, "41", "", false},
      {nullptr, "", "", false},
  };
  for (const auto& c : kNamed) {
    DataBuffer out = bufferOf("held");
    EXPECT_EQ(out.appendEncoded(c.text, c.name), c.ok) << c.bytes;
    EXPECT_EQ(textOf(out), std::string("held").append(c.bytes));
  }
  DataBuffer out;
  EXPECT_TRUE(out.appendEncodedById(nullptr, 1) && out.appendEncodedById("", -7) && out.appendDecList(nullptr) &&
              out.appendDecList("") && UrlCodec::urlDecode("", out) && out.empty());
  for (const s32 id : {5, 8, 9, 11, 12, 13, 14, 15, 16, 27, 28, 29, 31, 32, 33, 34, 35, 36, 38, -1, 0x7FFFFFFF})
    EXPECT_TRUE(!out.appendEncodedById("A", id) && out.empty()) << id;  // no code page has that number
}

TEST(Decode, ReadsFromTheBufferItWritesTo) {
  DataBuffer bad = bufferOf("4z\0"sv);
  EXPECT_FALSE(bad.appendEncodedById(reinterpret_cast<const char*>(bad.getData2()), 3));
  for (const auto& [text, id] : {std::pair("QUJD", 1), std::pair("414243", 3), std::pair("65,66,67", 23),
                                 std::pair("ABC", 0), std::pair("\\u0041BC", 22), std::pair("ABC", 28591)}) {
    const std::string given = std::string(text).append(1, '\0');
    DataBuffer out = bufferOf(given);
    out.minimizeMemoryUsage();
    ASSERT_TRUE(out.appendEncodedById(reinterpret_cast<const char*>(out.getData2()), id)) << id;
    EXPECT_EQ(textOf(out), given + "ABC") << id;
    const faults::FailAllocation all(1, true);
    EXPECT_FALSE(out.appendEncodedById(reinterpret_cast<const char*>(out.getData2()), id)) << id;
  }
}

// Every count of a uuencoded line, with lines of every length: what is missing is zero, more is a fault unless blank.
TEST(Decode, HoldsEveryUuCountAgainstItsLine) {
  for (u32 count = 0x20; count <= 0x60; ++count)
    for (u32 length = 0; length <= 90; ++length)
      for (const char filling : {'!', ' '}) {
        const u32 promised = (count - 0x20) & 0x3F, chars = (promised + 2) / 3 * 4;
        const std::string line = static_cast<char>(count) + std::string(length, filling);
        DataBuffer out;
        const bool ok = out.appendEncodedById(("begin 644 a\n" + line + "\nend\n").c_str(), 37);
        ASSERT_EQ(ok, filling == ' ' || length <= chars) << "count " << count << ", " << length << " characters";
        ASSERT_EQ(out.size(), promised) << "count " << count << ", " << length << " characters";
      }
}

// Each short group of Ascii85 is refused or is what its bytes are written as.
TEST(Decode, AcceptsOnlyTheEncodersShortGroups) {
  for (u32 pair = 0; pair < 0x10000; ++pair)
    for (const char* const more : {"", "!", "]u"}) {
      const std::string text = std::string{static_cast<char>(pair >> 8), static_cast<char>(pair)} + more;
      if (text.find_first_of("~z \t\r\n\v\f\0"sv) != text.npos) continue;
      DataBuffer out;
      StringBuffer again;
      if (!out.appendEncodedById(text.c_str(), 17)) continue;
      out.encodeDB("ascii85", again);
      ASSERT_EQ(textOf(again), text);
    }
}

TEST(Decode, JoinsEveryJsonPairAndReplacesEveryLoneUnit) {
  for (u16 unit = 0xD800; unit < 0xE000; ++unit)
    for (const u16 next :
         {u16{0xD800}, u16{0xDBFF}, u16{0xDC00}, static_cast<u16>(0xDC00 + unit % 1024), u16{0xE000}}) {
      char text[16];
      std::snprintf(text, sizeof text, "\\u%04X\\u%04x", unit, next);
      const u16 units[] = {unit, next};
      XString want;  // U+FFFD for lone surrogates
      want.setFromUtf16N_xe(reinterpret_cast<const u8*>(units), 2);
      DataBuffer out;
      out.appendEncodedById(text, 22);
      ASSERT_EQ(textOf(out), textOf(want.getUtf8Sb_rw())) << text;
    }
}

TEST(Decode, TakesLinearTimeForWordsWithoutEnd) {
  const std::string text = repeated("=?a?q?x", 1'400'000);
  DataBuffer out;
  EXPECT_TRUE(out.appendEncodedById(text.c_str(), 26) && textOf(out) == text);
}

}  // namespace
