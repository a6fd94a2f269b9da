// hex, base32 and base64: what is accepted, what is left after a fault, and where the fault is said to be.
#include <gtest/gtest.h>

#include "tests/support/Allocations.h"
#include "tests/support/Bytes.h"
#include "tests/support/GuardedBytes.h"
#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/EncodingTable.h"

namespace {

struct Format {
  const char* name;
  void (*encode)(std::string_view bytes, StringBuffer& out);
  DecodeResult (*decode)(const char* text, u32 n, DataBuffer& out);
};

const Format kHex = {"hex",
                     [](std::string_view b, StringBuffer& out) {
                       static constexpr char kDigits[] = "0123456789abcdef";
                       for (const char c : b)
                         out.appendChar(kDigits[static_cast<u8>(c) >> 4]), out.appendChar(kDigits[c & 15]);
                     },
                     vk_decodeHex};
const Format kBase32 = {
    "base32", [](std::string_view b, StringBuffer& out) { ContentEncoder::encodeBase32(bytesOf(b), countOf(b), out); },
    vk_decodeBase32};
const Format kBase64 = {
    "base64", [](std::string_view b, StringBuffer& out) { ContentEncoder::encodeBase64(bytesOf(b), countOf(b), out); },
    vk_decodeBase64};
const Format kBase64Url = {
    "base64url",
    [](std::string_view b, StringBuffer& out) { ContentEncoder::encodeModBase64(bytesOf(b), countOf(b), out); },
    vk_decodeBase64Url};

std::string encoded(const Format& f, std::string_view bytes) {
  StringBuffer out;
  f.encode(bytes, out);
  return textOf(out);
}

// RFC 4648 section 10.
TEST(GroupCodecs, GiveTheVectorsOfTheStandard) {
  constexpr struct {
    std::string_view plain, hex, base32, base64;
  } kVectors[] = {
      {"", "", "", ""},
      {"f", "66", "MY======", "Zg=="},
      {"fo", "666f", "MZXQ====", "Zm8="},
      {"foo", "666f6f", "MZXW6===", "Zm9v"},
      {"foob", "666f6f62", "MZXW6YQ=", "Zm9vYg=="},
      {"fooba", "666f6f6261", "MZXW6YTB", "Zm9vYmE="},
      {"foobar", "666f6f626172", "MZXW6YTBOI======", "Zm9vYmFy"},
      {"\xFB\xEF\xFF", "fbefff", "7PX76===", "++//"},
  };
  for (const auto& v : kVectors) {
    EXPECT_EQ(encoded(kBase32, v.plain), v.base32);
    EXPECT_EQ(encoded(kBase64, v.plain), v.base64);
    const std::pair<const Format*, std::string_view> forms[] = {
        {&kHex, v.hex}, {&kBase32, v.base32}, {&kBase64, v.base64}, {&kBase64Url, v.base64}};
    for (const auto& [format, text] : forms) {
      DataBuffer out = bufferOf("x");
      EXPECT_TRUE(format->decode(text.data(), countOf(text), out).ok) << format->name << " " << text;
      EXPECT_EQ(textOf(out), std::string("x").append(v.plain)) << format->name << " " << text;
    }
  }
  EXPECT_EQ(encoded(kBase64Url, "\xFB\xEF\xFF"), "--__");
}

constexpr u32 kOk = kNoFault;

struct Ending {
  const Format& format;
  std::string_view text, left;
  u32 badAt;  // kOk: accepted
};
const Ending kEndings[] = {
    {kBase64, "QQ", "A", kOk},
    {kBase64, "QQ=", "A", kOk},
    {kBase64, "QQ==", "A", kOk},
    {kBase64, "QQ= =\r\n", "A", kOk},
    {kBase64, " Q\tQ\v=\f=\n", "A", kOk},
    {kBase64, "QQ===", "A", 4},
    {kBase64, "QUI", "AB", kOk},
    {kBase64, "QUI==", "AB", kOk},
    {kBase64, "QUJD=", "ABC", kOk},
    {kBase64, "QUJD==", "ABC", kOk},
    {kBase64, "QUJD===", "ABC", 6},
    {kBase64, "=", "", kOk},
    {kBase64, "===", "", 2},
    {kBase64, " \r\n", "", kOk},
    {kBase64, "Q", "", 0},
    {kBase64, "QUJDQ===", "ABC", 4},
    {kBase64, "QUJD\r\nQ\r\n", "ABC", 6},
    {kBase64, "QR==", "", 1},  // spare bits set
    {kBase64, "QUJDQUJ=", "ABC", 6},
    {kBase64, "QQ==QQ==", "A", 4},
    {kBase64, "QQ==\nQQ==", "A", 5},
    {kBase64, "QQ=A", "A", 3},
    {kBase64, "QUJD!", "ABC", 4},
    {kBase64, "QU!D", "", 2},
    {kBase64, "Q!&", "", 1},  // the first one is to blame
    {kBase64, "Q!", "", 1},
    {kBase64, "Q!=", "", 1},
    {kBase64, "QUJD&#xD;\nQUJD&#13;", "ABCABC", kOk},
    {kBase64, "Q&#xD;U&#13;&#xD;JD", "ABC", kOk},
    {kBase64, "QQ=&#xD;=&#xD;\n", "A", kOk},
    {kBase64, "QUJD&", "ABC", 4},
    {kBase64, "QUJD&#xD", "ABC", 4},
    {kBase64, "QUJD&#xd;", "ABC", 4},
    {kBase64, "QQ==&#10;", "A", 4},
    {kBase64, "Pz8-Pg", "", 3},
    {kBase64Url, "Pz8-Pg", "\x3F\x3F>>", kOk},
    {kBase64Url, "Pz8+Pg==", "\x3F\x3F>>", kOk},
    {kBase64Url, "_-Aa", "\xFF\xE0\x1A", kOk},
    {kBase64Url, "QR", "", 1},
    {kBase32, "MY", "f", kOk},
    {kBase32, "MY=", "f", kOk},
    {kBase32, "MY======\r\n", "f", kOk},
    {kBase32, "MY=======", "f", 8},
    {kBase32, "MZXW6YTB======", "fooba", kOk},
    {kBase32, "M", "", 0},
    {kBase32, "MYA", "", 2},
    {kBase32, "MZXW6Y", "", 5},
    {kBase32, "MZ", "", 1},  // spare bits set
    {kBase32, "MZXW6YTBMZXW7", "fooba", 12},
    {kBase32, "my======", "", 0},
    {kBase32, "MZXW6YT1", "", 7},
    {kBase32, "MZXW6YTB&#xD;", "fooba", 8},
    {kBase32, "MY==MY", "f", 4},
    {kHex, "4", "", 0},
    {kHex, "4142 4", "AB", 5},
    {kHex, " 0a\t0B\r\n", "\n\v", kOk},
    {kHex, "4 1", "A", kOk},
    {kHex, "41zz42", "A", 2},
    {kHex, "4z", "", 1},
    {kHex, "41=", "A", 2},
    {kHex, "0x41", "", 1},
    {kHex, "41:42", "A", 2},
    {kHex, "4&", "", 1},
};
TEST(GroupCodecs, AreStrictAboutEndings) {
  for (const Ending& e : kEndings) {
    DataBuffer out;
    GuardedBytes guarded(e.text.size());
    const char* const text = reinterpret_cast<const char*>(guarded.ending(e.text));
    const DecodeResult result = e.format.decode(text, countOf(e.text), out);
    EXPECT_EQ(result.ok, e.badAt == kOk) << e.format.name << " " << e.text;
    EXPECT_EQ(result.badAt, e.badAt) << e.format.name << " " << e.text;
    EXPECT_EQ(textOf(out), e.left) << e.format.name << " " << e.text;
  }
}

// Every last group of two and three characters: exactly those that encoding gives are accepted.
TEST(GroupCodecs, AcceptOneFormOfEveryLastGroup) {
  constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (u32 i = 0; i < 64 * 64 * 64; ++i) {
    const char text[] = {kLetters[i & 63], kLetters[i >> 6 & 63], kLetters[i >> 12]};
    for (const u32 n : {2U, 3U}) {
      DataBuffer out;
      const bool ok = vk_decodeBase64(text, n, out).ok;
      ASSERT_EQ(ok, (static_cast<u32>(kLetters.find(text[n - 1])) & (n == 2 ? 15U : 3U)) == 0) << std::string(text, n);
      if (!ok) continue;
      ASSERT_EQ(encoded(kBase64, textOf(out)).substr(0, n), std::string(text, n));
    }
  }
}

bool isBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// Each byte value that is no character of the format, put between any two characters of a text.
TEST(GroupCodecs, TellWhereAForeignCharacterStands) {
  for (const Format* f : {&kHex, &kBase32, &kBase64, &kBase64Url}) {
    const std::string text = encoded(*f, randomBytes(30)).substr(0, 16);
    DataBuffer whole;
    ASSERT_TRUE(f->decode(text.data(), 16, whole).ok) << f->name;
    const u32 group = f == &kHex ? 2 : f == &kBase32 ? 8 : 4;
    for (u32 value = 0; value < 256; ++value) {
      const char c = static_cast<char>(value);
      DataBuffer alone;
      f->decode(std::string(8, c).data(), 8, alone);
      if (c == '=' || !alone.empty()) continue;
      for (u32 at = 0; at < 16; ++at) {
        std::string given = text;
        given.insert(at, 1, c);
        DataBuffer out;
        const u32 badAt = f->decode(given.data(), 17, out).badAt;
        ASSERT_EQ(badAt, isBlank(c) ? kOk : at) << f->name << ", " << value << " at " << at;
        const u32 left = isBlank(c) ? whole.size() : at / group * group * whole.size() / 16;
        ASSERT_EQ(textOf(out), textOf(whole).substr(0, left)) << f->name << ", " << value << " at " << at;
      }
    }
  }
}

// Long texts, blanks and line ends anywhere, the reference to CR where it may stand, and one wrong character.
TEST(GroupCodecs, FindTheWayThroughWhiteSpace) {
  std::mt19937 engine(11);
  const auto below = [&](std::size_t n) { return static_cast<u32>(engine() % n); };
  constexpr const char* kBlanks[] = {" ", "\r", "\n", "\t", "\v", "\f"};
  GuardedBytes guarded(200000);
  for (u32 round = 0; round < 400; ++round) {
    const std::string plain = randomBytes(below(round % 10 == 0 ? 9000 : 400), round);
    for (const Format* f : {&kHex, &kBase32, &kBase64, &kBase64Url}) {
      const bool references = (f == &kBase64 || f == &kBase64Url) && round % 3 == 0;
      const u32 gap = 2 + below(100);
      std::string text;
      for (const char c : encoded(*f, plain)) {
        while (below(gap) == 0) text += references && below(2) == 0 ? "&#xD;" : kBlanks[below(6)];
        text += c;
      }
      const auto decode = [&](DataBuffer& out) {
        const char* const given = reinterpret_cast<const char*>(guarded.ending(text));
        return f->decode(given, countOf(text), out);
      };
      DataBuffer out;
      ASSERT_TRUE(decode(out).ok) << f->name << ", round " << round;
      ASSERT_EQ(textOf(out), plain) << f->name << ", round " << round;
      const u32 at = below(text.size() + 1);
      if (at >= text.find('=') || text.find(';') != text.npos) continue;  // padding and references are tested above
      text.insert(at, 1, '!');
      DataBuffer part;
      ASSERT_EQ(decode(part).badAt, at) << f->name << ", round " << round;
      ASSERT_EQ(textOf(part), plain.substr(0, part.size())) << f->name << ", round " << round;
    }
  }
}

TEST(GroupCodecs, BreakLinesAndEndTheLastOne) {
  for (const u32 n : {0U, 1U, 56U, 57U, 58U, 114U, 500U}) {
    const std::string plain = randomBytes(n);
    std::string mime, entity;
    for (u32 i = 0; i < n; i += 57) {
      const std::string line = encoded(kBase64, plain.substr(i, 57));
      mime += line + "\r\n";
      entity += line + "&#xD;\n";
    }
    StringBuffer out("=");
    EXPECT_TRUE(ContentEncoder().encodeBase64Mime(bytesOf(plain), n, out));
    EXPECT_EQ(textOf(out), std::string("=").append(mime));
    out.clear();
    EXPECT_TRUE(ContentEncoder().encodeBase64CrEntity(bytesOf(plain), n, out));
    EXPECT_EQ(textOf(out), entity);
  }
}

TEST(GroupCodecs, RefuseWhatDoesNotFit) {
  const std::string plain = randomBytes(1000);
  const u8* const few = bytesOf(plain);  // nothing of the counts below is read
  StringBuffer text("kept");
  EXPECT_FALSE(ContentEncoder::encodeBase64(few, 0xC0000000, text));
  EXPECT_FALSE(ContentEncoder::encodeModBase64(few, 0xFFFFFFFF, text));
  EXPECT_FALSE(ContentEncoder().encodeBase64Mime(few, 0xBD000000, text));
  EXPECT_FALSE(ContentEncoder::encodeBase32(few, 0xA0000000, text));
  EXPECT_EQ(textOf(text), "kept");
  for (const Format* f : {&kHex, &kBase32, &kBase64}) {
    const std::string given = encoded(*f, plain);
    const u32 refusals = faults::failEachAllocation([&](u32 k, bool forGood) {
      DataBuffer out;
      DecodeResult result = {};
      bool struck = false;
      {
        const faults::FailAllocation failing(k, forGood);
        result = f->decode(given.data(), countOf(given), out);
        struck = failing.struck();
      }
      EXPECT_EQ(textOf(out), result.ok ? plain : std::string()) << f->name;
      EXPECT_EQ(result.badAt, kNoFault);
      return struck;
    });
    EXPECT_GE(refusals, 2U);
  }
}

TEST(EncodingIds, KnowEveryNameInEverySpelling) {
  LogNull log;
  constexpr struct {
    const char* name;
    s32 id;
  } kIds[] = {
      {"base64", 1},
      {"BASE-64", 1},
      {" base64_mime\r\n", 1},
      {"base64_crentity", 1},
      {"BASE64_CR13ENTITY", 1},
      {"qp", 2},
      {"QP-72", 2},
      {"qp-", 2},
      {"qp-x", 2},
      {"quoted-printable", 2},
      {"hex", 3},
      {"Hexidecimal", 3},
      {"hexlower", 3},
      {"hex_lower", 3},
      {"hex-lower", 3},
      {"eda", 3},
      {"url", 4},
      {"url_rfc1738", 4},
      {"url_oauth", 4},
      {"url_rfc2396", 4},
      {"ansi", 6},
      {"asc", 6},
      {"US-ASCII", 6},
      {"usascii", 6},
      {"ascii", 6},
      {"base58", 7},
      {"modbase64", 10},
      {"ascii85", 17},
      {"fingerprint", 18},
      {"thumb", 18},
      {"decimal", 19},
      {"base64url", 20},
      {"base45", 21},
      {"json", 22},
      {"declist", 23},
      {"b", 26},
      {"q", 26},
      {"base32", 30},
      {"UU", 37},
      {"Finger", 0},
      {"Thumbprint", 0},
      {"base 64", 0},
      {"base64urlx", 0},
      {"", 0},
      {"\v\f ", 0},
      {"utf-8", 0},
      {"qpx", 0},
      {"hexx", 0},
      {"-hex", 0},
      {nullptr, 0},
  };
  for (const auto& c : kIds) EXPECT_EQ(_clsEncode::encodingIdForName(c.name, log), c.id) << (c.name ? c.name : "null");
}

}  // namespace
