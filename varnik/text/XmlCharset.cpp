// XML documents in any charset. What a document is in shows in its byte-order mark, in the zero bytes of its head, or
// in the encoding that its declaration names; the first sign there is decides.
#include <algorithm>
#include <cstring>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/charset/CharsetNames.h"
#include "varnik/services/charset/EncodingConvert.h"
#include "varnik/services/codecs/Literals.h"
#include "varnik/services/logging/LogBase.h"
#include "varnik/services/memory/Text.h"
#include "varnik/services/strings/StringBuffer.h"

namespace {

constexpr s32 kUtf8 = 65001, kUtf16Le = 1200, kUtf16Be = 1201, kUtf32Le = 12000, kUtf32Be = 12001;
constexpr u32 kHead = 200;     // the bytes in which zero bytes are looked for
constexpr u32 kLeastHead = 5;  // a shorter text is not looked at

bool toUtf8(s32 codePage, const DataBuffer& text, DataBuffer& utf8, LogBase& log) {
  return _vkEncodingConvert().EncConvert(codePage, kUtf8, text.getData2(), text.getSize(), utf8, log);
}

void installUtf8(DataBuffer& text, DataBuffer& utf8) {
  text.clear();
  text.takeData(utf8);
}

// The code page of a byte-order mark of two bytes; 0 where there is none.
s32 codePageOfMark(const DataBuffer& text) {
  if (text.getSize() < 2) return 0;
  const u8 first = text.byteAt(0), second = text.byteAt(1);
  if (first == 0xFE && second == 0xFF) return kUtf16Be;
  return first == 0xFF && second == 0xFE ? kUtf16Le : 0;
}

bool hasZeroInHead(const DataBuffer& text) {
  return text.getSize() >= kLeastHead && std::memchr(text.getData2(), 0, std::min(text.getSize(), kHead));
}

// Tries the forms of which a zero byte in the first four bytes may be a part. True when one fits: the text is
// converted; else it is as it was.
bool convertByZeroBytes(DataBuffer& text) {
  const auto areZero = [&](u32 i, u32 k) { return text.byteAt(i) == 0 && text.byteAt(k) == 0; };
  DataBuffer utf8;
  utf8.secure = text.secure;
  LogNull log;
  bool first = true;
  const auto fits = [&](s32 codePage) {
    if (!first) utf8.clear();
    first = false;
    return toUtf8(codePage, text, utf8, log);
  };
  if (!((areZero(1, 3) && fits(kUtf16Le)) || (areZero(0, 2) && fits(kUtf16Be)) || (areZero(0, 1) && fits(kUtf32Be)) ||
        (areZero(2, 3) && fits(kUtf32Le))))
    return false;
  installUtf8(text, utf8);
  return true;
}

// Copies the XML declaration to `declaration`, lower-cased and without blanks. False when there is none.
bool copyDeclaration(const char* xml, StringBuffer& declaration) {
  const char* const start = vk_strstr(xml, "<?xml");
  const char* const end = start ? vk_strchr(start, '>') : nullptr;
  if (!end || !declaration.appendN(start, static_cast<u32>(end - start))) return false;
  declaration.removeCharOccurances(' ');
  declaration.toLowerCase();
  return true;
}

// Reads the value of `encoding` of such a copy. False when there is none, or it is empty.
bool readEncoding(const StringBuffer& declaration, StringBuffer& value) {
  constexpr u32 kPatternLength = 10;
  const char* found = vk_strstr(declaration.getString(), "encoding=\"");
  if (!found) found = vk_strstr(declaration.getString(), "encoding='");
  if (!found) return false;
  const char* const start = found + kPatternLength;
  const char* end = vk_strchr(start, '"');  // before the single quote, whichever quote opened the value
  if (!end) end = vk_strchr(start, '\'');
  return end && end != start && value.appendN(start, static_cast<u32>(end - start));
}

// Finds the charset that a document declares, by its canonical name. False when it declares none that is known, or one
// that needs no conversion: UTF-8, and a UTF-16 that its head shows not to be true.
bool declaredCharset(const char* xml, bool mayBeUtf16, StringBuffer& charset) {
  StringBuffer declaration;
  if (!copyDeclaration(xml, declaration) || !readEncoding(declaration, charset)) return false;
  if (!CharsetNames::canonicalizeCharset(charset)) return false;
  return !charset.equalsIgnoreCase(_vkLit_utf8()) && (mayBeUtf16 || !charset.equals("utf-16"));
}

}  // namespace

bool DataBuffer::convertXmlToUtf8(LogBase& log) {
  const LogContextExitor context(log, "convertXmlToUtf8");
  if (!data_) return false;
  if (size_ >= 3 && data_[0] == 0xEF && data_[1] == 0xBB && data_[2] == 0xBF) {
    removeHead(3);
    return true;
  }
  DataBuffer utf8;
  utf8.secure = secure;
  if (const s32 marked = codePageOfMark(*this); marked != 0) {
    toUtf8(marked, *this, utf8, log);
    installUtf8(*this, utf8);
    return true;
  }
  const bool hasZero = hasZeroInHead(*this);
  if (hasZero && convertByZeroBytes(*this)) return true;

  if (!appendChar(0)) return false;
  StringBuffer charset;
  const bool isDeclared = declaredCharset(reinterpret_cast<const char*>(data_), hasZero, charset);
  --size_;
  if (!isDeclared) return true;
  if (log.verbose()) log.LogDataSb("charset", charset);
  _vkEncodingConvert().ChConvert2(charset, kUtf8, data_, size_, utf8, log);
  installUtf8(*this, utf8);
  return true;
}

bool DataBuffer::getXmlCharset2(const char* xml, StringBuffer& charset) {
  charset.weakClear();
  const char* at = vk_strstr(xml, "encoding");
  if (at) at = vk_strchr(at, '=');
  if (!at) return false;
  ++at;
  while (*at == '\t' || *at == '\n' || *at == '\r' || *at == ' ') ++at;
  if (*at == '"') ++at;
  if (*at == '\'') ++at;
  const char* end = at;
  while (*end != 0 && *end != '"' && *end != '\'') ++end;
  if (*end == 0) return false;
  charset.appendN(at, static_cast<u32>(end - at));
  return !charset.isEmpty();
}

bool DataBuffer::getXmlCharset(StringBuffer& charset) {
  if (size_ == 0 || !appendChar(0)) return false;
  const bool found = getXmlCharset2(reinterpret_cast<const char*>(data_), charset);
  --size_;
  return found;
}
