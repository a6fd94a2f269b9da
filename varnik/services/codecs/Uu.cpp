// Uuencoded text (POSIX uuencode, the historical algorithm).
//
//   begin 644 data
//   #0V%T             the count 3 as '#', then four characters for three bytes
//   `                 a line of no bytes
//   end
#include "varnik/services/codecs/Uu.h"

#include <initializer_list>

#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/services/memory/Memory.h"
#include "varnik/services/memory/Text.h"
#include "varnik/simd/UuLines.h"

namespace {

const char* wordOr(const char* word, const char* otherwise) {
  return word && *word != 0 ? word : otherwise;
}

struct Line {
  u32 start, end;  // without CR and LF
  u32 next;
};

class Decoder {
 public:
  Decoder(const u8* text, u32 n, DataBuffer& out) : text_(text), n_(n), out_(out) {}

  DecodeResult run() {
    if (!skipToData()) return DecodeResult::fault(0);
    for (bool closed = false; i_ < n_;) {
      if (!closed && !wholeLines()) return DecodeResult::noMemory();
      const Line line = lineAt(i_);
      if (isEnd(line)) return DecodeResult::good();
      const u32 bad = closed ? firstNotEmpty(line.start, line.end) : readLine(line);
      out_.append(bytes_, count_);  // into the room that `wholeLines` has made
      if (bad != kNoFault) return DecodeResult::fault(bad);
      closed = count_ == 0;
      i_ = line.next;
    }
    return DecodeResult::fault(n_ - 1);  // cut off before `end`
  }

 private:
  Line lineAt(u32 start) const {
    u32 at = start;
    while (at < n_ && text_[at] != '\n') ++at;
    Line line{start, at, at < n_ ? at + 1 : n_};
    if (line.end > start && text_[line.end - 1] == '\r') --line.end;
    return line;
  }

  // What a mail says before the data is passed over.
  bool skipToData() {
    while (i_ < n_) {
      const Line line = lineAt(i_);
      i_ = line.next;
      if (isBegin(line)) return true;
    }
    return false;
  }

  // `begin`, blanks, an octal mode, and whatever name.
  bool isBegin(const Line& line) const {
    u32 at = line.start + 5;
    if (line.end < at || vk_memcmp(text_ + line.start, "begin", 5) != 0) return false;
    const u32 blanks = at;
    while (at < line.end && text_[at] == ' ') ++at;
    const u32 mode = at;
    while (at < line.end && text_[at] >= '0' && text_[at] <= '7') ++at;
    return mode != blanks && at != mode && (at == line.end || text_[at] == ' ');
  }

  bool isEnd(const Line& line) const {
    return line.end - line.start >= 3 && vk_memcmp(text_ + line.start, "end", 3) == 0 &&
           firstNotEmpty(line.start + 3, line.end) == kNoFault;
  }

  // The first character of [start, end) that stands for something, kNoFault when none does.
  u32 firstNotEmpty(u32 start, u32 end) const {
    while (start < end && (text_[start] == ' ' || text_[start] == '`')) ++start;
    return start < end ? start : kNoFault;
  }

  // Makes room for the line behind them, too.
  bool wholeLines() {
    u8* const to = vk_codec::roomFor(out_, u64{n_ - i_} / 4 * 3 + vk_simd::kUuSlack + sizeof bytes_);
    if (!to) return false;
    const auto done = vk_simd::readUuLines(text_ + i_, n_ - i_, to);
    out_.addToSize(done.bytes);
    i_ += done.chars;
    return true;
  }

  // Reads one line of any length into `bytes_`. Blanks at its end may have been lost on the way: as many as its count
  // promises are made up for, and no character beyond them may stand for anything. Returns the offset of a fault; the
  // groups before it count.
  u32 readLine(const Line& line) {
    const u8 first = line.start < line.end ? text_[line.start] : u8{' '};
    count_ = 0;
    if (!vk_simd::isUuChar(first)) return line.start;
    const u32 promised = vk_simd::uuBits(first);
    u32 at = line.start + 1;
    for (; count_ < promised; count_ += 3, at += 4)
      if (const u32 bad = readGroup(at, line.end); bad != kNoFault) return bad;
    count_ = promised;
    return at < line.end ? firstNotEmpty(at, line.end) : kNoFault;
  }

  u32 readGroup(u32 at, u32 end) {
    u32 bits = 0;
    for (u32 k = at; k < at + 4; ++k) {
      const u8 c = k < end ? text_[k] : u8{' '};
      if (!vk_simd::isUuChar(c)) return k;
      bits = bits << 6 | vk_simd::uuBits(c);
    }
    for (u32 k = 0; k < 3; ++k) bytes_[count_ + k] = static_cast<u8>(bits >> (16 - 8 * k));
    return kNoFault;
  }

  const u8* text_;
  u32 n_, i_ = 0;
  DataBuffer& out_;
  u8 bytes_[63];   // the bytes of a line: 63 are the most that a count can promise
  u32 count_ = 0;  // how many of them there are
};

}  // namespace

bool Uu::uu_encode(const DataBuffer& data, const char* mode, const char* name, StringBuffer& out) const {
  mode = wordOr(mode, "644");
  name = wordOr(name, "data");
  constexpr u32 kFrame = sizeof "begin  \n`\nend\n";
  const u32 n = data.getSize();
  const u64 lines = u64{n} / vk_simd::kUuLineBytes + 1;
  const u64 room = lines * (vk_simd::kUuLineChars + 2) + vk_simd::kUuSlack;
  if (!vk_codec::roomFor(out, kFrame + u64{vk_strlen(mode)} + vk_strlen(name) + room)) return false;
  for (const char* const word : {"begin ", mode, " ", name, "\n"}) out.append(word);  // there is room for all
  if (n != 0) out.addToSize(vk_simd::putUuLines(data.getData2(), n, vk_codec::roomFor(out, room)));
  return out.append("`\nend\n");
}

DecodeResult vk_decodeUu(const char* text, u32 n, DataBuffer& out) {
  return Decoder(vk_codec::asBytes(text), n, out).run();
}

bool ContentEncoder::decodeId37(const char* text, DataBuffer& out, LogBase&) {
  return vk_decodeUu(text, vk_strlen(text), out).ok;
}
