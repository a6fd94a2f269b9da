// The decoder that hex, base32 and base64 share: text in groups of characters with the same number of bits each.
#pragma once

#include <string_view>

#include "varnik/services/codecs/internal/DecodeResult.h"

namespace vk_codec {

/// What tells one format from another.
struct GroupFormat {
  u32 bits;          // that a character carries
  u32 chars, bytes;  // of a whole group
  char zero;         // the character of the value 0
  u32 mostPadding;   // `=` that may stand at the end
  bool references;   // `&#xD;` and `&#13;` are skipped like white space
  /// Decodes whole groups from the front and returns how many characters they were, as the kernels of `simd/` do.
  u32 (*decode)(const char* in, u32 n, u8* out);
  /// Decodes lines of one length from the front and returns how many; null for a format that is not written in lines.
  u32 (*decodeLines)(const char* in, u32 n, u32 lineChars, std::string_view end, u8* out);
};

/// Appends what `n` characters of text stand for. White space is skipped wherever it stands, padding may be missing; a
/// last group that could be shorter, or whose spare bits are not zero, is a fault at its last character.
DecodeResult decodeGroups(const GroupFormat& format, const char* text, u32 n, DataBuffer& out);

}  // namespace vk_codec
