#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Copies `n` bytes; the areas must not overlap.
///
/// The C library's copy is the fastest there is, with one hole: on processors where it leaves middling counts to a
/// string instruction, a target that lies 1 to 31 bytes behind its source modulo the page size makes it ten times
/// slower. Two blocks of a page allocated one after the other lie that way. Such copies go by vectors here.
void copyBytes(u8* to, const u8* from, u32 n);

/// Returns true for a copy that falls into that hole.
bool isSlowCopy(const u8* to, const u8* from, u32 n);
#if VARNIK_HAVE_AVX2
void copyBytesAvx2(u8* to, const u8* from, u32 n);
#endif

}  // namespace vk_simd
