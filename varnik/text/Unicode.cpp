// What charset a content may be in, and its conversion from and to Unicode.
#include <algorithm>
#include <bit>
#include <cstring>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/charset/Charset.h"
#include "varnik/services/charset/EncodingConvert.h"
#include "varnik/services/logging/LogBase.h"
#include "varnik/services/strings/StringBuffer.h"
#include "varnik/services/strings/XString.h"
#include "varnik/simd/AsciiRun.h"

namespace {

constexpr s32 kUtf8 = 65001, kUtf16Le = 1200, kUtf16Be = 1201, kUtf32Le = 12000, kUtf32Be = 12001, kNone = -1;
constexpr s32 kUtf16Host = std::endian::native == std::endian::little ? kUtf16Le : kUtf16Be;
constexpr u32 kManyZeros = 33;  // enough to decide, however long the content is

bool beginsWithBytes(const u8* data, u32 n, std::initializer_list<u8> mark) {
  return n >= mark.size() && std::equal(mark.begin(), mark.end(), data);
}

s32 codePageOfMark(const u8* data, u32 n) {
  if (beginsWithBytes(data, n, {0xFF, 0xFE, 0, 0})) return kUtf32Le;
  if (beginsWithBytes(data, n, {0xFF, 0xFE})) return kUtf16Le;
  if (beginsWithBytes(data, n, {0xFE, 0xFF})) return kUtf16Be;
  if (beginsWithBytes(data, n, {0xEF, 0xBB, 0xBF})) return kUtf8;
  if (beginsWithBytes(data, n, {0, 0, 0xFE, 0xFF})) return kUtf32Be;
  return kNone;
}

// True when one of the bytes at p[parity], p[parity + 2], p[parity + 4], p[parity + 6] is zero.
bool hasZeroAt(const u8* p, u32 parity) {
  constexpr u64 kOnes = 0x0101010101010101;
  static constexpr u8 kOthers[9] = {0xFF, 0, 0xFF, 0, 0xFF, 0, 0xFF, 0, 0xFF};
  u64 word, others;
  std::memcpy(&word, p, 8);
  std::memcpy(&others, kOthers + 1 - parity, 8);
  word |= others;
  return ((word - kOnes) & ~word & (kOnes << 7)) != 0;
}

// True when the bytes at `parity`, `parity` + 2, ... of data[0, n) hold at least `least` zeros, or many.
bool hasZerosAt(const u8* data, u32 n, u32 parity, u32 least) {
  u32 zeros = 0;
  for (u32 i = 0; i < n;) {
    const u32 count = std::min(8u, n - i);
    if (count < 8 || hasZeroAt(data + i, parity))
      for (u32 k = parity; k < count; k += 2) zeros += data[i + k] == 0;
    if (zeros >= kManyZeros) return true;
    i += count;
  }
  return zeros >= least;
}

// True when a byte C2 or C3 is followed by one from 0x80 on: U+0080 to U+00FF in UTF-8.
bool hasTwoBytePair(const u8* data, u32 n) {
  for (u32 i = 0; n - i >= 2;) {
    const u8 byte = data[i];
    if ((byte == 0xC2 || byte == 0xC3) && data[i + 1] >= 0x80) return true;
    i += byte < 0x80 ? vk_simd::asciiRun(data + i, n - i) : 1;
  }
  return false;
}

// The bytes of the UTF-8 character that a byte begins; 0 for one that begins none.
u32 lengthAnnounced(u8 lead) {
  if (lead < 0x80) return 1;
  return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF8 ? 4 : 0;
}

// The size of a text of units of `unit` bytes up to its zero unit, which is counted.
u64 sizeWithZeroUnit(const u8* text, u32 unit) {
  for (u64 size = unit;; size += unit)
    if (std::all_of(text + size - unit, text + size, [](u8 b) { return b == 0; })) return size;
}

bool appendUnits(const u8* text, u32 unit, DataBuffer& out) {
  if (!text) return out.appendCharN(0, unit);
  const u64 size = sizeWithZeroUnit(text, unit);
  return size <= 0xFFFFFFFF && out.append(text, static_cast<u32>(size));
}

}  // namespace

s32 DataBuffer::detectObviousCodePage() const {
  if (!isValid() || !data_ || size_ == 0) return kNone;
  if (const s32 marked = codePageOfMark(data_, size_); marked != kNone) return marked;
  const u32 least = size_ >= 8 ? size_ / 8 : 1;
  if (hasZerosAt(data_, size_, 1, least)) return kUtf16Le;
  return hasZerosAt(data_, size_, 0, least) ? kUtf16Be : kNone;
}

bool DataBuffer::is7bit(u32 maxBytes) const {
  if (!isValid()) return false;
  if (!data_) return true;
  const u32 n = maxBytes != 0 ? std::min(maxBytes, size_) : size_;
  return vk_simd::asciiRun(data_, n) == n;
}

bool DataBuffer::isReallyUtf8(s32 codePage) {
  if (!data_ || size_ < 2 || !hasTwoBytePair(data_, size_)) return false;
  DataBuffer scratch;
  scratch.secure = secure;
  LogNull log;
  return !_vkEncodingConvert().EncConvert(codePage, kUtf8, data_, size_, scratch, log);
}

u32 DataBuffer::numPartialTrailingUtf8Bytes() const {
  const u32 most = data_ ? std::min(size_, 4u) : 0;
  for (u32 k = 1; k <= most; ++k) {
    const u8 byte = data_[size_ - k];
    if ((byte & 0xC0) != 0x80) return k < lengthAnnounced(byte) ? k : 0;
  }
  return 0;
}

void DataBuffer::toXString(const char* charsetName, XString& out) {
  out.weakClear();
  Charset charset;
  charset.setByName(charsetName);
  DataBuffer units;
  units.secure = secure;
  LogNull log;
  _vkEncodingConvert().EncConvert(charset.getCodePage(), kUtf16Host, data_, size_, units, log);
  if (!units.empty()) out.setFromUtf16N_xe(units.getData2(), static_cast<s32>(units.getSize() / 2));
}

void DataBuffer::cvUnicodeToUtf8(StringBuffer& out) const {
  out.weakClear();
  if (size_ == 0 || !data_) return;
  DataBuffer utf8;
  utf8.secure = secure;
  LogNull log;
  _vkEncodingConvert().EncConvert(kUtf16Le, kUtf8, data_, size_, utf8, log);
  out.append(utf8);
}

void DataBuffer::cvUnicodeToUtf8_db(DataBuffer& out) const {
  out.clear();
  if (size_ == 0 || !data_) return;
  LogNull log;
  _vkEncodingConvert().EncConvert(kUtf16Le, kUtf8, data_, size_, out, log);
}

bool DataBuffer::appendNullTerminatedUtf16_xe(const u8* text) {
  return isValid() && appendUnits(text, 2, *this);
}

bool DataBuffer::appendNullTerminatedUtf32_xe(const u8* text) {
  return isValid() && appendUnits(text, 4, *this);
}
