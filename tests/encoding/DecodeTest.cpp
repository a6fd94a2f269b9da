#include <gtest/gtest.h>

#include "tests/support/Bytes.h"
#include "varnik/encoding/internal/DecodeText.h"

namespace {

struct Decoded {
  const char *text, *name;
  std::string bytes;
  bool ok = true;
};

TEST(Decode, AppendsWhatTheTextStandsFor) {
  const Decoded cases[] = {
      {"AKv/AQ==", "base-64", fromHex("00ABFF01")},
      {" AKv/\r\nAQ ", " BASE64 ", fromHex("00ABFF01")},
      {"AKv_AQ", "base64url", fromHex("00ABFF01")},
      {" AKv_AQ== ", "modBase64", fromHex("00ABFF01")},
      {"AKv/&#xD;\nAQ==&#xD;\n", "base64_crEntity", fromHex("00ABFF01")},
      {"AKv/&#13;\nAQ==&#13;\n", "base64_cr13Entity", fromHex("00ABFF01")},
      {"  0a0B  ", "hexidecimal", fromHex("0A0B")},
      {" :0a:0b: ", "fingerprint", fromHex("0A0B")},
      {"0a:0g", "thumb", fromHex("0A"), false},
      {"MFRGG===", "base32", "abc"},
      {"A=42=\r\n=3d", "qp-40", "AB="},
      {"a%20b%2", "url", "a b%2"},
      {"1E6A", "base58", fromHex("00ABFF")},
      {"!3?,", "ascii85", fromHex("00ABFF")},
      {" 30U5", "base45", fromHex("00ABFF")},
      {"44031", "decimal", fromHex("ABFF")},
      {"a\\u00e9\\n\\\"", "json", "a\xC3\xA9\n\""},
      {"ab\\u0000cd", "json", "ab"},  // ends at the zero byte
      {"=?utf-8?B?aMOp?=", "Q", "h\xC3\xA9"},
      {"begin 644 x\n#`*O_\n`\nend\n", "uu", fromHex("00ABFF")},
      {"00ab ff\n", "eda", fromHex("00ABFF")},
      {"as it is", "ansi", "as it is"},
      {"1, 2,255", "declist", fromHex("0102FF")},
      {"12a3", "declist", fromHex("0C03")},
      {"1,256,3", "declist", fromHex("01"), false},
      {"1,4294967297", "declist", fromHex("01"), false},
      {"\xC3\xA9", "utf-8", "\xC3\xA9"},
      {"\xC3\xA9", "ISO-8859-1", "\xE9"},
      {"\xC3\xA9", " Latin1 ", "\xE9"},
      {"no charset", "such-a-name", "no charset"},
      {"", "such-a-name", ""},
      {"", "base64", ""},
  };
  for (const Decoded& c : cases)
    for (const char* const held : {"", "held"}) {
      DataBuffer out = bufferOf(held);
      EXPECT_EQ(out.appendEncoded(c.text, c.name), c.ok) << c.name << ": " << c.text;
      EXPECT_EQ(textOf(out), held + c.bytes) << c.name << ": " << c.text;
    }
}

TEST(Decode, AnswersNullsInTheirOrder) {
  DataBuffer out;
  EXPECT_TRUE(out.appendEncoded(nullptr, "hex"));
  EXPECT_TRUE(out.appendEncoded(nullptr, nullptr));
  EXPECT_FALSE(out.appendEncoded("41", nullptr));
  EXPECT_FALSE(out.appendEncoded("", nullptr));
  EXPECT_TRUE(out.appendEncodedById(nullptr, 1));
  EXPECT_TRUE(out.appendEncodedById("", -7));
  EXPECT_TRUE(out.appendDecList(nullptr));
  EXPECT_TRUE(out.appendDecList(""));
  EXPECT_TRUE(out.empty());
}

// Into a buffer that holds something, only the append of what was decoded decides.
TEST(Decode, ForgivesBase64IntoAFilledBuffer) {
  for (const s32 id : {1, 24, 10, 20}) {
    DataBuffer out;
    EXPECT_FALSE(out.appendEncodedById("QUJD!", id)) << id;
    EXPECT_EQ(textOf(out), "ABC") << id;
    EXPECT_TRUE(out.appendEncodedById("QUJD!", id)) << id;
    EXPECT_EQ(textOf(out), "ABCABC") << id;
  }
}

TEST(Decode, TakesEveryIdOfTheTable) {
  const struct {
    s32 id;
    const char *text, *bytes;
  } kIds[] = {
      {0, " A ", " A "},
      {6, " A ", " A "},
      {65001, "\xC3\xA9", "\xC3\xA9"},
      {1, "QQ", "A"},
      {24, "QQ", "A"},
      {3, " 41 ", "A"},
      {25, " 41 ", "A"},
      {10, "QQ", "A"},
      {20, "QQ", "A"},
      {2, "=41", "A"},
      {4, "%41", "A"},
      {7, " 28 ", "A"},
      {17, " 5l ", "A"},
      {18, " 4:1 ", "A"},
      {19, "65", "A"},
      {21, "K1", "A"},
      {22, "\\u0041", "A"},
      {23, "65", "A"},
      {26, " A ", "A"},
      {30, " IE ", "A"},
      {37, "begin 644 x\n!00``\n`\nend\n", "A"},
      {28591, "\xC3\xA9", "\xE9"},
  };
  for (const auto& c : kIds) {
    DataBuffer out;
    EXPECT_TRUE(out.appendEncodedById(c.text, c.id)) << c.id;
    EXPECT_EQ(textOf(out), c.bytes) << c.id;
  }
  for (const s32 id : {5, 8, 9, 11, 12, 13, 14, 15, 16, 27, 28, 29, 31, 32, 33, 34, 35, 36, 38, -1, 0x7FFFFFFF}) {
    DataBuffer out = bufferOf("held");
    EXPECT_FALSE(out.appendEncodedById("A", id)) << id;  // no code page has that number
    EXPECT_EQ(textOf(out), "held") << id;
  }
}

TEST(Decode, ReadsFromTheBufferItWritesTo) {
  for (const auto& [text, id] : {std::pair("QUJD", 1), std::pair("414243", 3), std::pair("65,66,67", 23),
                                 std::pair("ABC", 0), std::pair("\\u0041BC", 22), std::pair("ABC", 28591)}) {
    DataBuffer out = bufferOf(std::string(text).append(1, '\0'));
    out.minimizeMemoryUsage();
    ASSERT_TRUE(out.appendEncodedById(reinterpret_cast<const char*>(out.getData2()), id)) << id;
    EXPECT_EQ(textOf(out), std::string(text).append(1, '\0').append("ABC")) << id;
  }
  DataBuffer out = bufferOf(std::string_view("65,66,67\0", 9));
  EXPECT_TRUE(out.appendDecList(reinterpret_cast<const char*>(out.getData2())));
  EXPECT_EQ(textOf(out).substr(9), "ABC");
}

// Offsets count in the text given, what was trimmed or removed included.
TEST(Decode, TellsWhereTheFaultIs) {
  constexpr struct {
    s32 id;
    std::string_view text;
    u32 badAt;
  } kFaults[] = {
      {1, "Pz8-Pg", 3},  {1, " \nQUJD!", 6}, {20, " QUJD QR", 7},   {10, "QQ=D", 3},        {3, "\t4142zz ", 5},
      {18, "4:1:4z", 5}, {18, "4:1:4", 4},   {30, " MY1", 3},       {23, "1, 256", 3},      {19, " 12x4", 3},
      {19, "x", 0},      {22, "ab\\q", 2},   {1, "QUJD", kNoFault}, {19, " 12 ", kNoFault}, {18, "41:42", kNoFault},
  };
  for (const auto& c : kFaults) {
    DataBuffer out;
    EXPECT_EQ(vk_decodeText(c.id, c.text.data(), countOf(c.text), out).badAt, c.badAt) << c.id << ": " << c.text;
  }
}

}  // namespace
