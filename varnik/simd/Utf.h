// Conversion between the Unicode encoding forms, and the length of its result.
//
// Counts are in bytes. Each maximal bad part of the input (Unicode 15, section 3.9; a lone surrogate, a value above
// U+10FFFF, the bytes of a unit that is cut off) becomes one U+FFFD. Byte-order marks are characters like all others.
#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

enum class Utf : u8 { k8, k16Le, k16Be, k32Le, k32Be };
constexpr u32 kUtfForms = 5;

// Too large for two registers: packing it into them would go by way of the stack, where a load of what two stores have
// written waits for both, longer than 64 bytes of text take.
struct UtfProgress {
  u32 read;     // bytes of the input that are done: whole characters and bad parts
  u32 written;  // bytes of the output
  bool bad;     // a bad part was among them
  u64 : 64;
};

/// Converts data[0, n) to `out`, which has room for `room` bytes, up to the end of the input or to the first character
/// that does not fit. The areas must not overlap. Bytes of `out` behind those written, as far as `room` goes, may be
/// overwritten.
UtfProgress convertUtf(Utf from, Utf to, const u8* data, u32 n, u8* out, u32 room);

/// Returns how many bytes a valid text takes in the other form. For one that is not valid the answer is some other
/// number between 0 and 4 n.
u64 utfLengthIfValid(Utf from, Utf to, const u8* data, u32 n);
/// Returns how many bytes `convertUtf` writes where there is room: slower, and true of every input.
u64 utfLength(Utf from, Utf to, const u8* data, u32 n);

/// Returns the most bytes that `n` bytes of input can become.
u64 utfLengthBound(Utf from, Utf to, u32 n);

UtfProgress convertUtfScalar(Utf from, Utf to, const u8* data, u32 n, u8* out, u32 room);
u64 utfLengthScalar(Utf from, Utf to, const u8* data, u32 n);
u64 utfLengthIfValidScalar(Utf from, Utf to, const u8* data, u32 n);
#if VARNIK_HAVE_AVX2
UtfProgress convertUtfAvx2(Utf from, Utf to, const u8* data, u32 n, u8* out, u32 room);
u64 utfLengthAvx2(Utf from, Utf to, const u8* data, u32 n);
u64 utfLengthIfValidAvx2(Utf from, Utf to, const u8* data, u32 n);
#endif

}  // namespace vk_simd
