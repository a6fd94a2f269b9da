#include "varnik/services/codecs/EncodingIds.h"

#include "varnik/services/codecs/internal/EncodingTable.h"

s32 _clsEncode::encodingIdForName(const char* name, LogBase&) {
  const vk_codec::EncodingName* const row = name ? vk_codec::findEncodingName(name) : nullptr;
  return row ? vk_codec::factsOf(row->codec).decoderId : 0;
}
