// Small readers of what people type and of what files hold.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "varnik/services/memory/Types.h"

/// Reads a count: decimal or 0x, with k, M or G (powers of 1024) behind it. Nothing for what is no count.
std::optional<u64> parseCount(std::string_view text);

/// Returns the offset of the first byte that is no part of a valid UTF-8 character (Unicode 15.0, table 3-7), or `n`.
u32 firstBadUtf8(const u8* data, u32 n);

/// Returns "'!' (0x21)", or "byte 0xff" for what cannot be printed.
std::string nameOfByte(u8 b);

/// Returns "byte 1205, line 16 column 23": the offset from 0, the line and its byte from 1.
std::string placeIn(const u8* data, u32 at);
