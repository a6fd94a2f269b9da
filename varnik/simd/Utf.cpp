#include "varnik/simd/Utf.h"

namespace vk_simd {

UtfProgress convertUtf(Utf from, Utf to, const u8* data, u32 n, u8* out, u32 room) {
  return convertUtfScalar(from, to, data, n, out, room);
}

u64 utfLengthIfValid(Utf from, Utf to, const u8* data, u32 n) {
  return utfLengthIfValidScalar(from, to, data, n);
}

}  // namespace vk_simd
