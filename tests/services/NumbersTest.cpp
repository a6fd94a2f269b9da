// Big integers.
#include "tests/support/Test.h"

namespace {

std::string inRadix(std::string_view bytes, s32 radix) {
  mp_int value;
  StringBuffer text;
  EXPECT_TRUE(MpIntConvert::bytesToMpInt(value, bytesOf(bytes), static_cast<s32>(bytes.size())));
  return MpIntConvert::mpIntToText(value, text, radix) ? textOf(text) : "failed";
}

using Parsed = std::pair<bool, std::string>;
Parsed fromRadix(const char* text, s32 radix) {
  mp_int value;
  DataBuffer bytes;
  const bool ok = MpIntConvert::textToMpInt(value, text, radix);
  EXPECT_TRUE(MpIntConvert::mpIntToBytes(value, bytes));
  return {ok, textOf(bytes)};
}

TEST(MpIntConvert, WritesAndReadsDigits) {
  const std::tuple<std::string, s32, const char*> kNumbers[] = {
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
  for (const auto& [bytes, radix, text] : kNumbers) {
    EXPECT_EQ(inRadix(bytes, radix), text);
    EXPECT_EQ(fromRadix(text, radix), (Parsed{true, bytes})) << text;
  }
  EXPECT_EQ(inRadix("", 10) + inRadix(std::string(9, '\0') + "\x07", 10), "07") << "leading zero bytes are lost";
}

TEST(MpIntConvert, TakesTheDigitsAtTheStart) {
  const std::string zero(1, '\0');
  const std::tuple<const char*, s32, Parsed> kTexts[] = {
      {"", 10, {false, zero}},      {"abc", 10, {false, zero}},
      {"-5", 10, {false, zero}},    {" \t12 \r\n", 10, {true, "\x0C"}},
      {"12a", 10, {false, "\x0C"}}, {"12 3", 10, {false, "\x0C"}},
      {"Ff", 16, {true, "\xFF"}},   {"fg", 16, {false, "\x0F"}},
      {"000", 10, {true, zero}},    {"102", 2, {false, "\x02"}},
      {"5", 1, {false, zero}},      {"5", 37, {false, zero}},
      {nullptr, 10, {false, zero}},
  };
  for (const auto& [text, radix, want] : kTexts) EXPECT_EQ(fromRadix(text, radix), want) << (text ? text : "null");
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

// The growth of a list's bytes is that of single appends.
TEST(DecList, GrowsAsSingleBytesDo) {
  DataBuffer bytes, reference;
  EXPECT_TRUE(bytes.appendDecList(repeated("1,", 6000).c_str()));
  for (u32 i = 0; i < 3000; ++i) reference.appendChar(1);
  EXPECT_EQ(stateOf(bytes), stateOf(reference));
}

}  // namespace
