// The roads: the Unicode forms among each other, and single-byte charsets to and from UTF-8, go straight through our
// own kernels; all else goes through UTF-16, a block at a time.
#include "varnik/services/charset/EncodingConvert.h"

#include <cstdint>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/charset/internal/CharsetTable.h"
#include "varnik/services/charset/internal/Pivot.h"
#include "varnik/services/charset/internal/SingleByteTable.h"
#include "varnik/services/charset/internal/UtfAppend.h"
#include "varnik/services/strings/StringBuffer.h"
#include "varnik/simd/AsciiRun.h"

namespace {

using namespace vk_charset;

struct Text {
  const u8* data;
  u32 size;
};

vk_simd::Utf formOf(Kind kind) {
  return static_cast<vk_simd::Utf>(kind);
}

template <std::size_t kSize>
u32 sizeAtHead(const char (&mark)[kSize], Text text) {
  constexpr u32 kMark = kSize - 1;
  return text.size >= kMark && __builtin_memcmp(text.data, mark, kMark) == 0 ? kMark : 0;
}

// The length of the byte-order mark at the head of a text in a Unicode form; 0 where there is none.
u32 markSize(Kind kind, Text text) {
  switch (kind) {
    case Kind::kUtf8:
      return sizeAtHead("\xEF\xBB\xBF", text);
    case Kind::kUtf16Le:
      return sizeAtHead("\xFF\xFE", text);
    case Kind::kUtf16Be:
      return sizeAtHead("\xFE\xFF", text);
    case Kind::kUtf32Le:
      return sizeAtHead("\xFF\xFE\0\0", text);
    case Kind::kUtf32Be:
      return sizeAtHead("\0\0\xFE\xFF", text);
    default:
      return 0;
  }
}

bool hasAsciiBytes(Kind kind) {
  return kind == Kind::kDoubleByte || kind == Kind::kMultiByte;
}

bool singleByteToUtf8(const SingleByteTable& table, Text text, DataBuffer& out) {
  const vk_simd::SingleByteCharset charset = table.charset();
  bool bad = false;
  for (bool filled = false; text.size != 0; filled = true) {
    const bool isEnough = u64{text.size} * 3 <= freeBytes(out);
    if (!isEnough && (filled || freeBytes(out) < kWorthFilling) &&
        !makeRoom(out, vk_simd::singleByteUtf8Length(charset, text.data, text.size)))
      return false;
    const auto done = vk_simd::singleByteToUtf8(charset, text.data, text.size, freeSpace(out), freeBytes(out));
    out.addToSize(done.written);
    bad |= done.bad;
    text = {text.data + done.read, text.size - done.read};
  }
  return !bad;
}

bool utf8ToSingleByte(const SingleByteTable& table, Text text, DataBuffer& out) {
  if (!makeRoom(out, text.size)) return false;
  const auto done = vk_simd::utf8ToSingleByte(table.charset(), text.data, text.size, freeSpace(out), freeBytes(out));
  out.addToSize(done.written);
  return !done.bad;
}

DoubleByteTable* doubleByteTable(const CharsetInfo& charset) {
  return charset.kind == Kind::kDoubleByte ? DoubleByteTable::of(charset) : nullptr;
}

bool write(UnitReader& reader, const CharsetInfo& to, DataBuffer& out) {
  if (isUnicode(to.kind)) {
    UtfWriter writer(formOf(to.kind), out);
    return pump(reader, writer);
  }
  if (to.kind == Kind::kSingleByte) {
    SingleByteTable scratch;
    const SingleByteTable* const table = singleByteTable(to, scratch);
    if (!table) return false;
    SingleByteWriter writer(*table, out);
    return pump(reader, writer);
  }
  if (DoubleByteTable* const table = doubleByteTable(to)) {
    DoubleByteWriter writer(*table, to.converter, out);
    return pump(reader, writer);
  }
  IcuWriter writer(to.converter, hasAsciiBytes(to.kind), out);
  return pump(reader, writer);
}

bool convertSingleByte(const CharsetInfo& from, const CharsetInfo& to, Text text, DataBuffer& out) {
  SingleByteTable scratch;
  const SingleByteTable* const table = singleByteTable(from, scratch);
  if (!table) return false;
  if (to.kind == Kind::kUtf8) return singleByteToUtf8(*table, text, out);
  SingleByteReader reader(*table, text.data, text.size);
  return write(reader, to, out);
}

bool convertUnicode(const CharsetInfo& from, const CharsetInfo& to, Text text, DataBuffer& out) {
  if (isUnicode(to.kind)) {
    bool bad = false;
    return appendUtf(formOf(from.kind), formOf(to.kind), text.data, text.size, out, bad) && !bad;
  }
  if (from.kind == Kind::kUtf8 && to.kind == Kind::kSingleByte) {
    SingleByteTable scratch;
    const SingleByteTable* const table = singleByteTable(to, scratch);
    return table && utf8ToSingleByte(*table, text, out);
  }
  UtfReader reader(formOf(from.kind), text.data, text.size);
  return write(reader, to, out);
}

// Charsets whose bytes below 0x80 are ASCII between characters: what is ASCII at the head needs no converter.
bool convertAsciiHead(const CharsetInfo& from, const CharsetInfo& to, Text& text, DataBuffer& out) {
  if (!hasAsciiBytes(from.kind) || to.kind != Kind::kUtf8) return true;
  const u32 run = vk_simd::asciiRun(text.data, text.size);
  if (!out.append(text.data, run)) return false;
  text = {text.data + run, text.size - run};
  return true;
}

bool convertByPivot(const CharsetInfo& from, const CharsetInfo& to, Text text, DataBuffer& out) {
  makeRoom(out, text.size);  // about what it will take; where it is not to be had, less may do
  if (DoubleByteTable* const table = doubleByteTable(from)) {
    DoubleByteReader reader(*table, from.converter, text.data, text.size);
    return write(reader, to, out);
  }
  IcuReader reader(from.converter, hasAsciiBytes(from.kind), text.data, text.size);
  return write(reader, to, out);
}

bool convert(const CharsetInfo& from, const CharsetInfo& to, Text text, DataBuffer& out) {
  const u32 mark = markSize(from.kind, text);
  text = {text.data + mark, text.size - mark};
  if (text.size == 0) return true;
  if (isUnicode(from.kind)) return convertUnicode(from, to, text, out);
  if (from.kind == Kind::kSingleByte) return convertSingleByte(from, to, text, out);
  if (!convertAsciiHead(from, to, text, out)) return false;
  return text.size == 0 || convertByPivot(from, to, text, out);
}

// True when a text shares bytes with the block of a buffer, which an append may move.
bool liesIn(const DataBuffer& buffer, Text text) {
  const auto at = reinterpret_cast<std::uintptr_t>(text.data),
             block = reinterpret_cast<std::uintptr_t>(buffer.getData2());
  return block != 0 && at < block + buffer.getBufSize() && block < at + text.size;
}

bool convertAnywhere(const CharsetInfo& from, const CharsetInfo& to, Text text, DataBuffer& out) {
  if (!liesIn(out, text)) return convert(from, to, text, out);
  DataBuffer apart;
  apart.secure = out.secure;
  const bool good = convert(from, to, text, apart);
  return out.append(apart) && good;
}

// A name that leaves the byte order open, made definite by the mark at the head of the text.
const CharsetInfo& withByteOrder(const CharsetInfo& charset, Text text) {
  if (charset.id == kUtf16ByMark && markSize(Kind::kUtf16Be, text) != 0) return *charsetByCodePage(1201);
  if (charset.id == kUtf32ByMark && markSize(Kind::kUtf32Be, text) != 0) return *charsetByCodePage(12001);
  return charset;
}

bool run(const CharsetInfo* from, s32 toCodePage, Text text, DataBuffer& out, LogBase& log) {
  const CharsetInfo* const to = charsetByCodePage(toCodePage);
  if (!from || !to) {
    log.LogError_lcr("the code page is not known");
    if (!to) log.LogDataLong("codePage", toCodePage);
    return false;
  }
  if (text.size == 0) return true;
  if (!text.data || !out.checkValidityDb() || (!out.getData2() && out.getBufSize() != 0)) return false;
  if (convertAnywhere(withByteOrder(*from, text), *to, text, out)) return true;
  log.LogError_lcr("not all of the text could be converted");
  log.LogDataStr("fromCharset", from->name);
  log.LogDataStr("toCharset", to->name);
  return false;
}

}  // namespace

bool _vkEncodingConvert::EncConvert(s32 fromCodePage, s32 toCodePage, const u8* data, u32 size, DataBuffer& out,
                                    LogBase& log) {
  const CharsetInfo* const from = charsetByCodePage(fromCodePage);
  if (!from) log.LogDataLong("codePage", fromCodePage);
  return run(from, toCodePage, {data, size}, out, log);
}

bool _vkEncodingConvert::ChConvert2(StringBuffer& fromCharset, s32 toCodePage, const u8* data, u32 size,
                                    DataBuffer& out, LogBase& log) {
  const CharsetInfo* const from = charsetByLabel(fromCharset.getString(), fromCharset.getSize());
  if (!from) log.LogDataSb("charset", fromCharset);
  return run(from, toCodePage, {data, size}, out, log);
}
