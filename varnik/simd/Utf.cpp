#include "varnik/simd/Utf.h"

#include "varnik/simd/internal/UtfAvx2.h"

namespace vk_simd {

#if VARNIK_HAVE_AVX2
namespace {

// The kernel for a pair of forms; null for those among UTF-16 and UTF-32, which have none.
void (*kernelOf(Utf from, Utf to))(UtfCursor&) {
  static constexpr void (*kFromUtf8[kUtfForms])(UtfCursor&) = {
      convertFromUtf8Avx2<Utf8>, convertFromUtf8Avx2<Utf16Le>, convertFromUtf8Avx2<Utf16Be>,
      convertFromUtf8Avx2<Utf32Le>, convertFromUtf8Avx2<Utf32Be>};
  static constexpr void (*kToUtf8[kUtfForms])(UtfCursor&) = {nullptr, convertToUtf8Avx2<Utf16Le>,
                                                             convertToUtf8Avx2<Utf16Be>, convertToUtf8Avx2<Utf32Le>,
                                                             convertToUtf8Avx2<Utf32Be>};
  if (from == Utf::k8) return kFromUtf8[static_cast<u8>(to)];
  return to == Utf::k8 ? kToUtf8[static_cast<u8>(from)] : nullptr;
}

}  // namespace

UtfProgress convertUtfAvx2(Utf from, Utf to, const u8* data, u32 n, u8* out, u32 room) {
  const auto kernel = kernelOf(from, to);
  if (!kernel) return convertUtfScalar(from, to, data, n, out, room);
  UtfCursor c{data, n, out, room};
  kernel(c);
  return c.progress();
}
#endif

UtfProgress convertUtf(Utf from, Utf to, const u8* data, u32 n, u8* out, u32 room) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return convertUtfAvx2(from, to, data, n, out, room);
#endif
  return convertUtfScalar(from, to, data, n, out, room);
}

u64 utfLength(Utf from, Utf to, const u8* data, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return utfLengthAvx2(from, to, data, n);
#endif
  return utfLengthScalar(from, to, data, n);
}

u64 utfLengthIfValid(Utf from, Utf to, const u8* data, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return utfLengthIfValidAvx2(from, to, data, n);
#endif
  return utfLengthIfValidScalar(from, to, data, n);
}

}  // namespace vk_simd
