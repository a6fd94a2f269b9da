// Room behind the content of an output, for codecs that know an upper bound of what they will write and then count what
// they have written with `addToSize`.
#pragma once

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/strings/StringBuffer.h"

namespace vk_codec {

inline u8* appendPtrOf(DataBuffer& out, u32 n) {
  if (!out.checkValidityDb() || (out.getBufSize() - out.getSize() < n && !out.expandBuffer(n))) return nullptr;
  u8* const block = out.getData2();  // none where a caller gave the buffer a capacity alone
  return block ? block + out.getSize() : nullptr;
}
inline u8* appendPtrOf(StringBuffer& out, u32 n) {
  return reinterpret_cast<u8*>(out.getAppendPtr(n));
}

/// Makes room for `n` more bytes and returns where they go; null when memory or the size limit stands in the way, and
/// for a damaged buffer, which is reported. `n` is above 0.
template <class Output>
u8* roomFor(Output& out, u64 n) {
  return n > 0xFFFFFFFF ? nullptr : appendPtrOf(out, static_cast<u32>(n));
}

/// True for a text of `n` characters that is better written past the caches: more than these keep, and to memory that
/// is there already. What must be asked for comes from the system zeroed, and so through the caches.
inline bool isStreamed(const StringBuffer& out, u64 n) {
  constexpr u32 kLeast = 32U << 20;
  return n >= kLeast && n <= 0xFFFFFFFF && out.hasRoom(static_cast<u32>(n));
}

/// Encodes long inputs piece by piece, so that no more than the worst case of one piece is reserved beyond what is
/// written. `encode(from, n, to)` writes the text of a piece to `to` and returns its length; `perByte` is the most
/// characters that a byte takes. It may write 32 characters beyond the most that the piece takes.
template <class Encode>
bool encodeInPieces(const u8* data, u32 n, u32 perByte, StringBuffer& out, Encode encode) {
  constexpr u32 kPiece = 1U << 24, kSlack = 32;
  for (u32 i = 0; i < n;) {
    const u32 piece = n - i < kPiece ? n - i : kPiece;
    u8* const to = roomFor(out, u64{piece} * perByte + kSlack);
    if (!to) return false;
    out.addToSize(encode(data + i, piece, to));
    i += piece;
  }
  return true;
}

/// White space as the decoders skip it: blank, tab, line feed, vertical tab, form feed, carriage return.
constexpr bool isSpace(u8 c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

inline const u8* asBytes(const char* text) {
  return reinterpret_cast<const u8*>(text);
}

}  // namespace vk_codec
