#include "tools/vkbuf/Text.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "varnik/services/strings/StringBuffer.h"

std::optional<u64> parseCount(std::string_view text) {
  int base = 10, shift = 0;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    base = 16;
    text.remove_prefix(2);
  }
  constexpr std::string_view kUnits = "kMG";
  if (const size_t unit = text.empty() ? text.npos : kUnits.find(text.back()); unit != kUnits.npos) {
    shift = 10 * (static_cast<int>(unit) + 1);
    text.remove_suffix(1);
  }
  u64 value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size() || value > (~u64{0} >> shift)) return std::nullopt;
  return value << shift;
}

namespace {

// How many bytes the character at data[0, n) has; 0 when it is none. The second byte decides about overlong forms,
// surrogates and what lies past U+10FFFF.
u32 utf8Length(const u8* data, u32 n) {
  const u8 lead = data[0];
  if (lead < 0x80) return 1;
  const u32 length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || n < length) return 0;
  const u8 low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const u8 high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  if (data[1] < low || data[1] > high) return 0;
  for (u32 i = 2; i < length; ++i)
    if ((data[i] & 0xC0) != 0x80) return 0;
  return length;
}

}  // namespace

u32 firstBadUtf8(const u8* data, u32 n) {
  u32 at = 0;
  while (at < n) {
    const u32 length = utf8Length(data + at, n - at);
    if (length == 0) return at;
    at += length;
  }
  return n;
}

std::string nameOfByte(u8 b) {
  char text[16];
  if (b > 0x20 && b < 0x7F)
    std::snprintf(text, sizeof text, "'%c' (0x%02x)", b, b);
  else
    std::snprintf(text, sizeof text, "byte 0x%02x", b);
  return text;
}

std::string jsonText(std::string_view text) {
  StringBuffer escaped;
  const u8* const data = reinterpret_cast<const u8*>(text.data());
  for (u32 at = 0, n = static_cast<u32>(text.size()); at < n;) {
    const u32 length = firstBadUtf8(data + at, n - at);
    escaped.appendN(text.data() + at, length);
    at += length;
    if (at++ < n) escaped.append("\xEF\xBF\xBD");
  }
  escaped.jsonEscape();
  return '"' + std::string(escaped.getString(), escaped.getSize()) + '"';
}

void Place::pass(const u8* data, u32 n) {
  const u32 lines = countBytes(data, n, [](u8 c) { return c == '\n'; });
  if (lines != 0) {
    u32 start = n;
    while (data[start - 1] != '\n') --start;
    lineStart_ = offset_ + start;
  }
  lines_ += lines;
  offset_ += n;
}

std::string Place::of(const u8* data, u32 at) const {
  Place there = *this;
  there.pass(data, at);
  return "byte " + std::to_string(there.offset_) + ", line " + std::to_string(there.lines_ + 1) + " column " +
         std::to_string(there.offset_ - there.lineStart_ + 1);
}

u32 lineEndLength(const u8* data, u32 n) {
  if (n == 0 || data[n - 1] != '\n') return 0;
  return n > 1 && data[n - 2] == '\r' ? 2 : 1;
}
