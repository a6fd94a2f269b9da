#include "varnik/services/codecs/UrlCodec.h"

#include "varnik/services/codecs/internal/Room.h"
#include "varnik/services/memory/Text.h"
#include "varnik/simd/HexEscape.h"
#include "varnik/simd/HexUnescape.h"

using vk_simd::HexEscape;

namespace {

constexpr bool isLetterOrDigit(u8 b) {
  return (b >= '0' && b <= '9') || ((b | 0x20) >= 'a' && (b | 0x20) <= 'z');
}

constexpr bool isIn(u8 b, const char* list) {
  while (*list != 0 && static_cast<u8>(*list) != b) ++list;
  return *list != 0;
}

constexpr HexEscape percent(const char* unreserved) {
  return {vk_simd::byteSetOf([=](u8 b) { return isLetterOrDigit(b) || isIn(b, unreserved); }), '%'};
}

constexpr HexEscape kRfc3986 = percent("-._~");
constexpr HexEscape kRfc1738 = percent("$-_.+!*'(),");
constexpr HexEscape kRfc2396 = percent("-_.!~*'()");

bool encode(const HexEscape& how, const u8* data, u32 n, StringBuffer& out) {
  return vk_codec::encodeInPieces(data, n, 3, out, [&](const u8* from, u32 count, u8* to) {
    return vk_simd::escapeHex(how, from, count, 3 * count, to).chars;
  });
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
  u8* const to = vk_codec::roomFor(out, u64{n} + vk_simd::kHexUnescapeSlack);
  if (!to) return false;
  out.addToSize(vk_simd::unescapeHex('%', vk_codec::asBytes(text), n, n, to));
  return true;
}
