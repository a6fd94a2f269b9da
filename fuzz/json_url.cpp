// JSON and percent escapes: both ways, in the alphabet allowed, and any text against a slow decoder.
#include <cstring>

#include "fuzz/Fuzz.h"

namespace {

int hexAt(std::string_view s, std::size_t i, u32 n) {
  if (i + n > s.size() || s.substr(i, n).find_first_not_of("0123456789abcdefABCDEF") != s.npos) return -1;
  return std::stoi(std::string(s.substr(i, n)), nullptr, 16);
}

std::string urlDecoded(std::string_view s) {
  std::string out;
  for (std::size_t i = 0; i < s.size(); ++i) {
    const int value = s[i] == '%' ? hexAt(s, i + 1, 2) : -1;
    out += value < 0 ? s[i] : static_cast<char>(value);
    if (value >= 0) i += 2;
  }
  return out;
}

void checkUrl(std::string_view given, bool (*encode)(const u8*, u32, StringBuffer&), const char* marks) {
  StringBuffer text;
  CHECK(encode(bytesOf(given), countOf(given), text));
  for (u32 i = 0; i < text.getSize(); ++i) {
    const u8 c = static_cast<u8>(text.getString()[i]);
    CHECK(c == '%' || std::strchr(marks, c) || (c < 128 && std::isalnum(c)));
  }
  DataBuffer back;
  CHECK(UrlCodec::urlDecode(text.getString(), back) && viewOf(back) == given);
}

void checkJson(std::string_view given) {
  StringBuffer text, back;
  text.appendN(given.data(), countOf(given));
  CHECK(text.jsonEscape());
  for (u32 i = 0; i < text.getSize(); ++i) {
    const char c = text.getString()[i];
    CHECK(static_cast<u8>(c) >= 0x20 && c != '"');
    if (c == '\\') CHECK(std::strchr("bfnrtu\"\\", text.getString()[++i]));
  }
  CHECK(StringBuffer::jsonDecode(text.getString(), text.getSize(), back) && viewOf(back) == given);
}

/// Undoes \uXXXX alone; the rest is the caller's.
std::string jsonDecoded(std::string_view s, bool& clean) {
  constexpr std::string_view kNames = "bfnrt\"\\/", kBytes = "\b\f\n\r\t\"\\/";
  std::string out;
  for (std::size_t i = 0; i < s.size(); ++i) {
    const int unit = s[i] == '\\' && i + 1 < s.size() && s[i + 1] == 'u' ? hexAt(s, i + 2, 4) : -1;
    const std::size_t name = s[i] == '\\' && i + 1 < s.size() ? kNames.find(s[i + 1]) : kNames.npos;
    if (unit >= 0) {
      u32 c = static_cast<u32>(unit);
      i += 5;
      const int low = s.substr(i + 1, 2) == "\\u" ? hexAt(s, i + 3, 4) : -1;
      if (c >= 0xD800 && c < 0xDC00 && low >= 0xDC00 && low < 0xE000) {
        c = 0x10000 + ((c - 0xD800) << 10) + (static_cast<u32>(low) - 0xDC00);
        i += 6;
      } else if (c >= 0xD800 && c < 0xE000) {
        c = 0xFFFD;
      }
      const u32 tail = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
      out += static_cast<char>(tail == 0 ? c : (0xFF00u >> (tail + 1) & 0xFF) | c >> 6 * tail);
      for (u32 k = tail; k-- != 0;) out += static_cast<char>(0x80 | (c >> 6 * k & 0x3F));
    } else if (name != kNames.npos) {
      out += kBytes[name];
      ++i;
    } else {
      clean = clean && s[i] != '\\';
      out += s[i];
    }
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n) {
  const std::string_view given = Choices(data, n).rest();
  checkUrl(given, UrlCodec::encodeRfc3986, "-._~");
  checkUrl(given, UrlCodec::encodeRfc1738, "$-_.+!*'(),");
  checkUrl(given, UrlCodec::encodeRfc2396, "-_.!~*'()");
  checkJson(given);
  const std::string text(given.substr(0, given.find('\0')));
  DataBuffer url;
  StringBuffer json;
  bool clean = true;
  CHECK(UrlCodec::urlDecode(text.c_str(), url) && viewOf(url) == urlDecoded(text));
  const std::string expected = jsonDecoded(given, clean);
  CHECK(StringBuffer::jsonDecode(given.data(), countOf(given), json) == clean && viewOf(json) == expected);
  return 0;
}
