// Every group of characters that a decoder can meet, against a slow decoder; every group of bytes there and back.

#include "tests/exhaustive/Tried.h"
#include "tests/support/Test.h"
#include "varnik/buffer/Spans.h"
#include "varnik/services/codecs/internal/DecodeResult.h"

namespace {

const std::string kBase64 = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
const std::string kBase45 = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ $%*+-./:";

struct Codec {
  const char* what;
  DecodeResult (*decode)(const char*, u32, DataBuffer&);
  u32 bits, chars, padding;    // of a character; of a whole group; the most `=`
  std::string digits, others;  // those of a value each; more characters that count: "-62" is '-' for 62
  std::string matters;         // what is tried first
};

const Codec kCodecs[] = {
    {"base64", vk_decodeBase64, 6, 4, 2, kBase64, "", "= \n&-_\0\x80\xFF"s + "AQgw+/19zZabcdefRST#@"},
    {"base64url", vk_decodeBase64Url, 6, 4, 2, kBase64, "-_", "= \n&-_\0\x80\xFF"s + "AQgw+/19zZabcdefRST#@"},
    {"base32", vk_decodeBase32, 5, 8, 6, "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567", "", "= \n\0\x80\xFF"s + "AEIQUY27018az[`"},
    {"hex", vk_decodeHex, 4, 2, 0, "0123456789ABCDEF", "", "= \n\r\0\x80\xFF"s + "0123456789ABCDEFabcdefgG/:@`"},
};

/// The value of each byte: a digit's, 254 for what is skipped, 253 for padding, 255 for the rest.
using Values = std::array<u8, 256>;
Values valuesOf(const Codec& codec) {
  Values values;
  values.fill(255);
  for (const char c : " \t\n\v\f\r"s) values[static_cast<u8>(c)] = 254;
  if (codec.padding != 0) values[u8{'='}] = 253;
  for (u32 i = 0; i < codec.digits.size(); ++i) values[static_cast<u8>(codec.digits[i])] = static_cast<u8>(i);
  for (u32 i = 0; i < codec.others.size(); ++i) values[static_cast<u8>(codec.others[i])] = static_cast<u8>(62 + i);
  if (codec.bits == 4)  // either case counts
    for (u32 c = 'A'; c <= 'Z'; ++c) values[c | 0x20] = values[c];
  return values;
}

/// Decodes a short text slowly; false where it is at fault, with what stands before the fault in `out`.
bool decodeSlowly(const Codec& codec, const Values& values, std::string_view text, std::string& out) {
  u32 bits = 0, held = 0, padding = 0;
  bool good = true;
  for (u32 i = 0; i < text.size() && good; ++i) {
    const u8 value = values[static_cast<u8>(text[i])];
    if (value == 254) continue;
    padding += value == 253;
    good = value == 253 ? padding <= codec.padding : value < 253 && padding == 0;
    if (!good || value == 253) continue;
    bits = bits << codec.bits | value;
    if ((held += codec.bits) >= 8) out += static_cast<char>(bits >> (held -= 8));
  }
  return good && held < codec.bits && (bits & ((1u << held) - 1)) == 0;
}

TEST(Exhaustive, GroupsOfFourCharacters) {
  for (const Codec& codec : kCodecs) {
    const Values values = valuesOf(codec);
    const std::string tried = bytesTried(codec.matters, 64);
    DataBuffer out;
    std::string expected;
    for (const char a : tried)
      for (const char b : tried)
        for (const char c : tried)
          for (const char d : tried) {
            const char text[] = {a, b, c, d};
            out.clear(), expected.clear();
            const bool good = decodeSlowly(codec, values, {text, 4}, expected), ok = codec.decode(text, 4, out).ok;
            const std::string_view is = vk_view(out);
            ASSERT_TRUE(ok == good && (good ? is == expected : expected.starts_with(is)))
                << codec.what << ": " << testing::PrintToString(std::string(text, 4));
          }
  }
}

TEST(Exhaustive, TriplesOfBase45) {
  const std::string tried = bytesTried("\t\n\r" + kBase45, 256);
  DataBuffer out;
  for (const char a : tried)
    for (const char b : tried)
      for (const char c : tried) {
        const char text[] = {a, b, c};
        u32 value = 0, n = 0;
        bool good = true;
        for (u32 i = 3; i-- != 0;) {
          if (text[i] == '\t' || text[i] == '\n' || text[i] == '\r') continue;
          const std::size_t digit = kBase45.find(text[i]);
          good = good && digit != kBase45.npos;
          value = value * 45 + static_cast<u32>(digit);
          ++n;
        }
        good = good && n != 1 && value <= (n == 2 ? 0xFFu : 0xFFFFu);
        out.clear();
        const bool ok = vk_decodeBase45(text, 3, out).ok;
        const u32 size = n == 0 ? 0 : n - 1;
        const bool isSame = !good || (out.size() == size && (size < 2 || out.byteAt(0) == value >> 8) &&
                                      (size < 1 || out.lastByte() == (value & 0xFF)));
        ASSERT_TRUE(ok == good && isSame) << testing::PrintToString(std::string(text, 3));
      }
}

TEST(Exhaustive, TriplesOfBytesThereAndBack) {
  std::string all;
  for (u32 high = 0; high < 256; high += kIsSlow ? 16 : 1) {
    all.clear();
    for (u32 low = 0; low < 0x10000; ++low)
      all += {static_cast<char>(high), static_cast<char>(low >> 8), static_cast<char>(low)};
    for (const char* const name : {"base64", "base64url", "hex", "base32", "base45", "ascii85"}) {
      StringBuffer text;
      DataBuffer back;
      ASSERT_TRUE(DataBuffer::encodeDB2(name, bytesOf(all), countOf(all), text));
      ASSERT_TRUE(back.appendEncoded(text.getString(), name) && textOf(back) == all) << name << " " << high;
      for (u32 i = 0; i < 0x10000 && name == "base64"s; ++i) {
        const u32 bits = high << 16 | i;
        for (u32 k = 0; k < 4; ++k) ASSERT_EQ(text.getString()[4 * i + k], kBase64[bits >> (18 - 6 * k) & 63]) << bits;
      }
    }
  }
}

}  // namespace
