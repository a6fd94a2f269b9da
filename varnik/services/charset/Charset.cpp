#include "varnik/services/charset/Charset.h"

#include "varnik/services/charset/internal/CharsetTable.h"
#include "varnik/services/memory/Text.h"

bool Charset::setByName(const char* name) {
  const auto* charset = vk_charset::charsetByLabel(name, vk_strlen(name));
  codePage_ = charset ? vk_charset::codePageOf(charset->id) : 0;
  return charset != nullptr;
}
