#include "varnik/services/charset/internal/UtfAppend.h"

namespace vk_charset {

using vk_simd::Utf;

bool appendUtf(Utf from, Utf to, const u8* data, u32 n, DataBuffer& out, bool& bad) {
  // What does not fit is counted: as if it were valid, which is fast, and where that was not enough, exactly.
  bool counted = false;
  for (bool filled = false; n != 0; filled = true) {
    const bool isEnough = vk_simd::utfLengthBound(from, to, n) <= freeBytes(out);
    if (!isEnough && (filled || freeBytes(out) < kWorthFilling)) {
      const u64 length = counted ? vk_simd::utfLength(from, to, data, n) : vk_simd::utfLengthIfValid(from, to, data, n);
      if (!makeRoom(out, length)) return false;
      counted = true;
    }
    const vk_simd::UtfProgress done = vk_simd::convertUtf(from, to, data, n, freeSpace(out), freeBytes(out));
    out.addToSize(done.written);
    bad |= done.bad;
    data += done.read;
    n -= done.read;
  }
  return true;
}

}  // namespace vk_charset
