#include "varnik/simd/Base64.h"

#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/Base64Lines.h"
#include "varnik/services/codecs/internal/GroupDecoder.h"
#include "varnik/services/codecs/internal/Room.h"

namespace {

constexpr vk_simd::LineEnd kCrLf = {{'\r', '\n'}, 2}, kCrEntity = {{'&', '#', 'x', 'D', ';', '\n'}, 6};

constexpr u64 charsFor(u32 bytes) {
  return (u64{bytes} + 2) / 3 * 4;
}

// One run of text, its last `dropped` characters left off.
bool encodeRun(const u8* data, u32 n, bool url, u32 dropped, StringBuffer& out) {
  if (n == 0) return true;
  const bool streamed = vk_codec::isStreamed(out, charsFor(n));
  u8* const to = vk_codec::roomFor(out, charsFor(n));
  if (!to) return false;
  (streamed ? vk_simd::base64EncodeStream : vk_simd::base64Encode)(data, n, url, reinterpret_cast<char*>(to));
  out.addToSize(static_cast<u32>(charsFor(n) - dropped));
  return true;
}

}  // namespace

bool vk_codec::encodeBase64Lines(const u8* data, u32 n, u32 lineLength, const vk_simd::LineEnd& end,
                                 StringBuffer& out) {
  if (n == 0) return true;
  const u32 lineBytes = lineLength / 4 * 3;
  const u64 lines = (u64{n} + lineBytes - 1) / lineBytes, chars = charsFor(n) + lines * end.length;
  u8* const to = roomFor(out, chars);
  if (!to) return false;
  vk_simd::base64EncodeLines(data, n, lineBytes, end, reinterpret_cast<char*>(to));
  out.addToSize(static_cast<u32>(chars));
  return true;
}

bool vk_codec::encodeBase64UrlUnpadded(const u8* data, u32 n, StringBuffer& out) {
  return encodeRun(data, n, true, n % 3 == 0 ? 0 : 3 - n % 3, out);
}

bool ContentEncoder::encodeBase64(const u8* data, u32 n, StringBuffer& out) {
  return encodeRun(data, n, false, 0, out);
}

bool ContentEncoder::encodeModBase64(const u8* data, u32 n, StringBuffer& out) {
  return encodeRun(data, n, true, 0, out);
}

bool ContentEncoder::encodeBase64Mime(const u8* data, u32 n, StringBuffer& out) const {
  return vk_codec::encodeBase64Lines(data, n, lineLength_, kCrLf, out);
}

bool ContentEncoder::encodeBase64CrEntity(const u8* data, u32 n, StringBuffer& out) const {
  return vk_codec::encodeBase64Lines(data, n, lineLength_, kCrEntity, out);
}

DecodeResult vk_decodeBase64(const char* text, u32 n, DataBuffer& out) {
  return vk_codec::decodeGroups<vk_codec::kBase64>(text, n, out);
}

DecodeResult vk_decodeBase64Url(const char* text, u32 n, DataBuffer& out) {
  return vk_codec::decodeGroups<vk_codec::kBase64Url>(text, n, out);
}

bool ContentEncoder::decodeBase64(const char* text, u32 n, DataBuffer& out) {
  return vk_decodeBase64(text, n, out).ok;
}
