#include "varnik/services/codecs/internal/GroupDecoder.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "varnik/services/codecs/internal/Room.h"
#include "varnik/services/memory/Text.h"
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

// Between the word and its bytes, the low one first.
u64 littleEndian(u64 word) {
  return std::endian::native == std::endian::big ? __builtin_bswap64(word) : word;
}

constexpr u32 kMostChars = 8;         // of the largest group, which is at least its bytes
constexpr u32 kNoGroup = 0xFFFFFFFF;  // instead of a number of bytes

// Where padding and white space at the very end begin. They are kept from the kernels, which would leave a whole block
// for their sake.
u32 contentLength(const char* text, u32 n) {
  constexpr u32 kMostAtEnd = 8;
  u32 end = n;
  while (end != 0 && n - end < kMostAtEnd && (text[end - 1] == '=' || vk_simd::isWhiteSpace(text[end - 1]))) --end;
  return end;
}

// Decodes the `n` characters of a last group that is not whole to `to`, which has room for a whole one, and returns how
// many bytes they were, or `kNoGroup`. It is filled with zeros: the bytes that it has no bits for must be zero then. A
// last character that completes no byte is one too many. The characters are joined in a register, as the processor
// lets a kernel's wide load wait for narrow stores just made.
template <const GroupFormat& format>
u32 decodeLastGroup(const char* chars, u32 n, u8* to) {
  const u32 count = n * format.bits / 8;
  if (n == 0) return 0;
  if (count == (n - 1) * format.bits / 8) return kNoGroup;
  u64 word = ~u64{0} / 0xFF * static_cast<u8>(format.zero);
  for (u32 k = n; k-- != 0;) word = word << 8 | static_cast<u8>(chars[k]);
  char group[kMostChars];
  word = littleEndian(word);
  std::memcpy(group, &word, sizeof word);
  if (format.decode(group, format.chars, to) != format.chars) return kNoGroup;
  u8 spare = 0;
  for (u32 k = count; k < format.bytes; ++k) spare |= to[k];
  return spare == 0 ? count : kNoGroup;
}

// A text up to where its first run of groups ends.
struct FirstRun {
  u32 start, used;  // characters: white space before it, and its own
  u32 end;          // where padding and white space at the very end of the text begin
};

// One run over a text. White space that stands between groups only parts the text into runs, which the kernels take
// straight from there, equal lines all at once. From anything else on, the text is gathered piece by piece without its
// white space.
template <const GroupFormat& format>
class Decoding {
 public:
  // `to` has room for the bytes of all `n` characters, a group that is not whole counted whole.
  Decoding(const char* text, u32 n, u8* to) : text_(text), n_(n), to_(to) {}

  DecodeResult run(const FirstRun& first);
  u32 written() const { return written_; }

 private:
  static constexpr u32 kPiece = 4096;

  bool decodeRuns(const FirstRun& first);
  void decodeLines(u32 length);
  void count(u32 chars);
  bool decodeTail(u32 end);
  bool decodeHeld();
  bool decodeLast(const char* chars, u32 n);
  DecodeResult skipPadding();
  void skipWhiteSpace();
  u32 skippedAt(u32 at) const;
  bool isKnown(char c) const;
  u32 offsetOf(u32 significant) const;
  DecodeResult faultAt(u32 at) const;

  const char* text_;
  u32 n_;
  u8* to_;
  u32 at_ = 0;       // characters of the text that were read
  u32 decoded_ = 0;  // of these, those that count: the characters of whole groups decoded
  u32 written_ = 0;  // bytes
  u32 numHeld_ = 0;
  char held_[kPiece + vk_simd::kGatherSlack];  // characters that count, read and not yet decoded
};

template <const GroupFormat& format>
void Decoding<format>::count(u32 chars) {
  decoded_ += chars;
  written_ += chars / format.chars * format.bytes;
}

template <const GroupFormat& format>
void Decoding<format>::skipWhiteSpace() {
  while (at_ < n_ && vk_simd::isWhiteSpace(text_[at_])) ++at_;
}

// True when only padding is left to be looked at.
template <const GroupFormat& format>
bool Decoding<format>::decodeRuns(const FirstRun& first) {
  constexpr u32 kWorthARun = 16;
  at_ = first.start;
  for (u32 used = first.used; at_ < first.end;) {
    const bool isFirst = decoded_ == 0;
    at_ += used;
    count(used);
    if (first.end - at_ < format.chars) return decodeTail(first.end);
    if (used < kWorthARun || !vk_simd::isWhiteSpace(text_[at_])) return false;
    if constexpr (format.decodeLines != nullptr)
      if (isFirst) decodeLines(used);
    skipWhiteSpace();
    if (at_ < first.end) used = format.decode(text_ + at_, first.end - at_, to_ + written_);
  }
  return true;
}

// Lines as encoders write them: the first one, which ends here, tells their length and their end.
template <const GroupFormat& format>
void Decoding<format>::decodeLines(u32 length) {
  const char* const end = text_ + at_;
  const u32 endChars = vk_simd::isWhiteSpace(end[1]) ? 2 : 1;  // a whole group follows at least
  at_ += endChars;
  const u32 lines = format.decodeLines(text_ + at_, n_ - at_, length, {end, endChars}, to_ + written_);
  at_ += lines * (length + endChars);
  count(lines * length);
}

// Less than a group is left before the padding.
template <const GroupFormat& format>
bool Decoding<format>::decodeTail(u32 end) {
  if (!decodeLast(text_ + at_, end - at_)) return false;  // white space or a fault: the long way will tell
  at_ = end;
  return true;
}

// False when a whole group is held that holds a character outside the alphabet.
template <const GroupFormat& format>
bool Decoding<format>::decodeHeld() {
  if (numHeld_ < format.chars) return true;
  const u32 used = format.decode(held_, numHeld_, to_ + written_);
  count(used);
  numHeld_ -= used;
  std::memmove(held_, held_ + used, numHeld_);
  return numHeld_ < format.chars;
}

template <const GroupFormat& format>
bool Decoding<format>::isKnown(char c) const {
  char group[kMostChars];
  u8 bytes[kMostChars];
  std::fill_n(group, format.chars, c);
  return format.decode(group, format.chars, bytes) == format.chars;
}

// How many characters at `at` are to be skipped.
template <const GroupFormat& format>
u32 Decoding<format>::skippedAt(u32 at) const {
  if (vk_simd::isWhiteSpace(text_[at])) return 1;
  return format.references ? referenceLength(text_ + at, n_ - at) : 0;
}

// Where the `significant`-th of the characters that count stands in the text.
template <const GroupFormat& format>
u32 Decoding<format>::offsetOf(u32 significant) const {
  u32 at = 0;
  for (;;) {
    while (const u32 skipped = skippedAt(at)) at += skipped;
    if (significant-- == 0) return at;
    ++at;
  }
}

// The first character to blame: one that is held, when it is outside the alphabet, else the one at `at`.
template <const GroupFormat& format>
DecodeResult Decoding<format>::faultAt(u32 at) const {
  for (u32 k = 0; k < numHeld_; ++k)
    if (!isKnown(held_[k])) return DecodeResult::fault(offsetOf(decoded_ + k));
  return DecodeResult::fault(at);
}

template <const GroupFormat& format>
bool Decoding<format>::decodeLast(const char* chars, u32 n) {
  const u32 bytes = decodeLastGroup<format>(chars, n, to_ + written_);
  if (bytes == kNoGroup) return false;
  written_ += bytes;
  return true;
}

template <const GroupFormat& format>
DecodeResult Decoding<format>::skipPadding() {
  for (u32 padding = 0; at_ < n_;) {
    if (text_[at_] == '=' && padding < format.mostPadding) {
      ++padding, ++at_;
    } else if (const u32 skipped = skippedAt(at_); skipped != 0) {
      at_ += skipped;
    } else {
      return faultAt(at_);
    }
  }
  return DecodeResult::good();
}

template <const GroupFormat& format>
DecodeResult Decoding<format>::run(const FirstRun& first) {
  if (decodeRuns(first)) return skipPadding();
  while (at_ < n_) {
    u32 gathered = 0;
    at_ += vk_simd::gatherText(text_ + at_, n_ - at_, held_ + numHeld_, kPiece - numHeld_, gathered);
    numHeld_ += gathered;
    if (!decodeHeld()) return faultAt(at_);
    if (at_ == n_ || (text_[at_] == '=' && format.mostPadding != 0)) break;
    if (text_[at_] != '&' && text_[at_] != '=') continue;
    const u32 skipped = skippedAt(at_);
    if (skipped == 0) return faultAt(at_);
    at_ += skipped;
  }
  return decodeLast(held_, numHeld_) ? skipPadding() : faultAt(offsetOf(decoded_ + numHeld_ - 1));
}

// Out of line, as short texts notice the stack that it takes.
template <const GroupFormat& format>
[[gnu::noinline]] DecodeResult decodeFrom(const FirstRun& first, const char* text, u32 n, u8* to, DataBuffer& out) {
  Decoding<format> decoding(text, n, to);
  const DecodeResult result = decoding.run(first);
  out.addToSize(decoding.written());
  return result;
}

template <const GroupFormat& format>
bool isPadding(const char* text, u32 n) {
  u32 padding = 0;
  for (u32 i = 0; i < n; ++i) padding += text[i] == '=';
  return padding <= format.mostPadding;
}

constexpr u64 bytesOf(const GroupFormat& format, u64 chars) {
  return (chars + format.chars - 1) / format.chars * format.bytes;
}

// `ahead` characters at the front, whole groups, were decoded before: their bytes stand behind the content of `out`,
// which has room for all then. A text that is one run and its padding, as most are, ends here.
template <const GroupFormat& format>
inline DecodeResult decodeFollowing(const char* text, u32 n, u32 ahead, DataBuffer& out) {
  u8* const to = roomFor(out, bytesOf(format, n));
  if (!to) return DecodeResult::noMemory();
  u32 start = 0;
  while (start < n && vk_simd::isWhiteSpace(text[start])) ++start;
  const u32 end = start + contentLength(text + start, n - start), run = end - start - ahead;
  const u32 used = ahead + format.decode(text + start + ahead, run, to + bytesOf(format, ahead));
  const u32 left = end - start - used;
  if (left < format.chars && isPadding<format>(text + end, n - end)) {
    const u32 bytes = static_cast<u32>(bytesOf(format, used));
    const u32 last = decodeLastGroup<format>(text + end - left, left, to + bytes);
    if (last != kNoGroup) {
      out.addToSize(bytes + last);
      return DecodeResult::good();
    }
  }
  return decodeFrom<format>({start, used, end}, text, n, to, out);
}

constexpr u32 kChunk = 16384;  // characters that stay in the first cache between the search for the NUL and the decoder

// REQUIRES: at least `kChunk` characters before the NUL.
template <const GroupFormat& format>
[[gnu::noinline]] DecodeResult decodeLongTerminated(const char* text, DataBuffer& out) {
  if (!out.checkValidityDb()) return DecodeResult::noMemory();
  u8* const block = out.getData2();
  const u32 room = block ? out.getBufSize() - out.getSize() : 0;
  u32 seen = 0, ahead = 0;  // `seen` has no NUL before it
  for (u32 next = kChunk; next == kChunk && ahead == seen; next = static_cast<u32>(strnlen(text + seen, kChunk))) {
    seen += kChunk;
    if (bytesOf(format, seen) > room || seen > ~u32{0} - kChunk) break;
    ahead += format.decode(text + ahead, kChunk, block + out.getSize() + bytesOf(format, ahead));
  }
  const u64 n = std::min<u64>(u64{seen} + vk_strlen(text + seen), 0xFFFFFFFF);
  if (bytesOf(format, n) > room) ahead = 0;  // `out` grows, and takes only its content along
  return decodeFollowing<format>(text, static_cast<u32>(n), ahead, out);
}

}  // namespace

template <const GroupFormat& format>
DecodeResult decodeGroups(const char* text, u32 n, DataBuffer& out) {
  return n == 0 ? DecodeResult::good() : decodeFollowing<format>(text, n, 0, out);
}

template <const GroupFormat& format>
DecodeResult decodeTerminatedGroups(const char* text, DataBuffer& out) {
  const u32 n = static_cast<u32>(strnlen(text, kChunk));
  return n < kChunk ? decodeGroups<format>(text, n, out) : decodeLongTerminated<format>(text, out);
}

template DecodeResult decodeGroups<kBase64>(const char*, u32, DataBuffer&);
template DecodeResult decodeGroups<kBase64Url>(const char*, u32, DataBuffer&);
template DecodeResult decodeGroups<kBase32>(const char*, u32, DataBuffer&);
template DecodeResult decodeGroups<kHex>(const char*, u32, DataBuffer&);
template DecodeResult decodeTerminatedGroups<kBase64>(const char*, DataBuffer&);
template DecodeResult decodeTerminatedGroups<kBase64Url>(const char*, DataBuffer&);
template DecodeResult decodeTerminatedGroups<kBase32>(const char*, DataBuffer&);
template DecodeResult decodeTerminatedGroups<kHex>(const char*, DataBuffer&);

}  // namespace vk_codec
