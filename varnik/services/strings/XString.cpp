#include "varnik/services/strings/XString.h"

#include <bit>
#include <cstring>
#include <utility>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/services/memory/Memory.h"
#include "varnik/simd/Utf.h"

namespace {

using vk_simd::Utf;

constexpr Utf kHost = std::endian::native == std::endian::little ? Utf::k16Le : Utf::k16Be;

const u8* bytesOf(const StringBuffer& utf8) {
  return reinterpret_cast<const u8*>(utf8.getString());
}

// Writes a text's UTF-16 units; there is room for `n` bytes, which are all that it takes.
void putUnits(const StringBuffer& utf8, Utf form, u8* out, u32 n) {
  vk_simd::convertUtf(Utf::k8, form, bytesOf(utf8), utf8.getSize(), out, n);
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
  u8* const out = count != 0 ? vk_codec::roomFor(value, most) : nullptr;
  if (out) value.addToSize(vk_simd::convertUtf(kHost, Utf::k8, units, count * 2, out, static_cast<u32>(most)).written);
  utf8_ = std::move(value);
  return out || count == 0;
}

bool XString::getUtf16_le(bool withMark, DataBuffer& out) {
  const u64 bytes = 2 * (u64{getNumChars()} + (withMark ? 1 : 0));
  if (bytes == 0) return true;
  u8* const to = vk_codec::roomFor(out, bytes);
  if (!to) return false;
  const u32 n = static_cast<u32>(bytes), mark = withMark ? 2 : 0;
  if (withMark) std::memcpy(to, "\xFF\xFE", mark);
  putUnits(utf8_, Utf::k16Le, to + mark, n - mark);
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
  putUnits(utf8_, kHost, reinterpret_cast<u8*>(units_), (numUnits_ - 1) * u32{sizeof(u16)});
  units_[numUnits_ - 1] = 0;
  return units_;
}

u32 XString::getNumChars() const {
  return static_cast<u32>(vk_simd::utfLength(Utf::k8, kHost, bytesOf(utf8_), utf8_.getSize()) / sizeof(u16));
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
