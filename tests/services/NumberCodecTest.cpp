// base45, Ascii85, base58 and big integers.
#include <gtest/gtest.h>

#include "tests/services/CodecSupport.h"

namespace {

bool base45(const u8* data, u32 n, StringBuffer& out) {
  LogNull log;
  return ContentEncoder::encodeBase45(data, n, out, log);
}
bool ascii85(const u8* data, u32 n, StringBuffer& out) {
  LogNull log;
  return ContentEncoder::encodeAscii85(data, n, out, log);
}
bool base58(const u8* data, u32 n, StringBuffer& out) {
  LogNull log;
  return ContentEncoder::encodeBase58(data, n, out, log);
}

// ---- base45, RFC 9285 ----

TEST(Base45, AgreesWithTheStandardsExamples) {
  EXPECT_EQ(encoded("AB", base45), "BB8");
  EXPECT_EQ(encoded("Hello!!", base45), "%69 VD92EX0");
  EXPECT_EQ(encoded("base-45", base45), "UJCLQE7W581");
  EXPECT_EQ(decoded("QED8WEX0", vk_decodeBase45), good("ietf!"));
}

TEST(Base45, GivesTheBytesBack) {
  for (u32 n = 0; n <= 200; ++n) {
    const std::string bytes = sampleBytes(n, n), text = encoded(bytes, base45);
    EXPECT_EQ(decoded(text, vk_decodeBase45), good(bytes)) << n << " bytes";
    std::string lines;  // a break behind every character that is no multiple of the group
    for (std::size_t i = 0; i < text.size(); ++i) lines += std::string(1, text[i]) + (i % 7 == 6 ? "\r\n\t" : "");
    EXPECT_EQ(decoded(lines, vk_decodeBase45), good(bytes)) << n << " bytes in lines";
  }
}

// The blank is the digit 36.
const struct {
  std::string text;
  Decoded want;
} kBase45[] = {
    {"FGW", good("\xFF\xFF")},   {"GGW", {"", false, 0}}, {"BB8:::", {"AB", false, 3}}, {"U5", good("\xFF")},
    {"U5\n", good("\xFF")},      {"V5", {"", false, 0}},  {"::", {"", false, 0}},       {"BB8A", {"AB", false, 3}},
    {"BB8Aa", {"AB", false, 4}}, {"bb8", {"", false, 0}}, {"  ", {"", false, 0}},       {" 4", good("\xD8")},
};

TEST(Base45, RefusesWhatNoEncoderWrites) {
  for (const auto& c : kBase45) EXPECT_EQ(decoded(c.text, vk_decodeBase45), c.want) << c.text;
}

// Each pair of characters, as the last bytes of a text.
TEST(Base45, KnowsEveryPair) {
  for (u32 first = 0; first < 256; ++first)
    for (u32 second = 0; second < 256; ++second) {
      const char text[] = {static_cast<char>(first), static_cast<char>(second)};
      DataBuffer out;
      const bool ok = vk_decodeBase45(text, 2, out).ok;
      const std::string given(text, 2);
      ASSERT_EQ(out.empty() ? given : encoded(textOf(out), base45), given);
      ASSERT_TRUE(ok || out.empty());
    }
}

// ---- Ascii85 ----

constexpr struct {
  const char *bytes, *text;
} kAscii85[] = {
    {"", ""},
    {"00", "!!"},
    {"000000", "!!!!"},
    {"00000000", "z"},
    {"0000000000", "z!!"},
    {"61", "@/"},
    {"616263", "@:E^"},
    {"ffffff", "s8W*"},
    {"ffffffff", "s8W-!"},
    {"4d616e2069732064697374696e67756973686564", "9jqo^BlbD-BleB1DJ+*+F(f,q"},
};

TEST(Ascii85, AgreesWithOtherPrograms) {
  for (const auto& c : kAscii85) {
    EXPECT_EQ(encoded(fromHex(c.bytes), ascii85), c.text);
    EXPECT_EQ(decoded(c.text, vk_decodeAscii85), good(fromHex(c.bytes)));
  }
}

TEST(Ascii85, GivesTheBytesBack) {
  for (u32 n = 0; n <= 300; ++n) {
    const std::string bytes = sampleBytes(n, n), text = encoded(bytes, ascii85);
    EXPECT_EQ(decoded(text, vk_decodeAscii85), good(bytes)) << n << " bytes";
    std::string lines = " <~";
    for (std::size_t i = 0; i < text.size(); ++i) lines += std::string(1, text[i]) + (i % 7 == 6 ? "\n " : "");
    EXPECT_EQ(decoded(lines + "~>\r\n", vk_decodeAscii85), good(bytes)) << n << " bytes in lines and a frame";
  }
  EXPECT_EQ(decoded(std::string(500, 'z'), vk_decodeAscii85), good(std::string(2000, '\0')));
}

const struct {
  std::string text;
  Decoded want;
} kBadAscii85[] = {
    {"s8W-\"", {"", false, 0}},  // above 2^32 - 1
    {"zuuuuu", {std::string(4, '\0'), false, 1}},
    {"!!z", {"", false, 2}},  // z inside a group
    {"@:E^v", {"", false, 4}},
    {"z!", {std::string(4, '\0'), false, 1}},  // one digit left over
    {"s8W.", {"", false, 0}},                  // three bytes above 2^24 - 1
    {"@0", {"", false, 0}},                    // bits left over: "@/" is how the byte is written
    {"<~@/", {"a", false, 3}},                 // the frame is not closed
    {"<~@/~", {"a", false, 4}},
    {"@/~>", {"a", true, kNoFault}},  // its end alone, as in PostScript
    {"<~@/~>x", {"a", false, 6}},
    {"<~~>", good("")},
};

TEST(Ascii85, RefusesWhatNoEncoderWrites) {
  for (const auto& c : kBadAscii85) EXPECT_EQ(decoded(c.text, vk_decodeAscii85), c.want) << c.text;
}

// Each short group is refused or is what its bytes are written as.
TEST(Ascii85, AcceptsOnlyTheEncodersShortGroups) {
  for (u32 first = 0; first < 256; ++first)
    for (u32 second = 0; second < 256; ++second)
      for (const char* const more : {"", "!", "]u"}) {
        const std::string text = std::string{static_cast<char>(first), static_cast<char>(second)} + more;
        DataBuffer out;
        const bool digits = text.find_first_of("~z \t\r\n\v\f") == text.npos;
        const bool accepted = vk_decodeAscii85(text.data(), countOf(text), out).ok && digits;
        ASSERT_EQ(accepted ? encoded(textOf(out), ascii85) : text, text);
      }
}

// ---- base58 ----

const struct {
  std::string bytes;
  const char* text;
} kBase58[] = {
    {"", ""},
    {std::string(1, '\0'), "1"},
    {std::string(3, '\0'), "111"},
    {"a", "2g"},
    {"bbb", "a3gV"},
    {"Hello World!", "2NEpo7TZRRrLZSi2U"},
    {"The quick brown fox jumps over the lazy dog.", "USm3fpXnKG5EUBx2ndxBDMPVciP5hGey2Jh4NDv6gmeo1LkMeiKrLJUUBk6Z"},
    {fromHex("0000287fb4cd"), "11233QC4"},
    {std::string(32, '\xFF'), "JEKNVnkbo3jma5nREBBJCDoXFVeKkD56V3xKrvRmWxFG"},
    {std::string(64, '\xFF'),
     "67rpwLCuS5DGA8KGZXKsVQ7dnPb9goRLoKfgGbLfQg9WoLUgNY77E2jT11fem3coV9nAkguBACzrU1iyZM4B8roQ"},
    {std::string(65, '\xFF'),
     "PbGvaomYRfb7uHHdgYrHrM2HMLhjLftSPTPiKpZnXVnaXWyAn4HxUWeMm3wbfQZ2BFkN3q7HqdxMLECGdmX1jgorv"},
};

TEST(Base58, AgreesWithOtherPrograms) {
  for (const auto& c : kBase58) {
    EXPECT_EQ(encoded(c.bytes, base58), c.text);
    EXPECT_EQ(decoded(c.text, vk_decodeBase58), good(c.bytes));
  }
}

// Lengths around the bound between the two ways, with leading zeros and with a leading 1 bit and none.
TEST(Base58, GivesTheBytesBack) {
  for (u32 n = 0; n <= 150; ++n)
    for (const u32 zeros : {0u, 1u, 5u})
      for (const char first : {'\x01', '\xFF'}) {
        std::string bytes = std::string(zeros, '\0') + randomBytes(n, n);
        if (n != 0) bytes[zeros] = first;
        const std::string text = encoded(bytes, base58);
        ASSERT_EQ(decoded(text, vk_decodeBase58), good(bytes)) << n << " bytes";
        ASSERT_EQ(decoded(" " + text.substr(0, n / 2) + "\r\n" + text.substr(n / 2), vk_decodeBase58), good(bytes));
      }
}

TEST(Base58, RefusesOtherCharacters) {
  for (const char c : {'0', 'O', 'I', 'l', '+', '\0', '\xC3'})
    EXPECT_EQ(decoded(std::string("2NEp") + c + "o7", vk_decodeBase58), (Decoded{"", false, 4})) << c;
}

// ---- Big integers ----

std::string inRadix(std::string_view bytes, s32 radix) {
  mp_int value;
  StringBuffer text;
  EXPECT_TRUE(MpIntConvert::bytesToMpInt(value, bytesOf(bytes), static_cast<s32>(bytes.size())));
  return MpIntConvert::mpIntToText(value, text, radix) ? textOf(text) : "failed";
}

struct Parsed {
  bool ok;
  std::string bytes;
  bool operator==(const Parsed&) const = default;
};
Parsed fromRadix(const char* text, s32 radix) {
  mp_int value;
  DataBuffer bytes;
  const bool ok = MpIntConvert::textToMpInt(value, text, radix);
  EXPECT_TRUE(MpIntConvert::mpIntToBytes(value, bytes));
  return {ok, textOf(bytes)};
}

TEST(MpIntConvert, WritesAndReadsDigits) {
  const struct {
    std::string bytes;
    s32 radix;
    const char* text;
  } kNumbers[] = {
      {std::string(1, '\0'), 10, "0"},
      {"\x01", 10, "1"},
      {"\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 10, "18446744073709551615"},
      {fromHex("010000000000000000"), 10, "18446744073709551616"},
      {std::string(40, '\xFF'), 10,
       "2135987035920910082395021706169552114602704522356652769947041607822219725780640550022962086936575"},
      {fromHex("00deadbeef").substr(1), 16, "deadbeef"},
      {"\x05\x0F", 36, "zz"},
      {"\x05", 2, "101"},
  };
  for (const auto& c : kNumbers) {
    EXPECT_EQ(inRadix(c.bytes, c.radix), c.text);
    EXPECT_EQ(fromRadix(c.text, c.radix), (Parsed{true, c.bytes})) << c.text;
  }
  EXPECT_EQ(inRadix("", 10) + inRadix(std::string(9, '\0') + "\x07", 10), "07") << "leading zero bytes are lost";
}

TEST(MpIntConvert, TakesTheDigitsAtTheStart) {
  const std::string zero(1, '\0');
  const struct {
    const char* text;
    s32 radix;
    Parsed want;
  } kTexts[] = {
      {"", 10, {false, zero}},      {"abc", 10, {false, zero}},
      {"-5", 10, {false, zero}},    {" \t12 \r\n", 10, {true, "\x0C"}},
      {"12a", 10, {false, "\x0C"}}, {"12 3", 10, {false, "\x0C"}},
      {"Ff", 16, {true, "\xFF"}},   {"fg", 16, {false, "\x0F"}},
      {"000", 10, {true, zero}},    {"102", 2, {false, "\x02"}},
      {"5", 1, {false, zero}},      {"5", 37, {false, zero}},
  };
  for (const auto& c : kTexts) EXPECT_EQ(fromRadix(c.text, c.radix), c.want) << c.text;
  EXPECT_EQ(fromRadix(nullptr, 10), (Parsed{false, zero}));
  EXPECT_EQ(inRadix("a", 1) + inRadix("a", 37), "failedfailed");
}

TEST(MpIntConvert, GivesEveryLengthBackInEveryRadix) {
  for (s32 radix = 2; radix <= 36; ++radix)
    for (const u32 n : {1u, 7u, 8u, 9u, 16u, 63u, 64u, 65u, 200u, 600u, 5000u}) {
      std::string bytes = randomBytes(n, n);
      bytes[0] = static_cast<char>(radix % 2 == 0 ? 0x01 : 0xFF);
      ASSERT_EQ(fromRadix(inRadix(bytes, radix).c_str(), radix), (Parsed{true, bytes})) << n << ", radix " << radix;
    }
}

// The plain ways would take minutes here.
TEST(NumberCodecs, ConvertAMegabyteInMoments) {
  std::string bytes = randomBytes(1'000'000);
  bytes[0] = '\x7F';
  EXPECT_EQ(fromRadix(inRadix(bytes, 10).c_str(), 10).bytes, bytes);
  EXPECT_EQ(decoded(encoded(bytes, base58), vk_decodeBase58), good(bytes));
}

TEST(NumberCodecs, AppendABeginningOrAllWithoutMemory) {
  for (const u32 n : {40u, 3000u}) {
    const std::string bytes = randomBytes(n);
    for (const auto encode : {base45, ascii85, base58})
      refuseEach<StringBuffer>([&](StringBuffer& out) { return encode(bytesOf(bytes), n, out); });
    refuseEach<DataBuffer>(decoderOf(encoded(bytes, base45), vk_decodeBase45));
    refuseEach<DataBuffer>(decoderOf(encoded(bytes, ascii85), vk_decodeAscii85));
    refuseEach<DataBuffer>(decoderOf(encoded(bytes, base58), vk_decodeBase58));
    refuseEach<StringBuffer>([&](StringBuffer& out) {
      mp_int value;
      return MpIntConvert::bytesToMpInt(value, bytesOf(bytes), static_cast<s32>(n)) &&
             MpIntConvert::mpIntToText(value, out, 10);
    });
    const std::string digits = inRadix(bytes, 10);
    refuseEach<DataBuffer>([&](DataBuffer& out) {
      mp_int value;
      return MpIntConvert::textToMpInt(value, digits.c_str(), 10) && MpIntConvert::mpIntToBytes(value, out);
    });
  }
}

}  // namespace
