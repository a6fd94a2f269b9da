// Every name, both ways.
#include <gtest/gtest.h>

#include "tests/support/Bytes.h"
#include "varnik/services/codecs/internal/EncodingTable.h"

namespace {

using vk_codec::TextCodec;

// What is expected back: the same bytes, but for what the format cannot carry.
std::string comesBack(TextCodec codec, std::string bytes) {
  if (codec == TextCodec::plain || codec == TextCodec::json) return bytes.substr(0, bytes.find('\0'));
  if (codec != TextCodec::decimal) return bytes;
  const std::size_t first = bytes.find_first_not_of('\0');
  return first == bytes.npos ? std::string(1, '\0') : bytes.substr(first);
}

// Encoded words hold text: here letters, blanks, umlauts and characters of four bytes.
std::string randomText(u32 n, u32 seed) {
  constexpr const char* kPieces[] = {"a", "Z", " ", "\xC3\xBC", "=", "?", "_", "\xF0\x9F\x90\x99"};
  std::mt19937 next(seed);
  std::string text = n == 0 ? "" : "x";
  while (text.size() + 1 < n) text += kPieces[next() % 8];
  return n < 2 ? text : text + "x";
}

std::string inputFor(TextCodec codec, u32 n) {
  const bool words = codec == TextCodec::wordB || codec == TextCodec::wordQ;
  return words ? randomText(n, n) : randomBytes(n, n);
}

void expectBack(const std::string& name, TextCodec codec, const std::string& bytes) {
  const std::string want = comesBack(codec, bytes);
  for (const char* const held : {"", "held"}) {
    StringBuffer text(held);
    ASSERT_TRUE(bufferOf(bytes).encodeDB(name.c_str(), text)) << name << ", " << bytes.size();
    ASSERT_EQ(textOf(text).substr(0, std::strlen(held)), held) << name;
    DataBuffer back = bufferOf(held);
    ASSERT_TRUE(back.appendEncoded(text.getString() + std::strlen(held), name.c_str())) << name << ", " << bytes.size();
    ASSERT_EQ(textOf(back), held + want) << name << ", " << bytes.size() << " bytes";
  }
}

TEST(RoundTrip, BringsBackWhatEveryNameWrites) {
  std::vector<std::string> names = {"qp-40", "qp-4", "qp--1", "fingerprint", "thumbprint"};
  for (const auto& row : vk_codec::encodingNames()) names.emplace_back(row.name);
  std::vector<u32> sizes;
  for (u32 n = 0; n <= 130; ++n) sizes.push_back(n);
  for (const u32 n : {255U, 256U, 257U, 1000U, 4095U, 4096U, 5000U, 20000U, 70000U}) sizes.push_back(n);
  for (const std::string& name : names)
    for (const u32 n : sizes) {
      const TextCodec codec = vk_codec::findEncodingName(name)->codec;
      expectBack(name, codec, inputFor(codec, n));
      if (HasFatalFailure()) return;
    }
}

// Bytes that formats have a way of their own with: zeros, all bits set, line ends, blanks at the end of a line.
TEST(RoundTrip, BringsBackWhatIsSpecial) {
  for (const auto& row : vk_codec::encodingNames()) {
    if (row.codec == TextCodec::wordB || row.codec == TextCodec::wordQ) continue;
    for (const std::string& unit :
         {std::string(1, '\0'), std::string("\xFF"), std::string("\r\n"), std::string("a \r\nb\t\n"), std::string("="),
          std::string(" "), std::string(".\r\n"), std::string("\\\"/%+&#xD;")})
      for (u32 count = 1; count < 90; ++count) {
        std::string bytes;
        for (u32 i = 0; i < count; ++i) bytes += unit;
        expectBack(std::string(row.name), row.codec, bytes);
        if (HasFatalFailure()) return;
      }
  }
}

}  // namespace
