// The Unicode forms among each other.
#include <gtest/gtest.h>

#include "tests/services/CharsetSupport.h"

namespace {

constexpr s32 kForms[] = {65001, 1200, 1201, 12000, 12001};
constexpr const char* kNames[] = {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"};

// Every character that Unicode can have, a step at a time, in UTF-32LE.
std::string characters(u32 first, u32 end, u32 step) {
  std::string text;
  for (u32 code = first; code < end; code += step) {
    if (code >= 0xD800 && code < 0xE000) continue;
    for (u32 shift = 0; shift < 32; shift += 8) text.push_back(static_cast<char>(code >> shift));
  }
  return text;
}

TEST(Unicode, EveryCharacterGoesThroughEveryForm) {
  // In order, and 257 apart, so that lengths are mixed within a block; 0xFEFF comes after the head, where it stays.
  std::string scattered;
  for (u32 first = 0; first < 257; ++first) scattered += characters(first, 0x110000, 257);
  for (const std::string& text : {characters(0, 0x110000, 1), scattered}) {
    std::string forms[5];
    for (int i = 0; i < 5; ++i) {
      forms[i] = byIconv("UTF-32LE", kNames[i], text).text;
      ASSERT_FALSE(forms[i].empty());
    }
    for (int from = 0; from < 5; ++from)
      for (int to = 0; to < 5; ++to) {
        const Converted got = convert(kForms[from], kForms[to], forms[from]);
        EXPECT_TRUE(got.good && got.text == forms[to]) << kNames[from] << " to " << kNames[to];
      }
  }
}

// A bad text as hex; what it is as UTF-8, with "?" for each U+FFFD.
constexpr struct {
  s32 form;
  const char *hex, *text, *why;
} kBroken[] = {
    {65001, "80", "?", "a continuation alone"},
    {65001, "41 C2", "A?", "cut off"},
    {65001, "C2 41", "?A", "not continued"},
    {65001, "C0 80", "??", "overlong: C0 begins nothing"},
    {65001, "C1 BF", "??", "overlong"},
    {65001, "E0 80 80", "???", "overlong: 80 cannot follow E0"},
    {65001, "E0 9F BF", "???", "overlong"},
    {65001, "ED A0 80", "???", "a surrogate"},
    {65001, "ED BF BF 42", "???B", "a surrogate"},
    {65001, "F0 80 80 80", "????", "overlong"},
    {65001, "F0 8F BF BF", "????", "overlong"},
    {65001, "F4 90 80 80", "????", "above U+10FFFF"},
    {65001, "F5 80 80 80", "????", "begins nothing"},
    {65001, "FE FF", "??", "begin nothing"},
    {65001, "E2 82", "?", "two bytes of one character are one part"},
    {65001, "E2 82 41", "?A", "one part"},
    {65001, "E2 41 AC", "?A?", "the valid byte is kept"},
    {65001, "F0 9F 98", "?", "three bytes of one character are one part"},
    {65001, "F0 9F 98 41", "?A", "one part"},
    {65001, "F0 9F 41", "?A", "one part"},
    {65001, "F1 80 80 C2 80", "?\xC2\x80", "one part"},
    {65001, "61 F1 80 80 E1 80 C2 62 80 63 80 BF 64", "a???b?c??d", "the standard's own example"},
    {65001, "41 C2 C3 B1 42",
     "A?\xC3\xB1"
     "B",
     "nothing valid is swallowed"},
    {1200, "41", "?", "half a unit"},
    {1200, "41 00 42", "A?", "half a unit"},
    {1200, "00 D8", "?", "a high surrogate at the end"},
    {1200, "00 D8 41", "?", "a pair that is cut off"},
    {1200, "00 D8 41 00", "?A", "a high surrogate alone"},
    {1200, "00 DC 41 00", "?A", "a low surrogate alone"},
    {1200, "00 DC 00 D8 41 00", "??A", "the wrong way round"},
    {1200, "00 D8 00 D8 00 DC", "?\xF0\x90\x80\x80", "a pair behind a high surrogate"},
    {1201, "DC 00 00 41", "?A", "a low surrogate alone"},
    {1201, "D8 00 00", "?", "a pair that is cut off"},
    {1201, "FF FE 00 41",
     "\xEF\xBF\xBE"
     "A",
     ""},
    {12000, "00 D8 00 00 41 00 00 00", "?A", "a surrogate"},
    {12000, "00 00 11 00", "?", "above U+10FFFF"},
    {12000, "41 00 00 80", "?", "far above"},
    {12000, "41 00 00 00 41 00 00", "A?", "a unit that is cut off"},
    {12001, "00 00 00 41 00", "A?", "a unit that is cut off"},
    {12001, "FF FF FF FF", "?", "far above"},
};

std::string withReplacements(std::string_view text) {
  std::string out;
  for (const char c : text) out += c == '?' ? "\xEF\xBF\xBD" : std::string(1, c);
  return out;
}

// Each at every distance from the start of a long text and from its end: in the middle of blocks, across their borders,
// and in what is left behind the last.
TEST(Unicode, EachMaximalBadPartBecomesOneReplacement) {
  for (const auto& c : kBroken) {
    const std::string bad = fromHex(c.hex), text = withReplacements(c.text);
    const bool atEnd = convert(c.form, 65001, bad + convert(65001, c.form, "A").text).text != text + "A";
    for (u32 before = 0; before < 70; ++before) {
      const std::string head = std::string(before / 2, 'x') + (before % 2 ? "\xC3\xA9" : "");
      const std::string head8 = convert(65001, c.form, head).text;
      const std::string tail = atEnd ? "" : std::string(before % 3 * 40, 'y');
      const std::string tail8 = convert(65001, c.form, tail).text;
      const Converted want{head + text + tail, *c.why == 0};
      const Converted got = convert(c.form, 65001, head8 + bad + tail8);
      ASSERT_EQ(got.text, want.text) << c.hex << ": " << c.why << ", " << before;
      ASSERT_EQ(got.good, want.good) << c.hex;
      for (const s32 to : kForms)
        ASSERT_EQ(convert(c.form, to, head8 + bad + tail8).text, convert(65001, to, want.text).text) << c.hex << to;
    }
  }
}

TEST(Unicode, DropsOneByteOrderMarkAtTheHeadOnly) {
  constexpr const char* kMarks[] = {"EF BB BF", "FF FE", "FE FF", "FF FE 00 00", "00 00 FE FF"};
  for (int i = 0; i < 5; ++i) {
    const std::string mark = fromHex(kMarks[i]), a = convert(65001, kForms[i], "a").text;
    for (const s32 to : kForms) {
      const std::string plain = convert(65001, to, "a").text, kept = convert(65001, to, "a\xEF\xBB\xBF").text;
      EXPECT_EQ(convert(kForms[i], to, mark + a), (Converted{plain, true}));
      EXPECT_EQ(convert(kForms[i], to, a + mark), (Converted{kept, true})) << "inside";
      EXPECT_EQ(convert(kForms[i], to, mark + mark).text.size(), kept.size() - plain.size()) << "the second";
      EXPECT_EQ(convert(kForms[i], to, mark), (Converted{"", true}));
    }
  }
  EXPECT_EQ(convert(1200, 1252, fromHex("FFFE 4100")), (Converted{"A", true}));
}

Converted byName(const char* name, s32 to, std::string_view text) {
  DataBuffer out;
  LogNull log;
  StringBuffer label(name);
  const bool good = _vkEncodingConvert().ChConvert2(label, to, bytesOf(text), countOf(text), out, log);
  return {textOf(out), good};
}

TEST(Unicode, NamesWithoutAByteOrderGoByTheMark) {
  EXPECT_EQ(byName("UTF-16", 65001, fromHex("FEFF 0041")), (Converted{"A", true}));
  EXPECT_EQ(byName("utf-16", 65001, fromHex("FFFE 4100")), (Converted{"A", true}));
  EXPECT_EQ(byName("utf-16", 65001, fromHex("4100")), (Converted{"A", true}));
  EXPECT_EQ(byName("utf-32", 65001, fromHex("0000FEFF 00000041")), (Converted{"A", true}));
  EXPECT_EQ(byName("utf-32", 65001, fromHex("41000000")), (Converted{"A", true}));
  EXPECT_EQ(byName("utf-16be", 65001, fromHex("0041")), (Converted{"A", true}));
  EXPECT_EQ(byName(" Latin1 ", 65001, "\xE9"), (Converted{"\xC3\xA9", true}));
  EXPECT_EQ(byName("nothing", 65001, "A"), (Converted{"", false}));
}

}  // namespace
