#include "varnik/services/charset/CharsetNames.h"

#include <utility>

#include "varnik/services/charset/internal/CharsetTable.h"
#include "varnik/services/strings/StringBuffer.h"

namespace {

const vk_charset::CharsetInfo* charsetNamed(const StringBuffer& name) {
  return vk_charset::charsetByLabel(name.getString(), name.getSize());
}

}  // namespace

s32 CharsetNames::codePageForName(StringBuffer& name, LogBase* log) {
  if (const auto* charset = charsetNamed(name)) return vk_charset::codePageOf(charset->id);
  if (log) {
    log->LogError_lcr("no charset has this name");
    log->LogDataSb("charset", name);
  }
  return 0;
}

bool CharsetNames::canonicalizeCharset(StringBuffer& name) {
  const auto* charset = charsetNamed(name);
  if (!charset) return false;
  StringBuffer canonical;  // the name stays as it is where memory runs out
  if (!canonical.append(charset->name)) return false;
  name = std::move(canonical);
  return true;
}

u32 CharsetNames::count() {
  u32 n = 0;
  vk_charset::charsets(n);
  return n;
}

const char* CharsetNames::nameAt(u32 index) {
  u32 n = 0;
  const auto* all = vk_charset::charsets(n);
  return index < n ? all[index].name : nullptr;
}

u32 CharsetNames::countLabels() {
  u32 n = 0;
  vk_charset::labels(n);
  return n;
}

const char* CharsetNames::labelAt(u32 index) {
  u32 n = 0;
  const auto* all = vk_charset::labels(n);
  return index < n ? all[index].text : nullptr;
}
