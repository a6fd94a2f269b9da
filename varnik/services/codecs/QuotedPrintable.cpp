// Quoted-printable, RFC 2045 section 6.7: the memory of the encoder and the decoder.
#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/simd/QpLines.h"
#include "varnik/simd/QpText.h"

namespace {

// The end of a piece of about `size` bytes: where a CR LF stands there, behind it.
u32 pieceEnd(const u8* data, u32 i, u32 n, u32 size) {
  if (n - i <= size) return n;
  const u32 end = i + size;
  if (data[end] == '\n' && data[end - 1] == '\r') return end + 1;
  return data[end] == '\r' && n - end >= 2 && data[end + 1] == '\n' ? end + 2 : end;
}

}  // namespace

bool ContentEncoder::encodeQuotedPrintable(const u8* data, u32 n, StringBuffer& out) const {
  constexpr u32 kPiece = 1U << 24;
  vk_simd::QpLine line{lineLength_};
  for (u32 i = 0; i < n;) {
    const u32 end = pieceEnd(data, i, n, kPiece);
    u8* const to = vk_codec::roomFor(out, vk_simd::qpRoom(end - i, lineLength_));
    if (!to) return false;
    out.addToSize(static_cast<u32>(vk_simd::putQpLines(line, data + i, end - i, end == n, to) - to));
    i = end;
  }
  return true;
}

DecodeResult vk_decodeQuotedPrintable(const char* text, u32 n, DataBuffer& out) {
  if (n == 0) return DecodeResult::good();
  u8* const to = vk_codec::roomFor(out, u64{n} + vk_simd::kQpTextSlack);
  if (!to) return DecodeResult::noMemory();
  out.addToSize(vk_simd::readQpText(vk_codec::asBytes(text), n, to));
  return DecodeResult::good();
}

bool ContentEncoder::decodeQuotedPrintable(const char* text, u32 n, DataBuffer& out) const {
  return vk_decodeQuotedPrintable(text, n, out).ok;
}
