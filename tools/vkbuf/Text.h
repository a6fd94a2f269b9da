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

/// White space as the decoders skip it.
constexpr bool isWhiteSpace(u8 c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Counts the bytes that `is` holds for, in lanes that become vector registers.
template <class Is>
u32 countBytes(const u8* data, u32 n, Is is) {
  constexpr u32 kLanes = 32, kMostRows = 255;  // a lane counts in one byte
  u32 count = 0;
  for (; n >= kLanes;) {
    const u32 rows = n / kLanes < kMostRows ? n / kLanes : kMostRows;
    u8 lanes[kLanes] = {};
    for (u32 row = 0; row < rows; ++row, data += kLanes)
      for (u32 k = 0; k < kLanes; ++k) lanes[k] = static_cast<u8>(lanes[k] + (is(data[k]) ? 1 : 0));
    for (const u8 lane : lanes) count += lane;
    n -= rows * kLanes;
  }
  for (u32 k = 0; k < n; ++k) count += is(data[k]) ? 1U : 0U;
  return count;
}

/// Returns "'!' (0x21)", or "byte 0xff" for what cannot be printed.
std::string nameOfByte(u8 b);

/// Returns a text between quotes as JSON has it; bytes that are no UTF-8 become U+FFFD.
std::string jsonText(std::string_view text);

/// A place in a text that goes by in pieces.
class Place {
 public:
  /// Moves past `n` bytes.
  void pass(const u8* data, u32 n);
  /// Returns "byte 1205, line 16 column 23" for the byte at `at` of the piece that begins here: the offset from 0, the
  /// line and its byte from 1.
  std::string of(const u8* data, u32 at) const;
  u64 offset() const { return offset_; }

 private:
  u64 offset_ = 0, lines_ = 0, lineStart_ = 0;
};

/// Returns how long the line end at the end of `n` bytes is: 0, 1 or, with the CR of a CR LF, 2.
u32 lineEndLength(const u8* data, u32 n);
