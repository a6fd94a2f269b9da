// The Unicode encoding forms, character by character. Each form is a class of three facts: how one character is read
// (`decode`: the bytes it takes, never 0; its code, or kBadPart), how long one is, and how one is written.
#pragma once

#include <bit>
#include <cstring>

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Utf.h"

namespace vk_simd {

constexpr u32 kReplacement = 0xFFFD;
constexpr u32 kBadPart = 0xFFFFFFFF;

constexpr bool isSurrogate(u32 code) {
  return (code & 0xFFFFF800) == 0xD800;
}

struct Utf8 {
  using Unit = u8;
  static u32 decode(const u8* p, u32 n, u32& code) {
    const u32 lead = p[0];
    code = lead;
    if (lead < 0x80) return 1;
    code = kBadPart;
    if (lead < 0xC2 || lead > 0xF4) return 1;
    const u32 more = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    // The second byte's range keeps out overlong forms, surrogates and what lies above U+10FFFF.
    const u32 least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const u32 most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (n < 2 || p[1] < least || p[1] > most) return 1;
    u32 value = (lead & (0x3Fu >> more)) << 6 | (p[1] & 0x3Fu);
    for (u32 i = 2; i <= more; ++i) {
      if (i == n || (p[i] & 0xC0) != 0x80) return i;
      value = value << 6 | (p[i] & 0x3Fu);
    }
    code = value;
    return more + 1;
  }
  static u32 size(u32 code) { return code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4; }
  static void encode(u32 code, u8* out) {
    if (code < 0x80) {
      *out = static_cast<u8>(code);
      return;
    }
    const u32 count = size(code);
    for (u32 i = count - 1; i != 0; --i, code >>= 6) out[i] = static_cast<u8>(0x80 | (code & 0x3F));
    out[0] = static_cast<u8>((0xF00u >> count) | code);
  }
};

template <std::endian kOrder>
struct Utf16 {
  using Unit = u16;
  static constexpr std::endian kEndian = kOrder;
  static u32 unit(const u8* p) {
    u16 value;
    std::memcpy(&value, p, 2);
    return kOrder == std::endian::native ? value : __builtin_bswap16(value);
  }
  static void put(u32 value, u8* out) {
    const u16 unit = static_cast<u16>(value);
    const u16 stored = kOrder == std::endian::native ? unit : __builtin_bswap16(unit);
    std::memcpy(out, &stored, 2);
  }
  static u32 decode(const u8* p, u32 n, u32& code) {
    code = kBadPart;
    if (n < 2) return n;
    const u32 first = unit(p);
    if (!isSurrogate(first)) {
      code = first;
      return 2;
    }
    if (first >= 0xDC00) return 2;
    if (n < 4) return n;  // a pair that is cut off is one bad part, its odd byte included
    const u32 low = unit(p + 2);
    if ((low & 0xFC00) != 0xDC00) return 2;
    code = 0x10000 + ((first & 0x3FF) << 10 | (low & 0x3FF));
    return 4;
  }
  static u32 size(u32 code) { return code < 0x10000 ? 2 : 4; }
  static void encode(u32 code, u8* out) {
    if (code < 0x10000) return put(code, out);
    put(0xD7C0 + (code >> 10), out);
    put(0xDC00 | (code & 0x3FF), out + 2);
  }
};

template <std::endian kOrder>
struct Utf32 {
  using Unit = u32;
  static constexpr std::endian kEndian = kOrder;
  static u32 value(const u8* p) {
    u32 code;
    std::memcpy(&code, p, 4);
    return kOrder == std::endian::native ? code : __builtin_bswap32(code);
  }
  static u32 decode(const u8* p, u32 n, u32& code) {
    code = kBadPart;
    if (n < 4) return n;
    const u32 read = value(p);
    if (read <= 0x10FFFF && !isSurrogate(read)) code = read;
    return 4;
  }
  static u32 size(u32) { return 4; }
  static void encode(u32 code, u8* out) {
    if (kOrder != std::endian::native) code = __builtin_bswap32(code);
    std::memcpy(out, &code, 4);
  }
};

using Utf16Le = Utf16<std::endian::little>;
using Utf16Be = Utf16<std::endian::big>;
using Utf32Le = Utf32<std::endian::little>;
using Utf32Be = Utf32<std::endian::big>;

/// A conversion on its way. The two counts do not stand side by side: read as one word right after they were written
/// one by one, they would cost more than a short text does.
struct UtfCursor {
  UtfCursor(const u8* from, u32 size, u8* to, u32 space) : in(from), n(size), out(to), room(space) {}

  const u8* in;
  u32 n, read = 0;
  u8* out;
  u32 room, written = 0;
  bool bad = false;

  u32 left() const { return n - read; }
  u32 roomLeft() const { return room - written; }
  UtfProgress progress() const { return {read, written, bad}; }
};

/// Converts one character or bad part; false, nothing done, when it does not fit.
template <class From, class To>
inline bool convertOne(UtfCursor& c) {
  u32 code;
  const u32 taken = From::decode(c.in + c.read, c.left(), code);
  const bool bad = code == kBadPart;
  if (bad) code = kReplacement;
  const u32 size = To::size(code);
  if (c.roomLeft() < size) return false;
  To::encode(code, c.out + c.written);
  c.read += taken;
  c.written += size;
  c.bad |= bad;
  return true;
}

/// Converts characters until at least `end` bytes of the input are read; false when one does not fit.
template <class From, class To>
bool convertTo(UtfCursor& c, u32 end) {
  while (c.read < end)
    if (!convertOne<From, To>(c)) return false;
  return true;
}

}  // namespace vk_simd
