#include "varnik/services/codecs/internal/GroupDecoder.h"
#include "varnik/services/strings/StringBuffer.h"
#include "varnik/simd/Hex.h"

DecodeResult vk_decodeHex(const char* text, u32 n, DataBuffer& out) {
  return vk_codec::decodeGroups<vk_codec::kHex>(text, n, out);
}

bool StringBuffer::hexStringToBinary(DataBuffer& out) const {
  return vk_decodeHex(getString(), getSize(), out).ok;
}
