// The decoder that hex, base32 and base64 share: text in groups of characters with the same number of bits each.
#pragma once

#include <string_view>

#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/simd/Base32.h"
#include "varnik/simd/Base64.h"
#include "varnik/simd/Hex.h"

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

template <bool url>
u32 decodeBase64Groups(const char* in, u32 n, u8* out) {
  return vk_simd::base64Decode(in, n, url, out);
}
inline constexpr GroupFormat kBase64 = {6, 4, 3, 'A', 2, true, decodeBase64Groups<false>, vk_simd::base64DecodeLines};
inline constexpr GroupFormat kBase64Url = {6, 4, 3, 'A', 2, true, decodeBase64Groups<true>, nullptr};
/// A last group of one byte is padded with six characters.
inline constexpr GroupFormat kBase32 = {5, 8, 5, 'A', 6, false, vk_simd::base32Decode, nullptr};
inline constexpr GroupFormat kHex = {4, 2, 1, '0', 0, false, vk_simd::hexDecode, nullptr};

/// Appends what `n` characters of text stand for. White space is skipped wherever it stands, padding may be missing; a
/// last group that could be shorter, or whose spare bits are not zero, is a fault at its last character. Compiled for
/// each of the formats above, as short texts notice a call by pointer and a division.
template <const GroupFormat& format>
DecodeResult decodeGroups(const char* text, u32 n, DataBuffer& out);

/// The same for a text that ends at a NUL, which is looked for along the way where `out` has the room already: reading
/// a long text once more for its length takes up to a third of the time.
template <const GroupFormat& format>
DecodeResult decodeTerminatedGroups(const char* text, DataBuffer& out);

}  // namespace vk_codec
