// What the text decoders share: an answer that also tells where the fault is, and the decoders in that form. The public
// operations (`ContentEncoder::decodeBase64` and its kin) pass on `ok` alone.
#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class DataBuffer;
class StringBuffer;

/// Stands in `badAt` when no character of the text is to blame: all is well, or memory ran out.
constexpr u32 kNoFault = 0xFFFFFFFF;

/// The answer of a decoder.
struct DecodeResult {
  bool ok;    // every character was decoded
  u32 badAt;  // offset in bytes, in the text given, of the character that could not be; else kNoFault

  static constexpr DecodeResult good() { return {true, kNoFault}; }
  static constexpr DecodeResult fault(u32 at) { return {false, at}; }
  static constexpr DecodeResult noMemory() { return {false, kNoFault}; }
};

// Each appends the bytes that the `n` characters at `text` stand for to `out`. What was decoded before a fault stays in
// `out`. `text` may be null when `n` is 0, needs no NUL, and must not lie in the storage of `out`. For a text that ends
// too early or leaves bits over, the fault is the first or the last character of the incomplete group.

VARNIK_API DecodeResult vk_decodeHex(const char* text, u32 n, DataBuffer& out);     // HexText.cpp
VARNIK_API DecodeResult vk_decodeBase64(const char* text, u32 n, DataBuffer& out);  // Base64.cpp
/// Takes `-` and `_` beside `+` and `/`.
VARNIK_API DecodeResult vk_decodeBase64Url(const char* text, u32 n, DataBuffer& out);        // Base64.cpp
VARNIK_API DecodeResult vk_decodeBase32(const char* text, u32 n, DataBuffer& out);           // Base32.cpp
VARNIK_API DecodeResult vk_decodeBase58(const char* text, u32 n, DataBuffer& out);           // Base58.cpp
VARNIK_API DecodeResult vk_decodeAscii85(const char* text, u32 n, DataBuffer& out);          // Ascii85.cpp
VARNIK_API DecodeResult vk_decodeBase45(const char* text, u32 n, DataBuffer& out);           // Base45.cpp
VARNIK_API DecodeResult vk_decodeUu(const char* text, u32 n, DataBuffer& out);               // Uu.cpp
VARNIK_API DecodeResult vk_decodeQuotedPrintable(const char* text, u32 n, DataBuffer& out);  // QuotedPrintable.cpp
/// JSON string escapes undone, as `StringBuffer::jsonDecode` does it; `out` is a string.
VARNIK_API DecodeResult vk_decodeJson(const char* text, u32 n, StringBuffer& out);  // services/strings/JsonText.cpp
/// The same into a buffer, up to the first zero byte: there a text ends.
VARNIK_API DecodeResult vk_decodeJsonText(const char* text, u32 n, DataBuffer& out);  // services/strings/JsonText.cpp
/// A list of decimal byte values, as `DataBuffer::appendDecList` reads it. `out` grows as single bytes make it grow;
/// a byte that finds no memory is left out, which the answer does not tell.
VARNIK_API DecodeResult vk_decodeDecList(const char* text, u32 n, DataBuffer& out);  // DecList.cpp
/// A header value with encoded words (RFC 2047), to UTF-8. The fault is the first word in a charset that is not known,
/// which stays as it stands, or whose content is not what it should be, which is decoded as far as that goes.
VARNIK_API DecodeResult vk_decodeWords(const char* text, u32 n, DataBuffer& out);  // EncodedWordDecode.cpp
