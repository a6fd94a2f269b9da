// Big integers.
#include "tests/support/Test.h"

namespace {

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
  StringBuffer text;
  DataBuffer back;
  EXPECT_TRUE(bufferOf(bytes).encodeDB("base58", text) && back.appendEncoded(text.getString(), "base58"));
  EXPECT_TRUE(textOf(back) == bytes);
}

// The growth of a list's bytes is that of single appends.
TEST(DecList, GrowsAsSingleBytesDo) {
  std::string list = "1";
  for (u32 i = 1; i < 3000; ++i) list += ",1";
  DataBuffer bytes, reference;
  EXPECT_TRUE(bytes.appendDecList(list.c_str()));
  for (u32 i = 0; i < 3000; ++i) reference.appendChar(1);
  EXPECT_TRUE(bytes.equals(reference));
  EXPECT_EQ(bytes.getBufSize(), reference.getBufSize());
}

}  // namespace
