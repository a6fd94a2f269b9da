// Helpers for NUL-terminated texts of 8-bit characters.
#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

/// Returns the number of characters before the NUL; 0 for a null text. A text of 4 GiB or more counts as 4,294,967,295.
VARNIK_API u32 vk_strlen(const char* text);

/// Compares at most `n` characters, stopping behind a NUL that both hold: 0 when they agree, else negative or positive
/// as the first differing characters (taken as unsigned) order them.
VARNIK_API s32 vk_strncmp(const char* a, const char* b, s32 n);

/// Returns the first occurrence of `needle` in `text`, letter case exact, or null. An empty needle is found at the
/// start; a null argument finds nothing.
VARNIK_API char* vk_strstr(const char* text, const char* needle);

/// Returns the first occurrence of the byte `c` in `text` (its NUL included), or null.
VARNIK_API char* vk_strchr(const char* text, s32 c);

/// Writes the decimal digits of `value` (no sign, no leading zero, "0" for zero, no NUL) to `area`, which has room for
/// 10 characters, and returns their count.
VARNIK_API u32 vk_uintToDecimal(u32 value, char* area);

/// Returns the value of the decimal digits at the start of `text` and sets `consumed` to their count; 0 and 0 when
/// there are none. A value past 32 bits saturates at 4,294,967,295.
VARNIK_API u32 vk_parseDecimal(const char* text, u32& consumed);
