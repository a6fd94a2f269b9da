#include "varnik/services/codecs/EncodingIds.h"

#include "varnik/services/codecs/internal/EncodingTable.h"

s32 _clsEncode::encodingIdForName(const char* name, LogBase&) {
  return name ? vk_codec::decoderIdForName(name) : 0;
}
