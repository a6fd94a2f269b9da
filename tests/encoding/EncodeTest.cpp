#include <gtest/gtest.h>

#include <set>

#include "tests/support/Bytes.h"
#include "varnik/services/codecs/internal/EncodingTable.h"

namespace {

std::string encoded(const char* name, std::string_view bytes, bool* answer = nullptr) {
  StringBuffer out;
  const bool ok = DataBuffer::encodeDB2(name, bytes.empty() ? nullptr : bytesOf(bytes), countOf(bytes), out);
  if (answer) *answer = ok;
  return textOf(out);
}

const std::string kSample = fromHex("00 AB FF");

// The bytes 00 AB FF, and none at all, under every name. What other programs give for the same bytes.
constexpr struct {
  const char *name, *text, *ofNothing;
} kRows[] = {
    {"base64", "AKv/", ""},
    {"base-64", "AKv/", ""},
    {"base64_mime", "AKv/\r\n", ""},
    {"base58", "1E6A", ""},
    {"modBase64", "AKv_", ""},
    {"base64url", "AKv_", ""},
    {"Base32", "ACV76===", ""},
    {"qp-40", "=00=AB=FF", ""},
    {"qp", "=00=AB=FF", ""},
    {"quoted-printable", "=00=AB=FF", ""},
    {"hex", "00ABFF", ""},
    {"hexidecimal", "00ABFF", ""},
    {"hexlower", "00abff", ""},
    {"hex_lower", "00abff", ""},
    {"hex-lower", "00abff", ""},
    {"base64_crEntity", "AKv/&#xD;\n", ""},
    {"base64_cr13Entity", "AKv/&#13;\n", ""},
    {"finger", "00:ab:ff", ""},
    {"fingerprint", "00:ab:ff", ""},
    {"thumb", "00:ab:ff", ""},
    {"declist", "0,171,255", ""},
    {"url", "%00%AB%FF", ""},
    {"url_rfc1738", "%00%AB%FF", ""},
    {"url_rfc2396", "%00%AB%FF", ""},
    {"url_rfc3986", "%00%AB%FF", ""},
    {"url_oauth", "%00%AB%FF", ""},
    {"uu", "begin 644 data\n#`*O_\n`\nend\n", "begin 644 data\n`\nend\n"},
    {"eda", "00ab ff", ""},
    {"decimal", "44031", "0"},
    {"json", "\\u0000\xAB\xFF", ""},
    {"ascii85", "!3?,", ""},
    {"base45", " 30U5", ""},
};

TEST(Encode, GivesTheTextOfEveryName) {
  for (const auto& row : kRows) {
    bool ok = false;
    EXPECT_EQ(encoded(row.name, kSample, &ok), row.text) << row.name;
    EXPECT_TRUE(ok) << row.name;
    EXPECT_EQ(encoded(row.name, "", &ok), row.ofNothing) << row.name;
    EXPECT_TRUE(ok) << row.name;
  }
  for (const char* const name : {"asc", "us-ascii", "usascii", "ascii", "ansi"})
    EXPECT_EQ(encoded(name, kSample), kSample);
  EXPECT_EQ(encoded("B", "h\xC3\xA9"), "=?utf-8?B?aMOp?=");
  EXPECT_EQ(encoded("q", "h\xC3\xA9"), "=?utf-8?Q?h=C3=A9?=");
}

std::string withBlanks(std::string name) {
  return std::string(" \t\r\n\v\f").append(name).append("\f\v\n\r\t ");
}
std::string upper(std::string name) {
  for (char& c : name) c = static_cast<char>(std::toupper(static_cast<u8>(c)));
  return name;
}

// Trimmed and without regard to case, in the order of the table: no name hides behind an earlier one.
TEST(Encode, FindsNamesAsThePeopleWriteThem) {
  std::set<std::string> seen;
  for (const auto& row : vk_codec::encodingNames()) {
    const std::string name(row.name), text = encoded(name.c_str(), "A~?");
    EXPECT_TRUE(seen.insert(name).second) << name;
    EXPECT_EQ(vk_codec::findEncodingName(name), &row);
    EXPECT_EQ(encoded(withBlanks(name).c_str(), "A~?"), text) << name;
    if (row.match == vk_codec::NameMatch::prefixExactCase) continue;
    EXPECT_EQ(encoded(upper(name).c_str(), "A~?"), text) << name;
    EXPECT_EQ(encoded(withBlanks(upper(name)).c_str(), "A~?"), text) << name;
  }
  EXPECT_EQ(seen.size(), 38U);
}

TEST(Encode, EmptiesTheOutputForWhatIsNoName) {
  for (const char* const name : {"", " ", "base 64", "Finger", "Thumb", "FINGER", "hexx", "qpx", "base64url ,", "bas",
                                 "utf-8", "url_", "-", "b\xC2\xA0"}) {
    StringBuffer out("held before");
    EXPECT_FALSE(DataBuffer::encodeDB2(name, bytesOf("x"), 1, out)) << name;
    EXPECT_EQ(textOf(out), "") << name;
  }
  StringBuffer out("held before");
  EXPECT_FALSE(bufferOf("x").encodeDB(nullptr, out));
  EXPECT_EQ(textOf(out), "");
}

TEST(Encode, StripsOnlyItsOwnPadding) {
  StringBuffer out("==");
  EXPECT_TRUE(DataBuffer::encodeDB2("base64url", nullptr, 0, out));
  EXPECT_EQ(textOf(out), "==");
  EXPECT_TRUE(DataBuffer::encodeDB2("base64url", bytesOf("A"), 1, out));
  EXPECT_EQ(textOf(out), "==QQ");
  EXPECT_EQ(encoded("modBase64", "A"), "QQ==");
}

TEST(Encode, TakesTheLineLengthFromTheName) {
  const std::string bytes(200, 'a');
  const std::string byDefault = encoded("qp", bytes);
  const auto longest = [](const std::string& text) {
    std::size_t most = 0, start = 0, end;
    while ((end = text.find('\n', start)) != text.npos) most = std::max(most, end - start), start = end + 1;
    return std::max(most, text.size() - start);
  };
  EXPECT_LE(longest(encoded("qp-40", bytes)), 41U);  // the CR counted
  EXPECT_GT(longest(encoded("QP-40", bytes)), 36U);
  EXPECT_EQ(encoded("qp-40", bytes), encoded(" Qp-40 ", bytes));
  for (const char* const name : {"qp-", "qp-0", "qp-x", "qp-1", "qp--5", "qp-99999999999", "qp-76"})
    EXPECT_EQ(encoded(name, bytes), byDefault) << name;
}

TEST(Encode, RendersRangesAndCursors) {
  DataBuffer b = bufferOf("abcde");
  StringBuffer out("=");
  EXPECT_TRUE(b.getEncodedRange("asc", 3, 100, out));
  EXPECT_TRUE(b.getEncodedRange("asc", 0, 2, out));
  EXPECT_TRUE(b.getEncodedRange("asc", 0, 0, out));
  EXPECT_FALSE(b.getEncodedRange("asc", 5, 1, out));
  EXPECT_FALSE(b.getEncodedRange("none", 5, 1, out));
  EXPECT_FALSE(DataBuffer().getEncodedRange("asc", 0, 1, out));
  EXPECT_EQ(textOf(out), "=deab");

  u32 index = 2;
  EXPECT_TRUE(b.parseDataEnc(index, 3, "asc", out));
  EXPECT_EQ(index, 5U);
  EXPECT_FALSE(b.parseDataEnc(index, 1, "asc", out));
  EXPECT_TRUE(b.parseDataEnc(index, 0, "none", out));
  EXPECT_EQ(textOf(out), "=deabcde");
  index = 4;
  EXPECT_FALSE(b.parseDataEnc(index, 0xFFFFFFFF, "asc", out));
  EXPECT_FALSE(b.parseDataEnc(index, 0xFFFFFFFC, "asc", out));
  EXPECT_EQ(index, 4U);
  EXPECT_TRUE(b.parseDataEnc(index, 1, "none", out));
  EXPECT_EQ(index, 5U);
  EXPECT_EQ(textOf(out), "");
  index = 9;
  EXPECT_TRUE(b.parseDataEnc(index, 0, "asc", out));
  EXPECT_EQ(index, 9U);
}

// The bytes to encode are the string's own, and so is the name.
TEST(Encode, ReadsFromTheStringItWritesTo) {
  for (const auto& row : vk_codec::encodingNames()) {
    const std::string name(row.name), content = name + "\x01 of some length, so that the block moves when it grows";
    StringBuffer out(content.c_str());
    ASSERT_TRUE(DataBuffer::encodeDB2(name.c_str(), bytesOf(out.getString()), out.getSize(), out)) << name;
    EXPECT_EQ(textOf(out), content + encoded(name.c_str(), content)) << name;
  }
  StringBuffer hex("hex");
  EXPECT_TRUE(DataBuffer::encodeDB2(hex.getString(), bytesOf("A"), 1, hex));
  EXPECT_EQ(textOf(hex), "hex41");
}

}  // namespace
