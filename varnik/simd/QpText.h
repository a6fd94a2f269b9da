#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"
#include "varnik/simd/HexUnescape.h"

namespace vk_simd {

/// Writes what the quoted-printable text[0, n) stands for to `out` and returns the number of bytes. White space at the
/// ends of lines is dropped, and a `=` there joins the next line, unless the text ends; what is no escape stays as it
/// is. REQUIRES: room for n + `kQpTextSlack` bytes, all of which may be written; areas that do not overlap.
u32 readQpText(const u8* text, u32 n, u8* out);

constexpr u32 kQpTextSlack = kHexUnescapeSlack;

/// The form for all processors, a line at a time.
u32 readQpTextByLine(const u8* text, u32 n, u8* out);
#if VARNIK_HAVE_AVX512
u32 readQpTextAvx512(const u8* text, u32 n, u8* out);
#endif

}  // namespace vk_simd
