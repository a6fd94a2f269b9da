// How a buffer introduces itself in a line of text, for streams, formatters and logs of one's own.
#pragma once

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/memory/Api.h"

/// The most characters that `vk_describe` writes.
constexpr u32 kVkDescribeRoom = 128;

/// Writes a buffer's size and its first 32 bytes as hex to `area`, and returns the count of characters; no NUL is
/// written. A `secure` buffer shows its size alone.
///
///   5 bytes: 68 65 6c 6c 6f
///   20000 bytes: 00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f 10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 1f ...
///   32 bytes, secure
///   destroyed
VARNIK_API u32 vk_describe(const DataBuffer& b, char (&area)[kVkDescribeRoom]);
