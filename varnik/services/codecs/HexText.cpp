#include "varnik/services/codecs/internal/GroupDecoder.h"
#include "varnik/services/strings/StringBuffer.h"
#include "varnik/simd/Hex.h"

namespace {
constexpr vk_codec::GroupFormat kHex = {4, 2, 1, '0', 0, false, vk_simd::hexDecode, nullptr};
}

DecodeResult vk_decodeHex(const char* text, u32 n, DataBuffer& out) {
  return vk_codec::decodeGroups(kHex, text, n, out);
}

bool StringBuffer::hexStringToBinary(DataBuffer& out) const {
  return vk_decodeHex(getString(), getSize(), out).ok;
}
