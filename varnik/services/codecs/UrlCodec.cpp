#include "varnik/services/codecs/UrlCodec.h"

#include "varnik/services/codecs/internal/Room.h"
#include "varnik/services/memory/Text.h"
#include "varnik/simd/Escape.h"
#include "varnik/simd/HexEscape.h"

using vk_simd::EscapeTable;

namespace {

constexpr bool isLetterOrDigit(u8 b) {
  return (b >= '0' && b <= '9') || ((b | 0x20) >= 'a' && (b | 0x20) <= 'z');
}

constexpr bool isIn(u8 b, const char* list) {
  while (*list != 0 && static_cast<u8>(*list) != b) ++list;
  return *list != 0;
}

// The table that leaves letters, digits and the characters of `unreserved` alone.
constexpr EscapeTable percentTable(const char* unreserved) {
  const auto isClean = [=](u8 b) { return isLetterOrDigit(b) || isIn(b, unreserved); };
  const auto escape = [](u8 b, u8* out) {
    out[0] = '%';
    out[1] = static_cast<u8>("0123456789ABCDEF"[b >> 4]);
    out[2] = static_cast<u8>("0123456789ABCDEF"[b & 15]);
    return 3;
  };
  return vk_simd::escapeTableOf(isClean, escape);
}

constexpr EscapeTable kRfc3986 = percentTable("-._~");
constexpr EscapeTable kRfc1738 = percentTable("$-_.+!*'(),");
constexpr EscapeTable kRfc2396 = percentTable("-_.!~*'()");

bool encode(const EscapeTable& table, const u8* data, u32 n, StringBuffer& out) {
  return vk_codec::encodeInPieces(
      data, n, 3, out, [&](const u8* from, u32 count, u8* to) { return vk_simd::escapeBytes(table, from, count, to); });
}

}  // namespace

bool UrlCodec::encodeRfc3986(const u8* data, u32 n, StringBuffer& out) {
  return encode(kRfc3986, data, n, out);
}
bool UrlCodec::encodeRfc1738(const u8* data, u32 n, StringBuffer& out) {
  return encode(kRfc1738, data, n, out);
}
bool UrlCodec::encodeRfc2396(const u8* data, u32 n, StringBuffer& out) {
  return encode(kRfc2396, data, n, out);
}

bool UrlCodec::urlDecode(const char* text, DataBuffer& out) {
  const u32 n = vk_strlen(text);
  if (n == 0) return true;
  u8* const to = vk_codec::roomFor(out, n);
  if (!to) return false;
  out.addToSize(vk_simd::unescapeHex('%', vk_codec::asBytes(text), n, to));
  return true;
}
