#include "tools/vkbuf/CharsetChoice.h"

#include <cstring>

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

// What is offered where a name was mistyped: the usual ones, of the many that are known.
const std::vector<std::string> kUsual = {
    "utf-8",        "utf-16",       "utf-16le",     "utf-16be",     "utf-32le",     "utf-32be",     "us-ascii",
    "iso-8859-1",   "iso-8859-2",   "iso-8859-5",   "iso-8859-7",   "iso-8859-9",   "iso-8859-15",  "windows-1250",
    "windows-1251", "windows-1252", "windows-1253", "windows-1254", "windows-1255", "windows-1256", "windows-1257",
    "windows-1258", "koi8-r",       "koi8-u",       "macintosh",    "shift_jis",    "euc-jp",       "iso-2022-jp",
    "gbk",          "gb18030",      "big5",         "euc-kr",       "ibm437",       "ibm850",       "latin1",
};

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
    throw Failure(kFailed, "no charset is called '" + name + "'; nearest: " + nearestNames(name, kUsual));
  return codePage;
}
