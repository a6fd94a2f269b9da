#include "varnik/services/codecs/internal/GroupDecoder.h"

#include <algorithm>
#include <cstring>

#include "varnik/services/codecs/internal/Room.h"
#include "varnik/simd/GatherText.h"

namespace vk_codec {
namespace {

// Length of the reference to a carriage return at the front of a text, 0 when there is none.
u32 referenceLength(const char* text, u32 n) {
  constexpr u32 kLength = 5;
  return n >= kLength && (std::memcmp(text, "&#xD;", kLength) == 0 || std::memcmp(text, "&#13;", kLength) == 0)
             ? kLength
             : 0;
}

// One run over a text. What the kernel takes straight from the front of the text is decoded there; from the first
// character that it stops at, the text is gathered piece by piece without its white space.
class Decoding {
 public:
  // `to` has room for the bytes of all `n` characters, a group that is not whole counted whole.
  Decoding(const GroupFormat& format, const char* text, u32 n, u8* to) : f_(format), text_(text), n_(n), to_(to) {}

  DecodeResult run();
  u32 written() const { return written_; }

 private:
  static constexpr u32 kPiece = 4096;

  void decodeCleanFront();
  bool decodeHeld();
  DecodeResult decodeLastGroup();
  DecodeResult skipPadding();
  u32 skippedAt(u32 at) const;
  bool isKnown(char c) const;
  u32 offsetOf(u32 significant) const;
  DecodeResult faultAt(u32 at) const;

  const GroupFormat& f_;
  const char* text_;
  u32 n_;
  u8* to_;
  u32 at_ = 0;       // characters of the text that were read
  u32 decoded_ = 0;  // of these, those that count: the characters of whole groups decoded
  u32 written_ = 0;  // bytes
  u32 numHeld_ = 0;
  char held_[kPiece + vk_simd::kGatherSlack];  // characters that count, read and not yet decoded
};

// Padding at the very end is kept from the kernel, which would leave a whole block for its sake.
void Decoding::decodeCleanFront() {
  u32 end = n_;
  while (end != 0 && n_ - end < f_.mostPadding && text_[end - 1] == '=') --end;
  at_ = decoded_ = f_.decode(text_, end, to_);
  written_ = decoded_ / f_.chars * f_.bytes;
}

// False when a whole group is held that holds a character outside the alphabet.
bool Decoding::decodeHeld() {
  const u32 used = f_.decode(held_, numHeld_, to_ + written_);
  decoded_ += used;
  written_ += used / f_.chars * f_.bytes;
  numHeld_ -= used;
  std::memmove(held_, held_ + used, numHeld_);
  return numHeld_ < f_.chars;
}

bool Decoding::isKnown(char c) const {
  char group[8];
  u8 bytes[5];
  std::fill_n(group, f_.chars, c);
  return f_.decode(group, f_.chars, bytes) == f_.chars;
}

// How many characters at `at` are to be skipped.
u32 Decoding::skippedAt(u32 at) const {
  if (vk_simd::isWhiteSpace(text_[at])) return 1;
  return f_.references ? referenceLength(text_ + at, n_ - at) : 0;
}

// Where the `significant`-th of the characters that count stands in the text.
u32 Decoding::offsetOf(u32 significant) const {
  u32 at = 0;
  for (;;) {
    while (const u32 skipped = skippedAt(at)) at += skipped;
    if (significant-- == 0) return at;
    ++at;
  }
}

// The first character to blame: one that is held, when it is outside the alphabet, else the one at `at`.
DecodeResult Decoding::faultAt(u32 at) const {
  for (u32 k = 0; k < numHeld_; ++k)
    if (!isKnown(held_[k])) return DecodeResult::fault(offsetOf(decoded_ + k));
  return DecodeResult::fault(at);
}

// A group that is not whole is filled with zeros: the bytes that it has no bits for must be zero then. A last character
// that completes no byte is one too many.
DecodeResult Decoding::decodeLastGroup() {
  if (numHeld_ == 0) return DecodeResult::good();
  const u32 count = numHeld_ * f_.bits / 8;
  char group[8];
  u8 bytes[5];
  std::fill_n(group, f_.chars, f_.zero);
  std::memcpy(group, held_, numHeld_);
  const bool fits = f_.decode(group, f_.chars, bytes) == f_.chars && count != (numHeld_ - 1) * f_.bits / 8 &&
                    std::all_of(bytes + count, bytes + f_.bytes, [](u8 b) { return b == 0; });
  if (!fits) return faultAt(offsetOf(decoded_ + numHeld_ - 1));
  std::memcpy(to_ + written_, bytes, count);
  written_ += count;
  numHeld_ = 0;
  return DecodeResult::good();
}

DecodeResult Decoding::skipPadding() {
  for (u32 padding = 0; at_ < n_;) {
    if (text_[at_] == '=' && padding < f_.mostPadding) {
      ++padding, ++at_;
    } else if (const u32 skipped = skippedAt(at_); skipped != 0) {
      at_ += skipped;
    } else {
      return faultAt(at_);
    }
  }
  return DecodeResult::good();
}

DecodeResult Decoding::run() {
  decodeCleanFront();
  while (at_ < n_) {
    u32 gathered = 0;
    at_ += vk_simd::gatherText(text_ + at_, n_ - at_, held_ + numHeld_, kPiece - numHeld_, gathered);
    numHeld_ += gathered;
    if (!decodeHeld()) return faultAt(at_);
    if (at_ == n_ || (text_[at_] == '=' && f_.mostPadding != 0)) break;
    if (text_[at_] != '&' && text_[at_] != '=') continue;
    const u32 skipped = skippedAt(at_);
    if (skipped == 0) return faultAt(at_);
    at_ += skipped;
  }
  const DecodeResult last = decodeLastGroup();
  return last.ok ? skipPadding() : last;
}

}  // namespace

DecodeResult decodeGroups(const GroupFormat& format, const char* text, u32 n, DataBuffer& out) {
  if (n == 0) return DecodeResult::good();
  u8* const to = roomFor(out, (u64{n} + format.chars - 1) / format.chars * format.bytes);
  if (!to) return DecodeResult::noMemory();
  Decoding decoding(format, text, n, to);
  const DecodeResult result = decoding.run();
  out.addToSize(decoding.written());
  return result;
}

}  // namespace vk_codec
