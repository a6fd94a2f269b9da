// The integer types of the library, by width. Sizes and counts of bytes are u32 throughout.
#pragma once

#include <cstdint>

/// An unsigned integer of so many bits.
using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using u64 = std::uint64_t;

/// A signed integer of so many bits.
using s8 = std::int8_t;
using s16 = std::int16_t;
using s32 = std::int32_t;
using s64 = std::int64_t;
