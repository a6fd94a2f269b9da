#include "varnik/services/charset/internal/UtfAppend.h"

namespace vk_charset {

using vk_simd::Utf;

bool appendUtf(Utf from, Utf to, const u8* data, u32 n, DataBuffer& out, bool& bad) {
  // Where the most that it can become fits, nothing is counted. Else a valid text gets just the room that it needs; one
  // that turns out longer because of its bad parts is counted exactly for the second round, which is then the last.
  for (bool counted = false; n != 0; counted = true) {
    if (vk_simd::utfLengthBound(from, to, n) > freeBytes(out)) {
      const u64 length = counted ? vk_simd::utfLength(from, to, data, n) : vk_simd::utfLengthIfValid(from, to, data, n);
      if (!makeRoom(out, length)) return false;
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
