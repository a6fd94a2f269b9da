#include "tests/faults/Operations.h"
#include "tests/services/CharsetSupport.h"
#include "varnik/services/charset/internal/CharsetTable.h"

namespace faults {
namespace {

constexpr s32 kUtf8 = 65001;

Operation converting(const std::string& what, s32 from, s32 to, std::string text) {
  return extending(what, [=](Scene& s) {
    return _vkEncodingConvert().EncConvert(from, to, bytesOf(text), countOf(text), s.buffer, s.log);
  });
}

}  // namespace

std::vector<Operation> charsetOperations() {
  const std::string text = repeated("plain caf\xC3\xA9 \xD0\xAF \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x98\x80 ", 5400);
  std::vector<Operation> all = {
      extending("ChConvert2",
                [text](Scene& s) {
                  StringBuffer name;
                  return name.append("Shift_JIS") &&
                         _vkEncodingConvert().ChConvert2(name, kUtf8, bytesOf(text), 900, s.buffer, s.log);
                }),
      row("canonicalizeCharset", Leaves::kAnything,
          [](Scene& s) {
            s.text.clear();
            return s.text.append(" Latin1 ") && CharsetNames::canonicalizeCharset(s.text);
          }),
      extending("appendEncoded by charset",
                [text](Scene& s) { return s.buffer.appendEncoded(text.c_str(), " KOI8-R "); }),
  };
  u32 count = 0;
  const vk_charset::CharsetInfo* const charsets = vk_charset::charsets(count);
  for (u32 i = 0; i < count; ++i) {
    const s32 page = vk_charset::codePageOf(charsets[i].id);
    const s32 next = vk_charset::codePageOf(charsets[(i + 1) % count].id);
    const std::string name = charsets[i].name, there = convert(kUtf8, page, text).text;
    all.push_back(converting("to " + name, kUtf8, page, text));
    all.push_back(converting("from " + name, page, kUtf8, there));
    all.push_back(converting("to the next of " + name, page, next, there));
  }
  return all;
}

}  // namespace faults
