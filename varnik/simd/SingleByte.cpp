#include "varnik/simd/SingleByte.h"

#include "varnik/simd/internal/SingleByteSteps.h"

namespace vk_simd {

UtfProgress singleByteToUtf8Scalar(const SingleByteCharset& from, const u8* data, u32 n, u8* out, u32 room) {
  UtfCursor c{data, n, out, room};
  bytesToUtf8(c, from, n);
  return c.progress();
}

u64 singleByteUtf8LengthScalar(const SingleByteCharset& from, const u8* data, u32 n) {
  u64 sum = 0;
  for (u32 i = 0; i < n; ++i) sum += entrySize(from.utf8[data[i]]);
  return sum;
}

UtfProgress utf8ToSingleByteScalar(const SingleByteCharset& to, const u8* data, u32 n, u8* out, u32 room) {
  UtfCursor c{data, n, out, room};
  utf8ToBytes(c, to, n);
  return c.progress();
}

UtfProgress singleByteToUtf8(const SingleByteCharset& from, const u8* data, u32 n, u8* out, u32 room) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return singleByteToUtf8Avx2(from, data, n, out, room);
#endif
  return singleByteToUtf8Scalar(from, data, n, out, room);
}

u64 singleByteUtf8Length(const SingleByteCharset& from, const u8* data, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return singleByteUtf8LengthAvx2(from, data, n);
#endif
  return singleByteUtf8LengthScalar(from, data, n);
}

UtfProgress utf8ToSingleByte(const SingleByteCharset& to, const u8* data, u32 n, u8* out, u32 room) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return utf8ToSingleByteAvx2(to, data, n, out, room);
#endif
  return utf8ToSingleByteScalar(to, data, n, out, room);
}

}  // namespace vk_simd
