// Quoted-printable, encoded words and uuencoded text.
#include <gtest/gtest.h>

#include "tests/services/CodecSupport.h"

namespace {

std::string quotedText(std::string_view bytes, u32 lineLength = 76) {
  ContentEncoder encoder;
  encoder.setLineLength(lineLength);
  return encoded(bytes,
                 [&](const u8* data, u32 n, StringBuffer& out) { return encoder.encodeQuotedPrintable(data, n, out); });
}

// ---- Quoted-printable, RFC 2045 section 6.7 ----

constexpr struct {
  const char* what;
  std::string_view bytes, text;
} kQuoted[] = {
    {"nothing", "", ""},
    {"an escape", "a=b\xE9\x7F", "a=3Db=E9=7F"},
    {"a line break of text stays, blanks before it do not", "a \r\nb\t\r\n", "a=20\r\nb=09\r\n"},
    {"a blank at the end", "a b ", "a b=20"},
    {"only the last blank of several", "a  ", "a =20"},
    {"lone CR and LF are data", "a\rb\nc\n\rd", "a=0Db=0Ac=0A=0Dd"},
    {"CR before CR LF", "\r\r\n", "=0D\r\n"},
};

TEST(QuotedPrintable, WritesWhatTheStandardSays) {
  for (const auto& c : kQuoted) EXPECT_EQ(quotedText(c.bytes), c.text) << c.what;
  const std::string x75(75, 'x'), x76(76, 'x'), x77(77, 'x');
  EXPECT_EQ(quotedText(x76), x76) << "the last column is free where the line ends by itself";
  EXPECT_EQ(quotedText(x76 + "\r\n"), x76 + "\r\n");
  EXPECT_EQ(quotedText(x77), x75 + "=\r\nxx");
  EXPECT_EQ(quotedText(x75 + " "), x75 + "=\r\n=20");
  EXPECT_EQ(quotedText(x75.substr(2) + "\xFF"), x75.substr(2) + "=FF");
  EXPECT_EQ(quotedText(x75.substr(1) + "\xFF"), x75.substr(1) + "=\r\n=FF");
}

TEST(QuotedPrintable, TakesUnusableLineLengthsAsTheDefault) {
  const std::string bytes = randomBytes(500);
  for (const s32 length : {0, 1, 3, -1, -5, 2147483647, -2147483647 - 1})
    EXPECT_EQ(quotedText(bytes, static_cast<u32>(length)), quotedText(bytes)) << length;
  EXPECT_EQ(quotedText("\xFF\xFF", 4), "=FF=\r\n=FF");
  EXPECT_EQ(quotedText(std::string(1000, 'x'), 0x7FFFFFFE).size(), 1000u);
}

TEST(QuotedPrintable, KeepsEveryLineLengthAndGivesTheBytesBack) {
  for (u32 length = 4; length <= 80; ++length)
    for (u32 seed = 0; seed < 12; ++seed) {
      const std::string bytes = sampleBytes(seed * 31 + length, seed + length), text = quotedText(bytes, length);
      for (std::size_t start = 0, end = 0; start <= text.size(); start = end + 2) {
        end = std::min(text.find("\r\n", start), text.size());
        ASSERT_LE(end - start, length) << "limit " << length;
        ASSERT_TRUE(end == start || (text[end - 1] != ' ' && text[end - 1] != '\t')) << "limit " << length;
      }
      ASSERT_EQ(text.find_first_not_of(" \t\r\n!\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`"
                                       "abcdefghijklmnopqrstuvwxyz{|}~"),
                text.npos);
      ASSERT_EQ(decoded(text, vk_decodeQuotedPrintable), good(bytes)) << "limit " << length << ", seed " << seed;
    }
}

constexpr struct {
  const char* what;
  std::string_view text, bytes;
} kMail[] = {
    {"soft breaks", "a=\r\nb=\nc", "abc"},
    {"a soft break with blanks behind it", "a= \t\r\nb", "ab"},
    {"blanks before a soft break are data", "a \t=\r\nb", "a \tb"},
    {"blanks added at a line's end", "a \t\r\nb \nc ", "a\r\nb\nc"},
    {"an escaped blank stays", "a=20\r\nb=20 \r\n", "a \r\nb \r\n"},
    {"lower case", "=c3=a9=Cf", "\xC3\xA9\xCF"},
    {"a bare LF", "a\nb\n", "a\nb\n"},
    {"a bare CR", "a\rb \r", "a\rb \r"},
    {"a stray =", "a=b=4=xy==41=", "a=b=4=xy=A="},
    {"a stray = before a soft break", "a==\r\nb", "a=b"},
    {"= at the end begins no escape", "a=", "a="},
    {"= and blanks at the end", "a= ", "a="},
    {"cut off", "a=4", "a=4"},
    {"only a soft break", "=\r\n", ""},
    {"only line ends", "\r\n\n\r\n", "\r\n\n\r\n"},
};

TEST(QuotedPrintable, ReadsWhatMailHolds) {
  for (const auto& c : kMail) {
    EXPECT_EQ(decoded(c.text, vk_decodeQuotedPrintable), good(std::string(c.bytes))) << c.what;
    const std::string line(100, 'x');  // the same behind a line that goes by blocks, and before one
    EXPECT_EQ(decoded(line + "\n" + std::string(c.text), vk_decodeQuotedPrintable),
              good(line + "\n" + std::string(c.bytes)))
        << c.what;
  }
}

// ---- Encoded words, RFC 2047 ----

std::string words(std::string_view bytes, bool base64, const char* charset = "utf-8") {
  return encoded(bytes, [&](const u8* data, u32 n, StringBuffer& out) {
    return base64 ? ContentEncoder::encodeWordB(data, n, charset, out)
                  : ContentEncoder::encodeWordQ(data, n, charset, out);
  });
}

TEST(EncodedWord, WritesBothForms) {
  EXPECT_EQ(words("", true) + words("", false), "");
  EXPECT_EQ(words("Gr\xC3\xBC\xC3\x9F"
                  "e an_alle?",
                  false),
            "=?utf-8?Q?Gr=C3=BC=C3=9Fe_an=5Falle=3F?=");
  EXPECT_EQ(words("Gr\xC3\xBC\xC3\x9F"
                  "e",
                  true),
            "=?utf-8?B?R3LDvMOfZQ==?=");
  EXPECT_EQ(words("a", false, "iso-8859-1"), "=?iso-8859-1?Q?a?=");
}

// Characters of each length at each offset: no word passes 75 characters or holds part of a character.
TEST(EncodedWord, SplitsBetweenCharacters) {
  for (const std::string character : {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"})
    for (u32 offset = 0; offset < 60; ++offset)
      for (const bool base64 : {true, false}) {
        std::string bytes(offset, 'a');
        for (u32 i = 0; i < 30; ++i) bytes += character;
        const std::string text = words(bytes, base64);
        std::string all;
        for (std::size_t start = 0, end = 0; start < text.size(); start = end + 3) {
          end = std::min(text.find("\r\n ", start), text.size());
          ASSERT_LE(end - start, 75u);
          const Decoded word = decoded(text.substr(start, end - start), vk_decodeWords);
          ASSERT_EQ(bufferOf(word.bytes).numPartialTrailingUtf8Bytes(), 0u) << word;
          all += word.bytes;
        }
        ASSERT_EQ(all, bytes) << "offset " << offset;
      }
}

TEST(EncodedWord, GivesAnyBytesBack) {
  for (u32 n = 0; n <= 200; ++n)
    for (const bool base64 : {true, false}) {
      const std::string bytes = sampleBytes(n, n);
      EXPECT_EQ(decoded(words(bytes, base64), vk_decodeWords), good(bytes)) << n << " bytes";
    }
}

const struct {
  const char* what;
  std::string text;
  Decoded want;
} kHeaders[] = {
    {"text beside a word", "(=?ISO-8859-1?Q?a?= b)", good("(a b)")},
    {"white space between words goes", "=?utf-8?Q?a?= \r\n\t=?UTF-8?b?Yg==?=", good("ab")},
    {"a blank inside a word stays", "=?utf-8?Q?a?= =?utf-8?Q?_b?=", good("a b")},
    {"text between words keeps its blanks", "=?utf-8?Q?a?= and =?utf-8?Q?b?=", good("a and b")},
    {"another charset", "=?iso-8859-1?q?Andr=E9?= <x>", good("Andr\xC3\xA9 <x>")},
    {"a language", "=?utf-8*de?Q?a?=", good("a")},
    {"a character split by another program", "=?utf-8?Q?=D0?= =?utf-8?B?nw==?=", good("\xD0\x9F")},
    {"the same in Shift_JIS",
     "=?shift_jis?B?g2U=?= =?Shift_JIS?Q?=83?= =?shift_jis?Q?=4C?=", good("\xE3\x83\x86\xE3\x82\xAD")},
    {"words of two charsets", "=?iso-8859-1?q?=E9?= =?utf-8?q?=C3=A9?=", good("\xC3\xA9\xC3\xA9")},
    {"blanks and = inside", "=?utf-8?q?a b=?=", good("a b=")},
    {"nothing inside",
     "=?utf-8?q?"
     "?=x",
     good("x")},
    {"missing padding", "=?utf-8?b?QQ?=", good("A")},
    {"no word", "a =? b ?= =?utf-8?z?a?= =?x?", good("a =? b ?= =?utf-8?z?a?= =?x?")},
    {"a word over two lines is none", "=?utf-8?q?a\r\nb?=", good("=?utf-8?q?a\r\nb?=")},
    {"an unknown charset stays", "=?x-none?q?a?= =?utf-8?q?b?=", {"=?x-none?q?a?= b", false, 0}},
    {"bad base64", "x =?utf-8?b?QUJD!?= y", {"x ABC y", false, 16}},
    {"a byte that its charset lacks", "a =?us-ascii?q?=FF?=", {"a \xEF\xBF\xBD", false, 2}},
};

TEST(EncodedWord, ReadsHeaders) {
  for (const auto& c : kHeaders) EXPECT_EQ(decoded(c.text, vk_decodeWords), c.want) << c.what;
}

TEST(EncodedWord, TakesLinearTimeForBeginningsWithoutEnd) {
  std::string text;
  for (u32 i = 0; i < 200'000; ++i) text += "=?a?q?x";
  EXPECT_TRUE(decoded(text, vk_decodeWords) == good(text));
}

// ---- Uuencoded text ----

std::string uuencoded(std::string_view bytes, const char* mode = "", const char* name = nullptr) {
  StringBuffer out;
  EXPECT_TRUE(Uu().uu_encode(bufferOf(bytes), mode, name, out));
  return textOf(out);
}

TEST(Uu, WritesTheHistoricalFormat) {
  EXPECT_EQ(uuencoded(""), "begin 644 data\n`\nend\n");
  EXPECT_EQ(uuencoded("Cat", "600", "cat.txt"), "begin 600 cat.txt\n#0V%T\n`\nend\n");
  std::string bytes;
  for (char c = 0; c < 46; ++c) bytes += c;
  EXPECT_EQ(uuencoded(bytes),
            "begin 644 data\n"
            "M``$\"`P0%!@<(\"0H+#`T.#Q`1$A,4%187&!D:&QP='A\\@(2(C)\"4F)R@I*BLL\n"
            "!+0``\n`\nend\n");
}

TEST(Uu, GivesTheBytesBack) {
  for (u32 n = 0; n <= 300; ++n) {
    const std::string bytes = sampleBytes(n, n);
    EXPECT_EQ(decoded(uuencoded(bytes), vk_decodeUu), good(bytes)) << n << " bytes";
  }
}

const struct {
  const char* what;
  std::string text;
  Decoded want;
} kUuTexts[] = {
    {"text around it", "Hello,\nbegin to read\nbegin 644 /etc/passwd\n#0V%T\n`\nend\n-- \nme", good("Cat")},
    {"a name that leads away is never used", "begin 644 ../../x\n#0V%T\n`\nend", good("Cat")},
    {"CR LF, and no name", "begin 644\r\n#0V%T\r\n`\r\nend\r\n", good("Cat")},
    {"blanks for zeros", "begin 644 a\n#    \n \nend\n", good(std::string(3, '\0'))},
    {"blanks lost on the way", "begin 644 a\n#\nM86)C\n\nend\n",
     good(std::string(3, '\0') + "abc" + std::string(42, '\0'))},
    {"no line of no bytes", "begin 644 a\n#0V%T\nend\n", good("Cat")},
    {"no begin", "#0V%T\n`\nend\n", {"", false, 0}},
    {"a begin that is cut off", "begi", {"", false, 0}},
    {"a begin without its mode", "begin \n`\nend\n", {"", false, 0}},
    {"no end", "begin 644 a\n#0V%T\n`\n", {"Cat", false, 19}},
    {"nothing behind begin", "begin 644 a", {"", false, 10}},
    {"a bad count", "begin 644 a\nabc\n`\nend\n", {"", false, 12}},
    {"a bad character", "begin 644 a\n&86)C86}C\n`\nend\n", {"abc", false, 19}},
    {"more than the count says", "begin 644 a\n#0V%T!!!!\n`\nend\n", {"Cat", false, 17}},
    {"blanks beyond the count", "begin 644 a\n#0V%T  `\n`\nend\n", good("Cat")},
    {"data behind the line of no bytes", "begin 644 a\n`\n#0V%T\nend\n", {"", false, 14}},
};

TEST(Uu, ReadsWhatMailHolds) {
  for (const auto& c : kUuTexts) EXPECT_EQ(decoded(c.text, vk_decodeUu), c.want) << c.what;
}

// Every count, with lines of every length: what is missing is zero, and what is too much is a fault unless it is blank.
TEST(Uu, HoldsEveryCountAgainstItsLine) {
  for (u32 count = 0x20; count <= 0x60; ++count)
    for (u32 length = 0; length <= 90; ++length)
      for (const char filling : {'!', ' '}) {
        const u32 promised = (count - 0x20) & 0x3F, chars = (promised + 2) / 3 * 4;
        std::string text = "begin 644 a\n" + std::string(1, static_cast<char>(count)) + std::string(length, filling);
        const Decoded got = decoded(text + "\nend\n", vk_decodeUu);
        ASSERT_EQ(got.ok, filling == ' ' || length <= chars) << "count " << count << ", " << length << " characters";
        ASSERT_EQ(got.bytes.size(), promised) << "count " << count << ", " << length << " characters";
      }
}

TEST(MailCodecs, AppendABeginningOrAllWithoutMemory) {
  const std::string bytes = sampleBytes(3000, 6);
  const DataBuffer data = bufferOf(bytes);
  const u8* const p = data.getData2();
  refuseEach<StringBuffer>([&](StringBuffer& out) { return ContentEncoder().encodeQuotedPrintable(p, 3000, out); });
  refuseEach<StringBuffer>([&](StringBuffer& out) { return ContentEncoder::encodeWordB(p, 3000, "utf-8", out); });
  refuseEach<StringBuffer>([&](StringBuffer& out) { return ContentEncoder::encodeWordQ(p, 3000, "utf-8", out); });
  refuseEach<StringBuffer>([&](StringBuffer& out) { return Uu().uu_encode(data, "", "", out); });
  refuseEach<DataBuffer>(decoderOf(quotedText(bytes), vk_decodeQuotedPrintable));
  refuseEach<DataBuffer>(decoderOf(words(bytes, true), vk_decodeWords));
  refuseEach<DataBuffer>(decoderOf(uuencoded(bytes), vk_decodeUu));
}

}  // namespace
