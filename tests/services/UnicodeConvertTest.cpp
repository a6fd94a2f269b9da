// The Unicode forms among each other.

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

// A bad text as hex; what it is as UTF-8, with "?" for each U+FFFD: parts that are alone, cut off, overlong,
// surrogates, above U+10FFFF, and the standard's own example.
const std::pair<s32, std::vector<std::pair<const char*, const char*>>> kBroken[] = {
    {65001,
     {{"80", "?"},
      {"41 C2", "A?"},
      {"C2 41", "?A"},
      {"C0 80", "??"},
      {"ED BF BF 42", "???B"},
      {"F4 90 80 80", "????"},
      {"E2 82", "?"},
      {"F0 9F 98", "?"},
      {"F1 80 80 C2 80", "?\u0080"},
      {"61 F1 80 80 E1 80 C2 62 80 63 80 BF 64", "a???b?c??d"},
      {"41 C2 C3 B1 42", "A?\u00F1B"}}},
    {1200,
     {{"41", "?"},
      {"41 00 42", "A?"},
      {"00 D8", "?"},
      {"00 D8 41", "?"},
      {"00 D8 41 00", "?A"},
      {"00 DC 41 00", "?A"},
      {"00 DC 00 D8 41 00", "??A"},
      {"00 D8 00 D8 00 DC", "?\U00010000"}}},
    {1201, {{"DC 00 00 41", "?A"}, {"D8 00 00", "?"}}},
    {12000,
     {{"00 D8 00 00 41 00 00 00", "?A"}, {"00 00 11 00", "?"}, {"41 00 00 80", "?"}, {"41 00 00 00 41 00 00", "A?"}}},
    {12001, {{"00 00 00 41 00", "A?"}, {"FF FF FF FF", "?"}}},
};

std::string withReplacements(std::string_view text) {
  std::string out;
  for (const char c : text) out += c == '?' ? "\xEF\xBF\xBD" : std::string(1, c);
  return out;
}

// Each at every distance from the start of a long text and from its end: in the middle of blocks, across their borders,
// and in what is left behind the last.
TEST(Unicode, EachMaximalBadPartBecomesOneReplacement) {
  for (const auto& [form, cases] : kBroken)
    for (const auto& [hex, shown] : cases) {
      const std::string bad = fromHex(hex), text = withReplacements(shown);
      const bool atEnd = convert(form, 65001, bad + convert(65001, form, "A").text).text != text + "A";
      for (u32 before = 0; before < 70; ++before) {
        const std::string head = std::string(before / 2, 'x') + (before % 2 ? "\xC3\xA9" : "");
        const std::string tail = atEnd ? "" : std::string(before % 3 * 40, 'y'), want = head + text + tail;
        const std::string given = convert(65001, form, head).text + bad + convert(65001, form, tail).text;
        for (const s32 to : kForms)
          ASSERT_EQ(convert(form, to, given), (Converted{convert(65001, to, want).text, false})) << hex << ' ' << to;
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
  EXPECT_EQ(convert(1201, 65001, fromHex("FFFE 0041")), (Converted{"\uFFFEA", true})) << "no mark of this order";
  EXPECT_EQ(convert(1200, 1252, fromHex("FFFE 4100")), (Converted{"A", true}));
}

Converted byName(const char* name, s32 to, std::string_view text) {
  DataBuffer out;
  StringBuffer label(name);
  const bool good = _vkEncodingConvert().ChConvert2(label, to, bytesOf(text), countOf(text), out, nowhere);
  return {textOf(out), good};
}

TEST(Unicode, NamesWithoutAByteOrderGoByTheMark) {
  constexpr std::pair<const char*, const char*> kLabelled[] = {
      {"UTF-16", "FEFF 0041"}, {"utf-16", "FFFE 4100"}, {"utf-16", "4100"}, {"utf-32", "0000FEFF 00000041"},
      {"utf-32", "41000000"},  {"utf-16be", "0041"},    {" Latin1 ", "41"}};
  for (const auto& [name, hex] : kLabelled)
    EXPECT_EQ(byName(name, 65001, fromHex(hex)), (Converted{"A", true})) << name << hex;
  EXPECT_EQ(byName("nothing", 65001, "A"), (Converted{"", false}));
}

}  // namespace
