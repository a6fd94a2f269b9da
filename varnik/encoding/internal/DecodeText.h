// Decoding by number in the form that tells where the fault is.
#pragma once

#include "varnik/services/codecs/internal/DecodeResult.h"

/// Appends the bytes that `n` characters of text stand for under an encoding id or code page to `out`, as
/// `DataBuffer::appendEncodedById` does, which answers `ok`. `text[n]` is readable and NUL (some decoders stop there),
/// and the text does not lie in the storage of `out`.
///
/// Faults are told also where that operation has to answer true (base64 into a buffer that held bytes already), so
/// `badAt` counts by itself.
VARNIK_API DecodeResult vk_decodeText(s32 id, const char* text, u32 n, DataBuffer& out);
