// The charsets that are not Unicode, and what holds for all conversions.

#include <unicode/uchar.h>

#include "tests/services/CharsetSupport.h"

namespace {

// Text that a charset can write, and the charset's name for iconv.
constexpr struct {
  s32 page;
  const char *name, *text;
} kSamples[] = {
    {1252, "CP1252", "caf\u00E9 na\u00EFve \u20AC100 \u201Cquote\u201D\u2026 gr\u00F6\u00DFer\r\n"},
    {28591, "ISO-8859-1", "caf\u00E9 na\u00EFve \u00A3100 \u00ABquote\u00BB gr\u00F6\u00DFer\r\n"},
    {28605, "ISO-8859-15", "\u20AC \u0152uvre \u017Di\u017Eek"},
    {28606, "ISO-8859-16", "\u0218tefan \u021Aara \u20AC \u201Ebine\u201D"},
    {1250, "CP1250", "p\u0159\u00EDli\u0161 \u017Elu\u0165ou\u010Dk\u00FD k\u016F\u0148"},
    {1251, "CP1251", "\u0421\u043E\u043E\u0431\u0449\u0435\u043D\u0438\u0435 \u2116 5"},
    {20866, "KOI8-R", "\u0421\u043E\u043E\u0431\u0449\u0435\u043D\u0438\u0435 \u2500\u2502 5"},
    {21866, "KOI8-U", "\u0407\u0436\u0430\u043A \u0454"},
    {866, "CP866", "\u0421\u043E\u043E\u0431\u0449 \u2592"},
    {437, "CP437", "\u00E9 \u2592 \u00B5 \u03C0 \x1A\x1C\x7F"},
    {852, "CP852", "p\u0159\u00EDli\u0161 \u00AC"},
    {1253, "CP1253", "\u039C\u03AE\u03BD\u03C5\u03BC\u03B1"},
    {28597, "ISO-8859-7", "\u039C\u03AE\u03BD\u03C5\u03BC\u03B1 \u20AC"},
    {1255, "ISO-8859-8", "\u05E9\u05DC\u05D5\u05DD"},
    {28596, "ISO-8859-6", "\u0633\u0644\u0627\u0645"},
    {874, "CP874", "\u0E20\u0E32\u0E29\u0E32\u0E44\u0E17\u0E22 \u20AC"},
    {10000, "MACINTOSH", "caf\u00E9 \u2020 \u221E \uFB01"},
    {37, "CP037", "Hello, World 123 \u00E9\r\n"},
    {932, "CP932", "\u30C6\u30AD\u30B9\u30C8 ABC \u6587\u5B57 \uFF71\uFF72 \u2460 \u8868\\~ \uFF5E\x1A\x1C\x7F"},
    {936, "CP936", "\u7F13\u51B2\u533A abc \u5B57\u7B26\u7F16\u7801 \u20AC"},
    {949, "CP949", "\uD55C\uAD6D\uC5B4 abc \uBDC1"},
    {950, "CP950", "\u7DE9\u885D\u5340 abc \u6587\u5B57"},
    {951, "BIG5-HKSCS", "\u7DE9\u885D\u5340 abc \u55F0 \U000201A9"},
    {51932, "EUC-JP", "\u30C6\u30AD\u30B9\u30C8 ABC \uFF71 \u4E02"},
    {51949, "EUC-KR", "\uD55C\uAD6D\uC5B4 abc"},
    {51936, "GB2312", "\u7F13\u51B2\u533A abc"},
    {51950, "EUC-TW", "\u7DE9\u885D\u5340 abc"},
    {54936, "GB18030", "\u7F13\u51B2 \u00E9 \U0001F600 abc \u0E01"},
    {50220, "ISO-2022-JP", "\u30C6\u30AD\u30B9\u30C8 ABC \u6587\u5B57"},
    {50225, "ISO-2022-KR", "\uD55C\uAD6D\uC5B4 abc\\ \uC5B4"},
    {65000, "UTF-7", "caf\u00E9 + \U0001F600 ~"},
    {50930, "CP930", "\u30C6\u30AD \u6587\u5B57 A1"},
};

TEST(Legacy, AgreesWithIconv) {
  for (const auto& c : kSamples)
    for (const u32 times : {1u, 7u, 400u}) {  // also across blocks of the general road
      const std::string text = repeated(c.text, times * std::strlen(c.text));
      const std::string there = byIconv("UTF-8", c.name, text).text;
      ASSERT_FALSE(there.empty()) << c.name;
      ASSERT_EQ(convert(c.page, 65001, there), (Converted{text, true})) << c.name;
      const Converted ours = convert(65001, c.page, text);
      EXPECT_TRUE(ours.good) << c.name;
      ASSERT_EQ(byIconv(c.name, "UTF-8", ours.text).text, text) << c.name;  // escapes may stand elsewhere
      for (const s32 form : {1200, 1201, 12000, 12001}) {
        const std::string wide = convert(65001, form, text).text;
        ASSERT_EQ(convert(c.page, form, there), (Converted{wide, true})) << c.name << " to " << form;
        ASSERT_EQ(convert(form, c.page, wide), ours) << c.name << " from " << form;
      }
    }
  EXPECT_EQ(convert(1251, 20866, "\xCF\xF0\xE8"), convert(65001, 20866, "\u041F\u0440\u0438"));
  EXPECT_EQ(convert(932, 51932, "\x95\x5C"), convert(65001, 51932, "\u8868"));
}

// Whatever bytes a charset reads as a character it writes as that character, and it writes no other characters.
TEST(Legacy, SingleBytesGoThereAndBack) {
  for (const auto& c : kSamples) {
    std::string all, read;
    if (c.page == 932) break;  // the single-byte charsets stand first
    for (int i = 0; i < 256; ++i) {
      const std::string byte(1, static_cast<char>(i));
      const Converted unit = convert(c.page, 1200, byte);
      if (!unit.good || convert(1200, c.page, unit.text).text != byte) continue;
      read += unit.text;
      all += byte;
    }
    ASSERT_GT(all.size(), 150u) << c.name;
    EXPECT_EQ(convert(c.page, 1200, all), (Converted{read, true})) << c.name;
    EXPECT_EQ(convert(1200, c.page, read), (Converted{all, true})) << c.name;
    EXPECT_EQ(convert(65001, c.page, convert(1200, 65001, read).text), (Converted{all, true})) << c.name;
    std::string others;
    for (u32 unit = 1; unit < 0xD800; ++unit) {
      const std::string wide = {static_cast<char>(unit), static_cast<char>(unit >> 8)};
      if (read.find(wide) == std::string::npos) others += wide;
    }
    const Converted got = convert(1200, c.page, others);
    EXPECT_FALSE(got.good);
    EXPECT_EQ(got.text.find_first_not_of(convert(65001, c.page, "?").text), std::string::npos) << c.name;
  }
}

constexpr std::tuple<s32, s32, std::string_view, std::string_view, const char*> kLossy[] = {
    {65001, 1252, "a\u0416b", "a?b", "no such letter"},
    {65001, 1252, "a\U0001F600b", "a?b", "one character, one substitute"},
    {65001, 1252, "a\u200Bb\uFE0F", "a?b?", "an ignorable character is not dropped"},
    {65001, 28591, "\uFF21\u201C", "??", "a look-alike is no substitute"},
    {65001, 20127, "\u00E9", "?", "no ASCII"},
    {65001, 1252, "a\xFFz", "a?z", "bad input"},
    {65001, 37, "\u0416", "\x6F", "EBCDIC has its own question mark"},
    {65001, 932, "\u00E9\u6587\U0001F600", "?\x95\xB6?", "no such letters"},
    {65001, 936, "a\u200B", "a?", "an ignorable character is not dropped"},
    {65001, 50220, "\u6587\U0001F600\u6587", "\x1B$BJ8\x1B(B?\x1B$BJ8\x1B(B", "the state is kept"},
    {1200, 1252, std::string_view("\x3D\xD8\0\xDE\x3D\xD8", 6), "??", "a pair, and half a pair"},
    {1200, 932, std::string_view("\x3D\xD8\0\xDE\x3D\xD8", 6), "??", "a pair, and half a pair"},
    {20127, 65001, "a\x80z", "a\uFFFDz", "no ASCII"},
    {28597, 65001, "\xAE\xC1", "\uFFFD\u0391", "a byte that stands for nothing"},
    {28597, 1252, "\xAE", "?", "a byte that stands for nothing"},
    {932, 65001, "\x95", "\uFFFD", "cut off"},
    {932, 65001, "a\x95\x20z", "a\uFFFD z", "the second byte is none and stays"},
    {932, 65001, "\xFF\x41", "\uFFFD\x41", "begins nothing"},
    {932, 65001, "\x82\xA0\xFC\xFC\x82\xA0", "\u3042\uFFFD\u3042", "a pair without a character"},
    {936, 65001, "\xC4", "\uFFFD", "cut off"},
    {51932, 65001, "\x8F\xB0\xA1\x8F\xB0", "\u4E02\uFFFD", "cut off"},
    {54936, 65001, "\x81\x30\x81", "\uFFFD", "cut off"},
    {54936, 1252, "\x94\x39\xFC\x36z", "?z", "a pair that may come in two blocks"},
    {50220, 65001, "\x1B$BJ8\x1B(B\x1B", "\u6587\uFFFD", "an escape that is cut off"},
    {50220, 65001, "\x1B$BJ8J", "\u6587\uFFFD", "a character that is cut off"},
};

TEST(Legacy, SubstitutesAndCarriesOn) {
  for (const auto& [from, to, text, want, why] : kLossy)
    for (const u32 before : {0u, 31u, 2047u, 5000u}) {
      const std::string head(before, 'x');
      const Converted expected = {convert(65001, to, head).text.append(want), false};
      EXPECT_EQ(convert(from, to, convert(65001, from, head).text.append(text)), expected)
          << from << " to " << to << ": " << why;
    }
}

// Cut anywhere, a text gives the characters that are whole, and at most one replacement for what is not.
TEST(Legacy, ATextThatIsCutKeepsItsWholeCharacters) {
  for (const auto& c : kSamples) {
    std::string whole;
    while (whole.size() < 200) whole.append(c.text).append("a run of ASCII");  // longer than what is read at once
    whole.append("and one that is worth a loop of its own").append(c.text);
    const std::string there = convert(65001, c.page, whole).text;
    for (u32 n = 0; n < there.size(); ++n) {
      Converted got = convert(c.page, 65001, std::string_view(there).substr(0, n));
      if (!got.good) {
        ASSERT_TRUE(got.text.ends_with("\uFFFD") || c.page == 54936) << c.name << " " << n;
        got.text.resize(got.text.find("\uFFFD"));
      }
      ASSERT_EQ(whole.compare(0, got.text.size(), got.text), 0) << c.name << " " << n;
    }
  }
}

// Tables are made when they are first asked for: in a process of its own for each test, by all threads at once.
TEST(Convert, ThreadsMayAskFirstTogether) {
  together(4, [] {
    for (u32 i = 0; i < 0x10000; i += 64) EXPECT_EQ(Utf16Case::toUpper(static_cast<u16>(i)), u_toupper(i)) << i;
    for (const auto& c : kSamples) {
      const std::string there = convert(65001, c.page, c.text).text;
      EXPECT_EQ(convert(c.page, 65001, there), (Converted{c.text, true})) << c.name;
    }
  });
}

TEST(Convert, AppendsAndLeavesWhatWasThere) {
  for (const s32 from : {1200, 1252, 932, 65001}) {
    DataBuffer out = bufferOf("head ");
    const std::string text = convert(65001, from, "text").text;
    LogText log;
    EXPECT_TRUE(_vkEncodingConvert().EncConvert(from, 65001, bytesOf(text), countOf(text), out, log));
    EXPECT_TRUE(_vkEncodingConvert().EncConvert(from, 65001, bytesOf(text), 0, out, log));
    EXPECT_TRUE(_vkEncodingConvert().EncConvert(from, 65001, nullptr, 0, out, log));
    EXPECT_EQ(log.numErrors(), 0u);
    EXPECT_FALSE(_vkEncodingConvert().EncConvert(from, 40, bytesOf(text), countOf(text), out, log));
    EXPECT_EQ(log.numErrors(), 1u);
    EXPECT_EQ(textOf(out), "head text");
  }
}

TEST(Convert, GrowsTheTargetAsAnAppendOfTheResultWould) {
  for (const s32 from : {1200, 12001, 1252, 65001}) {
    const std::string text = repeated("caf\u00E9 ", 120'000);
    const std::string source = convert(65001, from, text).text;
    DataBuffer out, plain;
    EXPECT_TRUE(_vkEncodingConvert().EncConvert(from, 65001, bytesOf(source), countOf(source), out, nowhere));
    plain.append(text.data(), countOf(text));
    EXPECT_EQ(out.getBufSize(), plain.getBufSize()) << from;
  }
}

TEST(Convert, ServesATextInTheTargetItself) {
  for (const auto& [from, to] : {std::pair{65001, 1200}, {1252, 65001}, {65001, 932}, {1251, 1252}})
    for (const u32 spare : {0u, 100'000u}) {
      const std::string text = convert(65001, from, repeated("text, ", 6000)).text;
      DataBuffer out = bufferOf(text);
      out.ensureBuffer(out.getSize() + spare);
      EXPECT_TRUE(_vkEncodingConvert().EncConvert(from, to, out.getData2() + 6, out.getSize() - 6, out, nowhere));
      EXPECT_EQ(textOf(out), text + convert(from, to, text.substr(6)).text);
    }
}

}  // namespace
