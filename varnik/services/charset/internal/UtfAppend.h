// Output of the converter: room in the target, and text appended in a Unicode encoding form.
#pragma once

#include <bit>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/simd/Utf.h"

namespace vk_charset {

/// UTF-16 in the processor's byte order.
constexpr vk_simd::Utf kUtf16Host =
    std::endian::native == std::endian::little ? vk_simd::Utf::k16Le : vk_simd::Utf::k16Be;

/// Room that is there already is filled before anything is counted, if it is worth it: a target that is used again
/// needs no count then.
constexpr u32 kWorthFilling = 256;

inline u32 freeBytes(const DataBuffer& out) {
  return out.getBufSize() - out.getSize();
}

/// Makes room for `n` more bytes, as appending them would. False when memory or the size limit stands in the way.
inline bool makeRoom(DataBuffer& out, u64 n) {
  return n <= freeBytes(out) || (n <= 0xFFFFFFFF - out.getSize() && out.expandBuffer(static_cast<u32>(n)));
}
/// Where the next byte goes; null without storage.
inline u8* freeSpace(const DataBuffer& out) {
  return out.getData2() + out.getSize();
}

/// Appends a text of one form in another. Sets `bad` when a part of it is ill-formed, and leaves it alone otherwise.
/// False when memory runs out: what is appended stays. REQUIRES: the text does not lie in the target's storage.
bool appendUtf(vk_simd::Utf from, vk_simd::Utf to, const u8* data, u32 n, DataBuffer& out, bool& bad);

}  // namespace vk_charset
