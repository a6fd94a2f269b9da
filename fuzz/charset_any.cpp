// Every charset both ways: whole conversions agree with ICU's own, and any bytes convert alike into an empty and a
// filled buffer.
#include <unicode/ucnv.h>

#include "fuzz/Fuzz.h"
#include "varnik/services/charset/internal/CharsetTable.h"

namespace {

bool convert(s32 from, s32 to, std::string_view s, DataBuffer& out) {
  LogNull log;
  return _vkEncodingConvert().EncConvert(from, to, bytesOf(s), countOf(s), out, log);
}

/// ICU's conversion that stops at the first fault; false when it meets one.
bool convertByIcu(const char* from, const char* to, std::string_view s, std::string& out) {
  UErrorCode status = U_ZERO_ERROR;
  UConverter *const reader = ucnv_open(from, &status), *const writer = ucnv_open(to, &status);
  ucnv_setToUCallBack(reader, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
  // ICU's own callback that stops would drop what can be ignored; this one keeps each error.
  const UConverterFromUCallback stop = [](const void*, UConverterFromUnicodeArgs*, const UChar*, s32, UChar32,
                                          UConverterCallbackReason, UErrorCode*) {};
  ucnv_setFromUCallBack(writer, stop, nullptr, nullptr, nullptr, &status);
  std::u16string units(s.size() * 2 + 8, u'\0');
  out.resize(s.size() * 12 + 64);
  const auto numUnits = ucnv_toUChars(reader, units.data(), static_cast<s32>(units.size()), s.data(),
                                      static_cast<s32>(s.size()), &status);
  const auto size = ucnv_fromUChars(writer, out.data(), static_cast<s32>(out.size()), units.data(), numUnits, &status);
  ucnv_close(reader);
  ucnv_close(writer);
  if (U_FAILURE(status)) return false;
  out.resize(static_cast<std::size_t>(size));
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n) {
  Choices in(data, n);
  u32 count = 0;
  const vk_charset::CharsetInfo* const charsets = vk_charset::charsets(count);
  const auto& charset = charsets[in.byte() % count];
  const s32 page = vk_charset::codePageOf(charset.id), other = vk_charset::codePageOf(charsets[in.byte() % count].id);
  const std::string_view given = in.rest();
  DataBuffer utf8, filled, bytes, crossed;
  const bool done = convert(page, 65001, given, utf8);
  filled.append("held", 4);
  CHECK(convert(page, 65001, given, filled) == done && viewOf(filled) == "held" + std::string(viewOf(utf8)));
  CHECK(isUtf8(viewOf(utf8)));
  convert(page, other, given, crossed);

  if (charset.kind == vk_charset::Kind::kSingleByte) {  // our own tables, right where ICU's are not
    DataBuffer single;
    bool doneSingly = true;
    for (const char& c : given) doneSingly &= convert(page, 65001, {&c, 1}, single);
    CHECK(doneSingly == done && viewOf(single) == viewOf(utf8));
    return 0;
  }
  // Some of ICU's tables of PC code pages exchange three controls; a mark is dropped, and the names by mark read it.
  using namespace std::string_view_literals;
  if (given.find_first_of("\x1A\x1C\x7F") != given.npos || charset.id < 0) return 0;
  for (const std::string_view mark : {"\xEF\xBB\xBF"sv, "\xFF\xFE"sv, "\xFE\xFF"sv, "\0\0\xFE\xFF"sv})
    if (given.starts_with(mark)) return 0;
  const char* const name = charset.converter ? charset.converter : charset.name;
  std::string expected;
  CHECK(convertByIcu(name, "UTF-8", given, expected) == done);
  CHECK(!done || viewOf(utf8) == expected);
  const bool doneBack = convert(65001, page, given, bytes);
  CHECK(convertByIcu("UTF-8", name, given, expected) == doneBack);
  CHECK(!doneBack || viewOf(bytes) == expected);
  return 0;
}
