// Hex rendering. The whole text is written in one pass into room asked for once; where so much is not to be had, block
// by block as far as it goes.
#include "varnik/simd/Hex.h"

#include <algorithm>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/encoding/internal/HexText.h"
#include "varnik/encoding/internal/SelfAlias.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/services/strings/StringBuffer.h"

namespace {

constexpr u32 kBlockChars = 500, kBlockBytes = 120;  // a byte takes at most two digits and CR LF

// `render(from, to, place)` writes the text of the bytes in [from, to) and returns its length; `chars` is that of all.
template <class Render>
void appendRendered(u64 chars, u32 n, StringBuffer& out, Render render) {
  if (char* const place = chars <= 0xFFFFFFFF ? out.getAppendPtr(static_cast<u32>(chars)) : nullptr) {
    out.addToSize(render(0, n, place));
    return;
  }
  char block[kBlockChars];
  for (u32 from = 0; from < n;) {
    const u32 to = from + std::min(n - from, kBlockBytes);
    if (!out.appendN(block, render(from, to, block))) return;
    from = to;
  }
}

void appendDigits(const u8* data, u32 n, bool lower, StringBuffer& out) {
  const auto encode = vk_codec::isStreamed(out, u64{n} * 2) ? vk_simd::hexEncodeStream : vk_simd::hexEncode;
  appendRendered(u64{n} * 2, n, out, [=](u32 from, u32 to, char* place) {
    encode(data + from, to - from, lower, place);
    return 2 * (to - from);
  });
}

void appendWithColons(const u8* data, u32 n, bool lower, StringBuffer& out) {
  appendRendered(u64{n} * 3 - 1, n, out, [=](u32 from, u32 to, char* place) {
    const u32 chars = 3 * (to - from) - 1;
    vk_simd::hexEncodeColons(data + from, to - from, lower, place);
    if (to == n) return chars;
    place[chars] = ':';
    return chars + 1;
  });
}

char* putLineEnd(char* at) {
  at[0] = '\r';
  at[1] = '\n';
  return at + 2;
}

// Lines of the bytes in [from, to) of `n`; a line is full where the count of bytes before is a multiple of `perLine`.
u32 renderLines(const u8* data, u32 from, u32 to, u32 n, u64 perLine, char* place) {
  char* at = place;
  for (u32 i = from; i < to;) {
    const u32 count = static_cast<u32>(std::min<u64>(to - i, perLine - i % perLine));
    vk_simd::hexEncode(data + i, count, false, at);
    at += 2 * std::size_t{count};
    i += count;
    if (i % perLine == 0) at = putLineEnd(at);
  }
  if (to == n) at = putLineEnd(at);
  return static_cast<u32>(at - place);
}

}  // namespace

void vk_appendHex(const u8* data, u32 n, bool lower, bool colons, StringBuffer& out) {
  if (!data || n == 0) return;
  if (colons) {
    appendWithColons(data, n, lower, out);
  } else {
    appendDigits(data, n, lower, out);
  }
}

void DataBuffer::toHexString2(const u8* data, u32 numBytes, bool colons, StringBuffer& out) {
  vk_withoutAlias(data, numBytes, out, [&](const u8* bytes) {
    vk_appendHex(bytes, numBytes, false, colons, out);
    return true;
  });
}

void DataBuffer::toHexString(StringBuffer& out) const {
  if (isValid()) vk_appendHex(data_, size_, false, false, out);
}

void DataBuffer::toHexLines(StringBuffer& out, s32 bytesPerLine) const {
  if (!isValid() || !data_ || size_ == 0) return;
  // A line that no buffer fills stands for none.
  const u64 perLine = bytesPerLine > 0 ? u64{static_cast<u32>(bytesPerLine)} : u64{1} << 32;
  const u64 chars = u64{size_} * 2 + size_ / perLine * 2 + 2;
  appendRendered(chars, size_, out,
                 [&](u32 from, u32 to, char* place) { return renderLines(data_, from, to, size_, perLine, place); });
}
