#include "tools/vkbuf/CharsetChoice.h"

#include <algorithm>
#include <vector>

#include "tools/vkbuf/Nearest.h"
#include "varnik/services/charset/CharsetNames.h"

namespace {

struct KnownMark {
  Mark mark;
  u8 bytes[4];
};

// The marks of UTF-32 come before those of UTF-16, one of which begins so.
constexpr KnownMark kMarks[] = {
    {{kUtf32Le, "UTF-32LE", 4}, {0xFF, 0xFE, 0x00, 0x00}},
    {{kUtf32Be, "UTF-32BE", 4}, {0x00, 0x00, 0xFE, 0xFF}},
    {{kUtf16Le, "UTF-16LE", 2}, {0xFF, 0xFE}},
    {{kUtf16Be, "UTF-16BE", 2}, {0xFE, 0xFF}},
    {{kUtf8, "UTF-8", 3}, {0xEF, 0xBB, 0xBF}},
};

// Every spelling that is known, the canonical ones first.
std::vector<std::string> charsetNames() {
  std::vector<std::string> names;
  for (u32 i = 0; i < CharsetNames::count(); ++i) names.emplace_back(CharsetNames::nameAt(i));
  for (u32 i = 0; i < CharsetNames::countLabels(); ++i) {
    std::string label = CharsetNames::labelAt(i);
    if (std::find(names.begin(), names.end(), label) == names.end()) names.push_back(std::move(label));
  }
  return names;
}

const KnownMark* knownMark(s32 codePage) {
  for (const KnownMark& known : kMarks)
    if (known.mark.codePage == codePage) return &known;
  return nullptr;
}

}  // namespace

Mark markOf(const DataBuffer& data) {
  for (const KnownMark& known : kMarks)
    if (data.beginsWith(known.bytes, static_cast<s32>(known.mark.length))) return known.mark;
  return {};
}

const char* charsetOf(s32 codePage) {
  const KnownMark* known = knownMark(codePage);
  return known ? known->mark.charset : "";
}

std::string_view markBytes(s32 codePage) {
  const KnownMark* known = knownMark(codePage);
  if (!known) return {};
  return {reinterpret_cast<const char*>(known->bytes), known->mark.length};
}

s32 codePageOf(const std::string& name) {
  StringBuffer label(name.c_str());
  const s32 codePage = CharsetNames::codePageForName(label, nullptr);
  if (codePage == 0)
    throw Failure(kFailed, "no charset is called '" + name + "'; nearest: " + nearestNames(name, charsetNames()),
                  "vkbuf names charsets");
  return codePage;
}
