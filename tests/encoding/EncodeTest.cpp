// Bytes under every name: what other programs give for them, that it comes back, and the shape of lines and words.

#include "tests/support/Test.h"
#include "varnik/encoding/internal/DecodeText.h"
#include "varnik/services/codecs/internal/EncodingTable.h"

namespace {

using vk_codec::TextCodec;

std::string encoded(const char* name, std::string_view bytes) {
  StringBuffer out("=");
  EXPECT_TRUE(DataBuffer::encodeDB2(name, bytes.empty() ? nullptr : bytesOf(bytes), countOf(bytes), out)) << name;
  return textOf(out).substr(1);
}

// Names of one text: the number that decodes it, and what they write for 00 AB FF.
const struct {
  s32 id;
  std::string_view text;
  std::vector<std::string> names;
} kNames[] = {
    {1, "AKv/", {"base64", "base-64"}},
    {1, "AKv/\r\n", {"base64_mime"}},
    {1, "AKv/&#xD;\n", {"base64_crEntity"}},
    {1, "AKv/&#13;\n", {"base64_cr13Entity"}},
    {2, "=00=AB=FF", {"qp", "qp-40", "qp-", "qp-x", "quoted-printable"}},
    {3, "00ABFF", {"hex", "hexidecimal"}},
    {3, "00abff", {"hexlower", "hex_lower", "hex-lower"}},
    {3, "00ab ff", {"eda"}},
    {4, "%00%AB%FF", {"url", "url_rfc1738", "url_rfc2396", "url_rfc3986", "url_oauth"}},
    {6, "\0\xAB\xFF"sv, {"asc", "us-ascii", "usascii", "ascii", "ansi"}},
    {7, "1E6A", {"base58"}},
    {10, "AKv_", {"modBase64"}},
    {17, "!3?,", {"ascii85"}},
    {18, "00:ab:ff", {"finger", "fingerprint", "thumb", "thumbprint"}},
    {19, "44031", {"decimal"}},
    {20, "AKv_", {"base64url"}},
    {21, " 30U5", {"base45"}},
    {22, "\\u0000\xAB\xFF", {"json"}},
    {23, "0,171,255", {"declist"}},
    {26, "=?utf-8?B?AKv/?=", {"b"}},
    {26, "=?utf-8?Q?=00=AB=FF?=", {"q"}},
    {30, "ACV76===", {"Base32"}},
    {37, "begin 644 data\n#`*O_\n`\nend\n", {"uu"}},
};

// In any case, but for two prefixes, and between white space.
TEST(Encode, KnowsEveryName) {
  GuardedBytes area(64);
  std::set<const vk_codec::EncodingName*> seen;
  for (const auto& row : kNames)
    for (const std::string& name : row.names) {
      const auto* const found = vk_codec::findEncodingName(name);
      std::string shouted = name;
      if (found->match != vk_codec::NameMatch::prefixExactCase)
        for (char& c : shouted) c = static_cast<char>(std::toupper(static_cast<u8>(c)));
      seen.insert(found);
      for (const std::string& each : {name, " \t\r\n\v\f" + shouted + "\f\v\n\r\t "}) {
        const auto* const beforeThePage = reinterpret_cast<const char*>(area.ending(each + '\0'));
        EXPECT_EQ(_clsEncode::encodingIdForName(beforeThePage, nowhere), row.id) << each;
        EXPECT_EQ(encoded(each.c_str(), "\0\xAB\xFF"sv), row.text) << each;
        EXPECT_EQ(encoded(each.c_str(), ""), row.id == 19   ? "0"
                                             : row.id == 37 ? "begin 644 data\n`\nend\n"
                                                            : "")
            << each;
      }
    }
  EXPECT_EQ(seen.size(), vk_codec::encodingNames().size());
  for (const char* const name : {"", " ", "base 64", "Finger", "Thumb", "FINGER", "hexx", "qpx", "qpp", "base64url ,",
                                 "bas", "utf-8", "url_", "-", "-hex", "b\xC2\xA0", static_cast<const char*>(nullptr)}) {
    StringBuffer out("held before");
    EXPECT_FALSE(DataBuffer::encodeDB2(name, bytesOf("x"), 1, out));
    EXPECT_EQ(textOf(out), "") << (name ? name : "null");
    EXPECT_EQ(_clsEncode::encodingIdForName(name, nowhere), 0) << (name ? name : "null");
  }
}

// The examples of the standards, and what other programs give: bytes, |, text.
const struct {
  const char* name;
  std::vector<std::string_view> cases;
} kVectors[] = {
    {"base64", {"f|Zg==", "fo|Zm8=", "foobar|Zm9vYmFy", "\xFB\xEF\xFF|++//"}},
    {"base64url", {"\xFB\xEF\xFF|--__", "A|QQ"}},
    {"modbase64", {"A|QQ=="}},
    {"base32", {"f|MY======", "fo|MZXQ====", "foo|MZXW6===", "foob|MZXW6YQ=", "fooba|MZXW6YTB"}},
    {"base45", {"AB|BB8", "Hello!!|%69 VD92EX0", "base-45|UJCLQE7W581"}},
    {"ascii85",
     {"\0|!!"sv, "\0\0\0\0\0|z!!"sv, "abc|@:E^", "\xFF\xFF\xFF|s8W*", "\xFF\xFF\xFF\xFF|s8W-!",
      "Man is distinguished|9jqo^BlbD-BleB1DJ+*+F(f,q"}},
    {"base58",
     {"\0\0\0|111"sv, "bbb|a3gV", "Hello World!|2NEpo7TZRRrLZSi2U", "\0\0\x28\x7F\xB4\xCD|11233QC4"sv,
      "The quick brown fox jumps over the lazy dog.|USm3fpXnKG5EUBx2ndxBDMPVciP5hGey2Jh4NDv6gmeo1LkMeiKrLJUUBk6Z"}},
    {"decimal", {"\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF|18446744073709551615", "\1\0\0\0\0\0\0\0\0|18446744073709551616"sv}},
    {"qp",
     {"a=b\xE9\x7F|a=3Db=E9=7F", "a \r\nb\t\r\n|a=20\r\nb=09\r\n", "a b |a b=20", "a  |a =20",
      "a\rb\nc\n\rd|a=0Db=0Ac=0A=0Dd", "\r\r\n|=0D\r\n"}},
    {"qp-4", {"\xFF\xFF|=FF=\r\n=FF"}},
    {"b", {"Gr\u00FC\u00DFe|=?utf-8?B?R3LDvMOfZQ==?="}},
    {"q", {"Gr\u00FC\u00DFe an_alle?|=?utf-8?Q?Gr=C3=BC=C3=9Fe_an=5Falle=3F?="}},
    {"eda",
     {"\x0A\x1B\xC3|0a1b c3",
      "0123456789abcdef0123456789abcdef0|"
      "3031 3233 3435 3637 3839 6162 6364 6566 3031 3233 3435 3637 3839 6162 6364 6566\n30"}},
    {"url_rfc1738", {"$-_.+!*'(),~|$-_.+!*'(),%7E"}},
    {"url_rfc2396", {"$-_.+!*'(),~|%24-_.%2B!*'()%2C~"}},
    {"url", {"$-_.+!*'(),~|%24-_.%2B%21%2A%27%28%29%2C~"}},
    {"json", {"\x01\"\\/\b\t\n\f\r\x1F\x7F|\\u0001\\\"\\\\/\\b\\t\\n\\f\\r\\u001f\x7F"}},
};

TEST(Encode, AgreesWithOtherPrograms) {
  for (const auto& row : kVectors)
    for (const std::string_view one : row.cases) {
      const std::string bytes(one.substr(0, one.find('|'))), text(one.substr(one.find('|') + 1));
      DataBuffer back;
      EXPECT_EQ(encoded(row.name, bytes), text);
      EXPECT_TRUE(back.appendEncoded(text.c_str(), row.name) && textOf(back) == bytes) << text;
    }
  const std::string x75(75, 'x'), x76(76, 'x'), x73(73, 'x');  // the last column is free where the line ends by itself
  const std::string twoLines = std::string(x76).append("\r\n").append(x76);
  for (const auto& [bytes, text] : {std::pair(twoLines, twoLines),
                                    {x76 + "x", x75 + "=\r\nxx"},
                                    {x75 + " ", x75 + "=\r\n=20"},
                                    {x73 + " \r\n", x73 + "=20\r\n"},
                                    {x75 + "\x7F\r\n", x75 + "=\r\n=7F\r\n"},
                                    {x73 + "\xFF", x73 + "=FF"},
                                    {x73 + "x\xFF", x73 + "x=\r\n=FF"}})
    EXPECT_EQ(encoded("qp", bytes), text);
  for (const char* const name : {"qp-", "qp-0", "qp-x", "qp-1", "qp--5", "qp-2147483647", "qp-99999999999", "qp-76"})
    EXPECT_EQ(encoded(name, x76 + x76), encoded("qp", x76 + x76)) << name;
  EXPECT_EQ(encoded("qp-2147483646", x76 + x76), x76 + x76);
  for (const char* const charset : {"utf-8", "", static_cast<const char*>(nullptr), x76.c_str()}) {
    StringBuffer word;
    EXPECT_TRUE(ContentEncoder::encodeWordQ(bytesOf("a"), 1, charset, word));
    EXPECT_EQ(textOf(word), "=?" + (charset == x76.c_str() ? x76 : "utf-8") + "?Q?a?=");
  }
}

TEST(Encode, ReadsTheNumberOfAName) {
  const std::tuple<const char*, std::vector<const char*>, s32> kNumbers[] = {
      {"qp-%d", {"QP-40x", "qp-40", "qp- \t+40"}, 40},
      {"QP-%d", {"qp-+5", "qp-005"}, 5},
      {"qp-%d", {"qp--5"}, -5},
      {"qp-%d", {"qp-4294967296", "qp-2147483647"}, 2147483647},
      {"qp-%d", {"qp--2147483648", "qp--99999999999999999999"}, -2147483647 - 1},
      {"%d", {"12"}, 12},
      {"%-%d", {"%-4"}, 4},
  };
  s32 value = 77;
  for (const auto& [format, texts, want] : kNumbers)
    for (const char* text : texts) {
      EXPECT_TRUE(TextScan::scanOne(text, format, &value) == 1 && value == want) << text;
      value = 77;
    }
  for (const char* text : {"qp-", "qp-x", "qp--", "qp-- 4", "qp-\0164", "qp- \0164", "qp-\0104", "qp"})
    EXPECT_EQ(TextScan::scanOne(text, "qp-%d", &value), 0) << text;
  EXPECT_EQ(TextScan::scanOne("qp-4", "qp-4", &value) + TextScan::scanOne(nullptr, "%d", &value), 0);
  EXPECT_EQ(TextScan::scanOne("1", nullptr, &value) + TextScan::scanOne("1", "%d", nullptr), 0);
  EXPECT_EQ(value, 77);
}

TEST(Encode, RendersRangesAndCursors) {
  DataBuffer b = bufferOf("abcde");
  StringBuffer out("=");
  EXPECT_TRUE(b.getEncodedRange("asc", 3, 100, out) && b.getEncodedRange("asc", 0, 2, out) &&
              b.getEncodedRange("asc", 0, 0, out));
  EXPECT_FALSE(b.getEncodedRange("asc", 5, 1, out) || b.getEncodedRange("none", 5, 1, out) ||
               DataBuffer().getEncodedRange("asc", 0, 1, out));
  EXPECT_EQ(textOf(out), "=deab");
  constexpr struct {
    u32 index, n;
    const char* name;
    bool ok;
    u32 end;
    const char* text;
  } kCursors[] = {{2, 3, "asc", true, 5, "=cde"},
                  {5, 1, "asc", false, 5, "="},
                  {5, 0, "none", true, 5, "="},
                  {4, 0xFFFFFFFF, "asc", false, 4, "="},
                  {4, 0xFFFFFFFC, "asc", false, 4, "="},
                  {4, 1, "none", true, 5, ""},
                  {9, 0, "asc", true, 9, "="}};
  for (const auto& c : kCursors) {
    StringBuffer text("=");
    u32 index = c.index;
    EXPECT_EQ(b.parseDataEnc(index, c.n, c.name, text), c.ok) << c.index;
    EXPECT_EQ(index, c.end);
    EXPECT_EQ(textOf(text), c.text) << c.index;
  }
}

// The bytes to encode are the string's own, and so is the name.
TEST(Encode, ReadsFromTheStringItWritesTo) {
  for (const auto& row : vk_codec::encodingNames()) {
    const std::string name(row.name), content = name + "\x01 of some length, so that the block moves when it grows";
    StringBuffer out(content.c_str());
    ASSERT_TRUE(DataBuffer::encodeDB2(name.c_str(), bytesOf(out.getString()), out.getSize(), out)) << name;
    EXPECT_EQ(textOf(out), content + encoded(name.c_str(), content)) << name;
  }
  StringBuffer hex("hex"), json("a\\n");
  EXPECT_TRUE(DataBuffer::encodeDB2(hex.getString(), bytesOf("A"), 1, hex) && textOf(hex) == "hex41");
  for (u32 i = 0; i < 8; ++i) ASSERT_TRUE(StringBuffer::jsonDecode(json.getString() + 1, 2, json));
  EXPECT_EQ(textOf(json), "a\\n\n\n\n\n\n\n\n\n");
  EXPECT_TRUE(StringBuffer::jsonDecode("", 0, json));
  StringBuffer full(std::string(200, 'x').c_str());
  for (const u32 k : {1u, 2u}) {  // the copy's memory, and the text's
    const faults::FailAllocation fail(k, true);
    EXPECT_FALSE(DataBuffer::encodeDB2("base64", bytesOf(full.getString()), full.getSize(), full));
  }
}

TEST(Encode, RefusesWhatDoesNotFit) {
  const u8* const few = bytesOf("nothing of the counts below is read");
  StringBuffer text("kept");
  EXPECT_FALSE(
      ContentEncoder::encodeBase64(few, 0xC0000000, text) || ContentEncoder::encodeModBase64(few, 0xFFFFFFFF, text) ||
      ContentEncoder().encodeBase64Mime(few, 0xBD000000, text) || ContentEncoder::encodeBase32(few, 0xA0000000, text));
  EXPECT_TRUE(ContentEncoder::encodeBase32(few, 0, text) && ContentEncoder::encodeBase45(few, 0, text, nowhere) &&
              ContentEncoder::encodeBase58(few, 0, text, nowhere));
  EXPECT_EQ(textOf(text), "kept");
  EXPECT_TRUE(Uu().uu_encode(bufferOf("Cat"), "600", "cat.txt", text) && Uu().uu_encode({}, nullptr, nullptr, text));
  EXPECT_EQ(textOf(text), "keptbegin 600 cat.txt\n#0V%T\n`\nend\nbegin 644 data\n`\nend\n");
}

// ---- There and back ----

// What is expected back: the same bytes, but for what the format cannot carry.
std::string comesBack(TextCodec codec, std::string bytes) {
  if (codec == TextCodec::plain || codec == TextCodec::json) return bytes.substr(0, bytes.find('\0'));
  if (codec != TextCodec::decimal) return bytes;
  const std::size_t first = bytes.find_first_not_of('\0');
  return first == bytes.npos ? std::string(1, '\0') : bytes.substr(first);
}

// Random bytes, zeros before them, or pieces that formats have a way of their own with; text for encoded words.
std::string inputFor(TextCodec codec, u32 n, u32 kind) {
  constexpr std::string_view kPieces[] = {"word", " ",  "\t", "\u00FC", "=",   "?",   "_",        "\U0001F419",
                                          "\r\n", "\r", "\n", "\0"sv,   "%41", "\\u", "\"/&#xD;", "\xFF\xFE"};
  const bool words = codec == TextCodec::wordB || codec == TextCodec::wordQ;
  const std::string random = randomBytes(n, n);
  if (!words && kind < 2) return std::string(kind * n / 2, '\0') + random.substr(kind * n / 2);
  std::string text;
  for (u32 i = 0; text.size() < n; ++i)
    text += words && text.empty() ? "x" : kPieces[static_cast<u8>(random[i]) % (words ? 8 : 16)];
  return words && n != 0 ? text + "x" : text;
}

TEST(RoundTrip, BringsBackWhatEveryNameWrites) {
  std::vector<std::string> names = {"qp-40", "qp-4", "qp--1", "fingerprint", "thumbprint"};
  for (const auto& row : vk_codec::encodingNames()) names.emplace_back(row.name);
  std::vector<u32> sizes = {255, 256, 257, 1000, 4095, 4096, 5000, 20000, 70000};
  for (u32 n = 0; n <= 130; ++n) sizes.push_back(n);
  for (const std::string& name : names)
    for (const u32 n : sizes)
      for (u32 kind = 0; kind < 3; ++kind) {
        const TextCodec codec = vk_codec::findEncodingName(name)->codec;
        const std::string bytes = inputFor(codec, n, kind), text = encoded(name.c_str(), bytes);
        DataBuffer back;
        ASSERT_TRUE(back.appendEncoded(text.c_str(), name.c_str())) << name << ", " << n;
        ASSERT_EQ(textOf(back), comesBack(codec, bytes)) << name << ", " << n << " bytes";
      }
}

// Blanks and line ends anywhere, and one wrong character: it is found where it stands, and what comes before it is
// right.
TEST(RoundTrip, FindsTheWayThroughWhiteSpace) {
  Random random(11);
  const std::string_view kBlanks[] = {" ", "\r", "\n", "\t", "\v", "\f", "&#xD;"};
  for (const auto& [name, id, first, count] : {std::tuple{"base64", 1, 0u, 6u},
                                               {"base64", 1, 0u, 7u},
                                               {"base64url", 20, 0u, 6u},
                                               {"hex", 3, 0u, 6u},
                                               {"base32", 30, 0u, 6u},
                                               {"base58", 7, 0u, 6u},
                                               {"ascii85", 17, 0u, 6u},
                                               {"base45", 21, 1u, 3u}})
    for (u32 round = 0; round < 300; ++round) {
      const std::string plain = randomBytes(random.below(round % 20 == 0 ? 9000 : 400), round);
      const u32 gap = 2 + random.below(100);
      std::string text;
      for (const char c : encoded(name, plain)) {
        while (random.below(gap) == 0) text += kBlanks[first + random.below(count)];
        text += c;
      }
      DataBuffer out, part;
      ASSERT_TRUE(vk_decodeText(id, text.c_str(), countOf(text), out).ok) << name << ", round " << round;
      ASSERT_EQ(textOf(out), plain) << name << ", round " << round;
      const u32 at = random.below(countOf(text) + 1);
      if (id == 17 || at >= text.find('=') || text.find(';') != text.npos) continue;  // `!` is a digit of Ascii85
      text.insert(at, 1, "!\x80\x01~"[random.below(4)]);
      ASSERT_EQ(vk_decodeText(id, text.c_str(), countOf(text), part).badAt, at) << name << ", round " << round;
      ASSERT_EQ(textOf(part), plain.substr(0, part.size())) << name << ", round " << round;
    }
}

// Long inputs go piece by piece: what ends a line, or may, stands across the border.
TEST(RoundTrip, CrossesTheBordersOfPieces) {
  for (const char* const name : {"qp-2147483646", "qp", "url", "json"})
    for (const auto& [before, tail] : {std::pair(0u, " \r\ny"),
                                       {1u, "\t\r\ny"},
                                       {2u, " \r\ny"},
                                       {3u, " \r\ny"},
                                       {0u, "\n"},
                                       {0u, "\r"},
                                       {0u, "\ry"}}) {
      const std::string bytes = std::string((1 << 24) - before, 'x') + tail;
      StringBuffer text;
      DataBuffer back;
      EXPECT_TRUE(bufferOf(bytes).encodeDB(name, text));
      EXPECT_EQ(std::string_view(text.getString(), text.getSize()).find("=0D=0A"), std::string_view::npos);
      EXPECT_TRUE(back.appendEncoded(text.getString(), name) && textOf(back) == bytes) << name << tail;
    }
  StringBuffer out;
  const std::string bytes((1 << 24) + (1 << 22), '\xFF');
  const faults::FailAllocation fail(2, true);  // the room of the second piece
  EXPECT_FALSE(DataBuffer::encodeDB2("qp", bytesOf(bytes), countOf(bytes), out));
}

// Text of this length is written past the caches once there is room: at every offset it is the text written before.
TEST(RoundTrip, WritesLargeTextsIntoUsedMemory) {
  DataBuffer bytes = bufferOf(std::string((25 << 20) + 1, 'x'));
  for (u32 i = 0; i < bytes.getSize(); ++i) bytes.getData2()[i] = static_cast<u8>(i * 37 + (i >> 8));
  for (const char* const name : {"hex", "hexlower", "base64", "base64url", "modBase64"}) {
    StringBuffer fresh, used;
    ASSERT_TRUE(bytes.encodeDB(name, fresh) && used.append(fresh) && used.append("more than one line of room"));
    const std::string_view want(fresh.getString(), fresh.getSize());
    for (const std::string_view before : {"", "a", "ab", "abcd"}) {
      const char* const block = used.getString();
      used.weakClear();
      ASSERT_TRUE(used.append(before.data()) && bytes.encodeDB(name, used));
      EXPECT_EQ(used.getString(), block);
      EXPECT_TRUE(std::string_view(used.getString(), used.getSize()).substr(before.size()) == want) << name << before;
    }
  }
}

TEST(Lines, EndAsTheirNameSays) {
  for (const u32 n : {0U, 1U, 56U, 57U, 58U, 114U, 500U}) {
    const std::string plain = randomBytes(n);
    std::string mime, entity;
    for (u32 i = 0; i < n; i += 57) {
      const std::string line = encoded("base64", plain.substr(i, 57));
      mime += line + "\r\n";
      entity += line + "&#xD;\n";
    }
    EXPECT_EQ(encoded("base64_mime", plain), mime);
    EXPECT_EQ(encoded("base64_crEntity", plain), entity);
  }
}

TEST(Lines, OfQuotedPrintableStayWithinTheLimit) {
  for (u32 length = 4; length <= 80; ++length)
    for (u32 n = 0; n < 400; n += 31) {
      const std::string name = "qp-" + std::to_string(length),
                        text = encoded(name.c_str(), inputFor(TextCodec::quotedPrintable, n + length, n % 3));
      for (std::size_t start = 0, end = 0; start <= text.size(); start = end + 2) {
        end = std::min(text.find("\r\n", start), text.size());
        ASSERT_LE(end - start, length) << "limit " << length;
        ASSERT_TRUE(end == start || (text[end - 1] != ' ' && text[end - 1] != '\t')) << "limit " << length;
      }
      for (const char c : text) ASSERT_TRUE((c >= ' ' && c < 0x7F) || c == '\t' || c == '\r' || c == '\n');
    }
}

// The first characters of each length at each offset: no word passes 75 characters or holds part of a character.
TEST(Lines, OfEncodedWordsSplitBetweenCharacters) {
  for (const std::string character : {"\u00E9", "\u0800", "\U00010000"})
    for (u32 offset = 0; offset < 60; ++offset)
      for (const char* const name : {"b", "q"}) {
        std::string bytes = std::string(offset, 'a') + repeated(character, 30 * character.size()), all;
        const std::string text = encoded(name, bytes);
        for (std::size_t start = 0, end = 0; start < text.size(); start = end + 3) {
          end = std::min(text.find("\r\n ", start), text.size());
          ASSERT_LE(end - start, 75u);
          DataBuffer word;
          word.appendEncoded(text.substr(start, end - start).c_str(), name);
          ASSERT_EQ(word.numPartialTrailingUtf8Bytes(), 0u) << text;
          all += textOf(word);
        }
        ASSERT_EQ(all, bytes) << "offset " << offset;
      }
}

}  // namespace
