#include "varnik/services/strings/XString.h"

#include <bit>
#include <cstring>
#include <utility>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/memory/Memory.h"

namespace {

constexpr u32 kReplacement = 0xFFFD;

// One character of UTF-8, or U+FFFD for a maximal bad part (Unicode 15, section 3.9); moves `at` past it.
u32 nextOfUtf8(const u8* text, u32 n, u32& at) {
  const u32 lead = text[at++];
  if (lead < 0x80) return lead;
  const u32 more = lead >= 0xC2 && lead <= 0xDF   ? 1
                   : lead >= 0xE0 && lead <= 0xEF ? 2
                   : lead >= 0xF0 && lead <= 0xF4 ? 3
                                                  : 0;
  if (more == 0) return kReplacement;
  // The second byte's range keeps out overlong forms, surrogates and what lies above U+10FFFF.
  u32 least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80, most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  u32 code = lead & (0x3Fu >> more);
  for (u32 i = 0; i < more; ++i) {
    if (at == n || text[at] < least || text[at] > most) return kReplacement;
    code = code << 6 | (text[at++] & 0x3Fu);
    least = 0x80, most = 0xBF;
  }
  return code;
}

// Calls `put` with each UTF-16 unit of a UTF-8 text.
template <class Put>
void eachUnit(const StringBuffer& utf8, Put put) {
  const u8* text = reinterpret_cast<const u8*>(utf8.getString());
  const u32 n = utf8.getSize();
  for (u32 at = 0; at < n;) {
    const u32 code = nextOfUtf8(text, n, at);
    if (code >= 0x10000) put(static_cast<u16>(0xD7C0 + (code >> 10)));
    put(static_cast<u16>(code >= 0x10000 ? 0xDC00 + (code & 0x3FF) : code));
  }
}

// Writes a character as UTF-8 and returns its count of bytes.
u32 putUtf8(u32 code, char* out) {
  if (code < 0x80) {
    *out = static_cast<char>(code);
    return 1;
  }
  const u32 count = code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
  for (u32 i = count - 1; i != 0; --i, code >>= 6) out[i] = static_cast<char>(0x80 | (code & 0x3F));
  out[0] = static_cast<char>((0xF00u >> count) | code);
  return count;
}

u16 unitAt(const u8* units, u32 i) {
  u16 unit;
  std::memcpy(&unit, units + std::size_t{2} * i, sizeof unit);
  return unit;
}

// One character of UTF-16 in host order, U+FFFD for a lone surrogate; moves `at` past it.
u32 nextOfUtf16(const u8* units, u32 n, u32& at) {
  const u32 unit = unitAt(units, at++);
  if ((unit & 0xF800) != 0xD800) return unit;
  if (unit >= 0xDC00 || at == n) return kReplacement;
  const u32 low = unitAt(units, at);
  if ((low & 0xFC00) != 0xDC00) return kReplacement;
  ++at;
  return 0x10000 + ((unit & 0x3FF) << 10 | (low & 0x3FF));
}

}  // namespace

XString::XString(const XString& other) : utf8_(other.utf8_), secure_(other.secure_) {}

XString::XString(XString&& other) noexcept
    : utf8_(std::move(other.utf8_)), secure_(std::exchange(other.secure_, false)) {}

XString& XString::operator=(const XString& other) {
  if (this != &other) *this = XString(other);
  return *this;
}

XString& XString::operator=(XString&& other) noexcept {
  if (this == &other) return *this;
  releaseUnits();
  utf8_ = std::move(other.utf8_);
  secure_ = std::exchange(other.secure_, false);
  return *this;
}

XString::~XString() {
  releaseUnits();
}

void XString::releaseUnits() {
  if (secure_) vk_memset(units_, 0, numUnits_ * u32{sizeof(u16)});
  delete[] reinterpret_cast<u8*>(units_);
  units_ = nullptr;
  numUnits_ = 0;
}

bool XString::setFromUtf8(const char* text) {
  StringBuffer value;  // taken first: the text may be the string's own
  value.setSecure(secure_);
  const bool done = value.append(text);
  utf8_ = std::move(value);
  return done;
}

bool XString::setFromUtf16N_xe(const u8* units, s32 n) {
  StringBuffer value;
  value.setSecure(secure_);
  const u32 count = units && n > 0 ? static_cast<u32>(n) : 0;
  const u64 most = u64{count} * 3;  // a unit alone is at most three bytes, two that pair are four
  char* out = count != 0 && most <= 0xFFFFFFFF ? value.getAppendPtr(static_cast<u32>(most)) : nullptr;
  if (out) {
    u32 size = 0;
    for (u32 at = 0; at < count;) size += putUtf8(nextOfUtf16(units, count, at), out + size);
    value.addToSize(size);
  }
  utf8_ = std::move(value);
  return out || count == 0;
}

bool XString::getUtf16_le(bool withMark, DataBuffer& out) {
  const u64 bytes = 2 * (u64{getNumChars()} + (withMark ? 1 : 0));
  if (bytes == 0) return true;
  if (out.getSize() + bytes > 0xFFFFFFFF) return false;
  const u32 n = static_cast<u32>(bytes);
  if (!out.canAppendWithoutRealloc(n) && !out.expandBuffer(n)) return false;
  u8* to = out.getBufAt(out.getSize());
  const auto put = [&](u16 unit) {
    *to++ = static_cast<u8>(unit);
    *to++ = static_cast<u8>(unit >> 8);
  };
  if (withMark) put(0xFEFF);
  eachUnit(utf8_, put);
  out.addToSize(n);
  return true;
}

const u16* XString::getUtf16_xe() {
  releaseUnits();
  const u64 count = u64{getNumChars()} + 1;
  if (count > 0x7FFFFFFF) return nullptr;
  units_ = reinterpret_cast<u16*>(allocByteArray(static_cast<u32>(count * sizeof(u16))));
  if (!units_) return nullptr;
  numUnits_ = static_cast<u32>(count);
  u16* to = units_;
  eachUnit(utf8_, [&](u16 unit) { *to++ = unit; });
  *to = 0;
  return units_;
}

u32 XString::getNumChars() const {
  u32 count = 0;
  eachUnit(utf8_, [&](u16) { ++count; });
  return count;
}

void XString::weakClear() {
  utf8_.weakClear();
}

void XString::secureClear() {
  utf8_.secureClear();
  if (units_) vk_memset(units_, 0, numUnits_ * u32{sizeof(u16)});
  releaseUnits();
}

void XString::setSecureX(bool on) {
  secure_ = on;
  utf8_.setSecure(on);
}
