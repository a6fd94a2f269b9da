#include <functional>

#include "tests/support/Test.h"

namespace {

std::string hexOf(std::string_view bytes, bool colons) {
  StringBuffer out("=");
  DataBuffer::toHexString2(bytesOf(bytes), countOf(bytes), colons, out);
  return textOf(out).substr(1);
}

std::string linesOf(std::string_view bytes, s32 perLine) {
  StringBuffer out("=");
  bufferOf(bytes).toHexLines(out, perLine);
  return textOf(out).substr(1);
}

// Digit by digit, the line break where the count says so.
std::string slowLines(std::string_view bytes, s32 perLine) {
  std::string out;
  s32 count = 0;
  for (const char c : bytes) {
    for (const int nibble : {static_cast<u8>(c) >> 4, c & 15}) out += "0123456789ABCDEF"[nibble];
    if (++count != perLine) continue;
    out += "\r\n";
    count = 0;
  }
  return out + "\r\n";
}

TEST(Hex, RendersDigitsAndColons) {
  EXPECT_EQ(hexOf(fromHex("00 0F A0 FF"), false), "000FA0FF");
  EXPECT_EQ(hexOf(fromHex("00 0F A0 FF"), true), "00:0F:A0:FF");
  EXPECT_EQ(hexOf("\x7F", true), "7F");
  EXPECT_EQ(hexOf("", true), "");
  EXPECT_EQ(hexOf(randomBytes(300), true).size(), 899U);
  StringBuffer out;
  DataBuffer::toHexString2(nullptr, 5, false, out);
  EXPECT_EQ(out.getSize(), 0U);
  bufferOf("AZ").toHexString(out);
  EXPECT_EQ(textOf(out), "415A");
}

TEST(Hex, RendersLines) {
  for (const u32 n : {1U, 3U, 4U, 6U, 15U, 16U, 17U, 231U, 245U, 1000U})
    for (const s32 perLine : {-1, 0, 1, 2, 4, 16, 17, 245, 0x7FFFFFFF}) {
      const std::string bytes = randomBytes(n, n);
      EXPECT_EQ(linesOf(bytes, perLine), slowLines(bytes, perLine)) << n << " bytes, " << perLine << " a line";
    }
  DataBuffer cleared = bufferOf("x");
  StringBuffer out;
  cleared.clear(), cleared.toHexLines(out, 4), DataBuffer().toHexLines(out, 4);
  EXPECT_TRUE(out.isEmpty());
}

TEST(Hex, GoesAsFarAsMemoryDoes) {
  const std::string bytes = randomBytes(1000);
  DataBuffer source = bufferOf(bytes);
  const std::pair<std::string, std::function<void(StringBuffer&)>> forms[] = {
      {hexOf(bytes, false), [&](StringBuffer& out) { DataBuffer::toHexString2(bytesOf(bytes), 1000, false, out); }},
      {hexOf(bytes, true), [&](StringBuffer& out) { DataBuffer::toHexString2(bytesOf(bytes), 1000, true, out); }},
      {linesOf(bytes, 50), [&](StringBuffer& out) { source.toHexLines(out, 50); }}};
  for (const auto& [whole, render] : forms) {
    StringBuffer out;
    ASSERT_TRUE(out.getAppendPtr(900));
    {
      const faults::FailAllocation fail(1, true);
      render(out);
    }
    EXPECT_TRUE(whole.starts_with(textOf(out)) && out.getSize() > 400) << out.getSize();
  }
}

TEST(Hex, RendersTheStringItself) {
  StringBuffer text("0123456789abcdef0123456789ABCDEF");
  DataBuffer::toHexString2(bytesOf(text.getString()), text.getSize(), false, text);
  EXPECT_EQ(textOf(text),
            "0123456789abcdef0123456789ABCDEF3031323334353637383961626364656630313233343536373839414243444546");
}

}  // namespace
