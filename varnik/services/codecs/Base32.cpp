#include "varnik/simd/Base32.h"

#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/GroupDecoder.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/services/memory/Text.h"

bool ContentEncoder::encodeBase32(const u8* data, u32 n, StringBuffer& out) {
  if (n == 0) return true;
  const u64 chars = (u64{n} + 4) / 5 * 8;
  u8* const to = vk_codec::roomFor(out, chars);
  if (!to) return false;
  vk_simd::base32Encode(data, n, reinterpret_cast<char*>(to));
  out.addToSize(static_cast<u32>(chars));
  return true;
}

DecodeResult vk_decodeBase32(const char* text, u32 n, DataBuffer& out) {
  return vk_codec::decodeGroups<vk_codec::kBase32>(text, n, out);
}

bool ContentEncoder::decodeId30(const char* text, DataBuffer& out, LogBase&) {
  return vk_decodeBase32(text, vk_strlen(text), out).ok;
}
