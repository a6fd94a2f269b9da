// Lists of decimal byte values: "0,171,255".
#include "varnik/simd/DecList.h"

#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/EncodeInner.h"
#include "varnik/services/codecs/internal/Room.h"

namespace {

constexpr bool isBlank(u8 c) {
  return c == ' ' || c == '\t';
}
constexpr bool isSeparator(u8 c) {
  return isBlank(c) || c == '\r' || c == '\n' || c == ',';
}
constexpr bool isDigit(u8 c) {
  return c >= '0' && c <= '9';
}

class Decoder {
 public:
  Decoder(const u8* text, u32 n, DataBuffer& out) : text_(text), n_(n), out_(out) {}

  DecodeResult run() {
    while (i_ < n_) {
      plainRun();
      if (i_ < n_ && !step()) return DecodeResult::fault(i_);
    }
    return DecodeResult::good();
  }

 private:
  // What an encoder wrote goes straight into the room that there is.
  void plainRun() {
    u8* const to = out_.getBufAt(out_.getSize());
    if (!to) return;
    const auto done = vk_simd::readDecList(text_ + i_, n_ - i_, to, out_.getBufSize() - out_.getSize());
    out_.addToSize(done.values);
    i_ += done.chars;
  }

  // Takes one value, in whatever stands around it; a character that is none of all this is passed over.
  bool step() {
    const u32 start = i_;
    while (i_ < n_ && isBlank(text_[i_])) ++i_;
    const u32 first = i_;
    u32 value = 0;
    for (; i_ < n_ && isDigit(text_[i_]); ++i_)
      if (value < 256) value = value * 10 + (text_[i_] - u32{'0'});
    if (value > 255) {
      i_ = first;
      return false;
    }
    if (i_ != first) out_.appendChar(static_cast<u8>(value));
    while (i_ < n_ && isSeparator(text_[i_])) ++i_;
    if (i_ == start) ++i_;
    return true;
  }

  const u8* text_;
  u32 n_, i_ = 0;
  DataBuffer& out_;
};

}  // namespace

bool vk_encodeDecList(const u8* data, u32 n, StringBuffer& out) {
  if (n == 0) return true;
  if (!vk_codec::encodeInPieces(data, n, 4, out, vk_simd::putDecList)) return false;
  out.shorten(1);  // no comma behind the last value
  return true;
}

DecodeResult vk_decodeDecList(const char* text, u32 n, DataBuffer& out) {
  return Decoder(vk_codec::asBytes(text), n, out).run();
}
