// Percent-encoding, JSON escapes, decimal lists, eda, and the scanner of names.
#include <gtest/gtest.h>

#include "tests/services/CodecSupport.h"
#include "varnik/services/codecs/internal/EncodeInner.h"

namespace {

std::string allBytes() {
  std::string bytes;
  for (u32 b = 0; b < 256; ++b) bytes += static_cast<char>(b);
  return bytes;
}

// ---- Percent-encoding ----

DecodeResult urlDecode(const char* text, u32, DataBuffer& out) {
  return {UrlCodec::urlDecode(text, out), kNoFault};
}
std::string unescaped(std::string_view text) {
  std::string ended(text);
  ended += '\0';  // the last byte before the unreadable page
  return decoded(ended, urlDecode).bytes;
}

TEST(UrlCodec, LeavesTheUnreservedCharactersOfEachStandard) {
  constexpr std::string_view kAlways = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  const struct {
    bool (*encode)(const u8*, u32, StringBuffer&);
    std::string_view unreserved;
  } kStandards[] = {{UrlCodec::encodeRfc3986, "-._~"},
                    {UrlCodec::encodeRfc1738, "$-_.+!*'(),"},
                    {UrlCodec::encodeRfc2396, "-_.!~*'()"}};
  for (const auto& c : kStandards)
    for (u32 b = 0; b < 256; ++b) {
      const char byte = static_cast<char>(b);
      char escape[4];
      std::snprintf(escape, sizeof escape, "%%%02X", b);
      const bool stays = (kAlways.find(byte) != kAlways.npos) || c.unreserved.find(byte) != c.unreserved.npos;
      EXPECT_EQ(encoded({&byte, 1}, c.encode), stays ? std::string(1, byte) : escape) << c.unreserved;
    }
}

TEST(UrlCodec, GivesTheBytesBack) {
  for (u32 n = 0; n <= 300; ++n) {
    const std::string bytes = sampleBytes(n, n);
    EXPECT_EQ(unescaped(encoded(bytes, UrlCodec::encodeRfc3986)), bytes) << n << " bytes";
  }
}

TEST(UrlCodec, LeavesWhatIsNoEscape) {
  constexpr struct {
    std::string_view text, bytes;
  } kTexts[] = {{"%", "%"},       {"%4", "%4"},   {"a%4", "a%4"},         {"%4g%zz", "%4g%zz"}, {"%%41", "%A"},
                {"%4%41", "%4A"}, {"a+b", "a+b"}, {"%c3%A9", "\xC3\xA9"}, {"%2541", "%41"},     {"", ""}};
  for (const auto& c : kTexts) {
    EXPECT_EQ(unescaped(c.text), c.bytes);
    const std::string before(61, 'x');
    EXPECT_EQ(unescaped(before + std::string(c.text)), before + std::string(c.bytes));
  }
}

// ---- JSON string escapes, RFC 8259 section 7 ----

Decoded jsonDecoded(std::string_view text) {
  return decoded(text, [](const char* p, u32 n, DataBuffer& out) {
    StringBuffer plain;
    const DecodeResult result = vk_decodeJson(p, n, plain);
    out.append(plain);
    return result;
  });
}

TEST(Json, EscapesQuotesBackslashesAndControls) {
  std::string want;
  for (u32 b = 0; b < 0x20; ++b) {
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", b);
    want += b == 8 ? "\\b" : b == 9 ? "\\t" : b == 10 ? "\\n" : b == 12 ? "\\f" : b == 13 ? "\\r" : escape;
  }
  for (u32 b = 0x20; b < 256; ++b) {
    if (b == '"' || b == '\\') want += '\\';
    want += static_cast<char>(b);
  }
  EXPECT_EQ(encoded(allBytes(), vk_encodeJson), want);
  StringBuffer text;
  text.append(bufferOf(allBytes()));
  EXPECT_TRUE(text.jsonEscape());
  EXPECT_EQ(textOf(text), want);
}

TEST(Json, GivesTheBytesBack) {
  for (u32 n = 0; n <= 300; ++n) {
    const std::string bytes = sampleBytes(n, n);
    EXPECT_EQ(jsonDecoded(encoded(bytes, vk_encodeJson)), good(bytes)) << n << " bytes";
  }
}

const struct {
  const char* text;
  Decoded want;
} kJson[] = {
    {R"(\"\\\/\b\f\n\r\t)", good("\"\\/\b\f\n\r\t")},
    {R"(\u0041\u00e9\u20AC)", good("A\xC3\xA9\xE2\x82\xAC")},
    {R"(\ud83d\ude00)", good("\xF0\x9F\x98\x80")},
    {R"(\udbff\udfff\ud800\udc00)", good("\xF4\x8F\xBF\xBF\xF0\x90\x80\x80")},
    {R"(\ud83dx\ude00)", good("\xEF\xBF\xBDx\xEF\xBF\xBD")},
    {R"(\ud83d\ud83d\ude00)", good("\xEF\xBF\xBD\xF0\x9F\x98\x80")},
    {R"(\ud83d\u0041\ud83d)", good("\xEF\xBF\xBD"
                                   "A\xEF\xBF\xBD")},
    {R"(a\qb\x)", {R"(a\qb\x)", false, 1}},
    {R"(ab\)", {R"(ab\)", false, 2}},
    {R"(\u12g4\u)", {R"(\u12g4\u)", false, 0}},
    {R"(\ud83d\ude0)", {"\xEF\xBF\xBD\\ude0", false, 6}},
};

TEST(Json, ReadsEscapes) {
  for (const auto& c : kJson) EXPECT_EQ(jsonDecoded(c.text), c.want) << c.text;
}

TEST(Json, JoinsEveryPairAndReplacesEveryLoneUnit) {
  for (u32 unit = 0xD800; unit < 0xE000; ++unit)
    for (const u32 next : {0xD800u, 0xDBFFu, 0xDC00u, 0xDC00u + unit % 1024, 0xDFFFu, 0xE000u}) {
      char text[16];
      std::snprintf(text, sizeof text, "\\u%04X\\u%04x", unit, next);
      const bool pair = unit < 0xDC00 && next >= 0xDC00 && next < 0xE000;
      XString want;
      const u16 units[] = {static_cast<u16>(unit), static_cast<u16>(next)};  // U+FFFD for lone surrogates
      want.setFromUtf16N_xe(reinterpret_cast<const u8*>(units), 2);
      ASSERT_EQ(jsonDecoded(text), good(textOf(want.getUtf8Sb_rw()))) << text << (pair ? ", a pair" : "");
    }
}

TEST(Json, ServesTextsInTheOutputItself) {
  StringBuffer text("a\\n");
  ASSERT_TRUE(StringBuffer::jsonDecode(text.getString(), text.getSize(), text));
  EXPECT_EQ(textOf(text), "a\\na\n");
  for (u32 i = 0; i < 8; ++i) ASSERT_TRUE(StringBuffer::jsonDecode(text.getString() + 1, 2, text));
  EXPECT_EQ(textOf(text), "a\\na\n\n\n\n\n\n\n\n\n");
}

TEST(Json, TextEndsAtAZeroByte) {
  EXPECT_EQ(decoded("a\\u0000b", vk_decodeJsonText), good("a"));
  EXPECT_EQ(decoded("a\\nb", vk_decodeJsonText), good("a\nb"));
}

// ---- Decimal lists ----

TEST(DecList, GivesTheBytesBack) {
  EXPECT_EQ(encoded(std::string_view("\0\xAB\xFF", 3), vk_encodeDecList), "0,171,255");
  for (u32 n = 0; n <= 300; ++n) {
    const std::string bytes = sampleBytes(n, n);
    EXPECT_EQ(decoded(encoded(bytes, vk_encodeDecList), vk_decodeDecList), good(bytes)) << n << " bytes";
  }
}

TEST(DecList, ReadsNumbersInWhateverStandsAround) {
  const struct {
    std::string text;
    Decoded want;
  } kTexts[] = {
      {"1, 2,255", good("\x01\x02\xFF")},
      {"12a3", good("\x0C\x03")},
      {"\t7\r\n ,,8 ;9", good("\x07\x08\x09")},
      {"007,0000000000000000012", good("\x07\x0C")},
      {"1,256,3", {"\x01", false, 2}},
      {"1, \t4294967297", {"\x01", false, 4}},
      {"1,18446744073709551617", {"\x01", false, 2}},
      {std::string(99, '9'), {"", false, 0}},
      {"-1", good("\x01")},
      {"", good("")},
  };
  for (const auto& c : kTexts) EXPECT_EQ(decoded(c.text, vk_decodeDecList), c.want) << c.text;
}

TEST(DecList, GrowsAsSingleBytesDo) {
  std::string list = "1";
  for (u32 i = 1; i < 3000; ++i) list += ",1";
  DataBuffer bytes, reference;
  EXPECT_TRUE(vk_decodeDecList(list.data(), countOf(list), bytes).ok);
  for (u32 i = 0; i < 3000; ++i) reference.appendChar(1);
  EXPECT_TRUE(bytes.equals(reference));
  EXPECT_EQ(bytes.getBufSize(), reference.getBufSize());
}

// ---- eda ----

TEST(Eda, GroupsDigitsByFour) {
  const std::string bytes = allBytes();
  EXPECT_EQ(encoded("", ContentEncoder::encodeEda), "");
  EXPECT_EQ(encoded("\x0A\x1B\xC3", ContentEncoder::encodeEda), "0a1b c3");
  const std::string line = "0001 0203 0405 0607 0809 0a0b 0c0d 0e0f 1011 1213 1415 1617 1819 1a1b 1c1d 1e1f";
  EXPECT_EQ(encoded(bytes.substr(0, 32), ContentEncoder::encodeEda), line);
  EXPECT_EQ(encoded(bytes.substr(0, 33), ContentEncoder::encodeEda), line + "\n20");
  for (u32 n = 0; n < 256; ++n)
    EXPECT_EQ(decoded(encoded(bytes.substr(n), ContentEncoder::encodeEda), vk_decodeHex), good(bytes.substr(n)));
}

// ---- Numbers in names ----

TEST(TextScan, ReadsTheNumberOfAName) {
  constexpr s32 kUntouched = 77;
  constexpr struct {
    const char *text, *format;
    s32 value;
  } kNames[] = {
      {"qp-40", "qp-%d", 40},
      {"QP-40x", "qp-%d", 40},
      {"qp--5", "qp-%d", -5},
      {"qp-+5", "QP-%d", 5},
      {"qp-007", "qp-%d", 7},
      {"qp-4294967296", "qp-%d", 2147483647},
      {"qp-99999999999999999999", "qp-%d", 2147483647},
      {"qp--2147483648", "qp-%d", -2147483647 - 1},
      {"qp--99999999999999999999", "qp-%d", -2147483647 - 1},
      {"qp-", "qp-%d", kUntouched},
      {"qp-x", "qp-%d", kUntouched},
      {"qp--", "qp-%d", kUntouched},
      {"qp- 4", "qp-%d", kUntouched},
      {"qp", "qp-%d", kUntouched},
      {"", "qp-%d", kUntouched},
      {"12", "%d", 12},
      {"qp-4", "qp-4", kUntouched},
  };
  for (const auto& c : kNames) {
    s32 value = kUntouched;
    EXPECT_EQ(TextScan::scanOne(c.text, c.format, &value), c.value == kUntouched ? 0 : 1) << c.text;
    EXPECT_EQ(value, c.value) << c.text;
  }
}

TEST(TextCodecs, AppendABeginningOrAllWithoutMemory) {
  const std::string bytes = sampleBytes(3000, 6);
  const u8* const p = bytesOf(bytes);
  for (const auto encode : {UrlCodec::encodeRfc3986, vk_encodeJson, vk_encodeDecList, ContentEncoder::encodeEda})
    refuseEach<StringBuffer>([&](StringBuffer& out) { return encode(p, 3000, out); });
  refuseEach<DataBuffer>(decoderOf(encoded(bytes, UrlCodec::encodeRfc3986), urlDecode));
  const std::string json = encoded(bytes, vk_encodeJson);
  refuseEach<StringBuffer>(
      [&](StringBuffer& out) { return StringBuffer::jsonDecode(json.data(), countOf(json), out); });
  refuseEach<DataBuffer>(decoderOf(json, vk_decodeJsonText));
}

TEST(TextCodecs, JsonEscapeChangesNothingWithoutMemory) {
  StringBuffer text("a \"quote\"");
  const faults::FailAllocation refuse(1, true);
  EXPECT_FALSE(text.jsonEscape());
  EXPECT_TRUE(text.equals("a \"quote\""));
}

}  // namespace
