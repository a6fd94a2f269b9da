// The reader and the writer of the charsets of ASCII bytes and pairs.
#include <algorithm>
#include <cstring>

#include "varnik/services/charset/internal/Pivot.h"
#include "varnik/simd/AsciiRun.h"
#include "varnik/simd/internal/UtfForms.h"

namespace vk_charset {
namespace {

constexpr u32 kRun = 16;  // characters of ASCII that are worth a loop of their own

template <class Unit>
bool beginsAsciiRun(const Unit* units) {
  constexpr u64 kOthers = ~u64{0} / static_cast<Unit>(~Unit{0}) * static_cast<Unit>(~Unit{0x7F});
  u64 words[kRun * sizeof(Unit) / 8], all = 0;
  std::memcpy(words, units, sizeof words);
  for (const u64 word : words) all |= word;
  return (all & kOthers) == 0;
}

}  // namespace

u32 DoubleByteReader::readAscii(u16* units, u32 room) {
  const u8* const from = data_ + at_;
  const u32 most = std::min(room, n_ - at_);
  if (most < kRun || !beginsAsciiRun(from)) return 0;
  const u32 run = vk_simd::asciiRun(from, most);
  for (u32 i = 0; i < run; ++i) units[i] = from[i];
  at_ += run;
  return run;
}

// Reads what begins with a lead byte, where the table has no answer yet, or none at all.
u16 DoubleByteReader::readPair(u32& at) {
  const u8 first = data_[at++];
  table_.fillUnits(first, icu_);
  const u16 unit = at != n_ ? table_.unitOf(first, data_[at], true) : DoubleByteTable::kNoPair;
  at += unit != DoubleByteTable::kNoPair;
  if (unit < DoubleByteTable::kNoCharacter) return unit;
  bad_ = true;
  return vk_simd::kReplacement;
}

// Reads the characters that begin in the next 64 bytes, or up to a run of ASCII. Which bytes could begin a pair is
// found for all of them at once, so that a character waits for the one before by two operations only, and no branch has
// to guess the mixture.
u32 DoubleByteReader::readBlock(u16* units, u32 room) {
  const DoubleByteTable& table = table_;
  const u8* const bytes = data_ + at_;
  const u32 left = n_ - at_, end = std::min({left, room, 64U});
  const u64 leads = vk_simd::membersAmong(table.leads(), bytes, left);
  u32 i = 0, done = 0;
  while (i < end) {
    if (done % 8 == 7 && i + kRun < end && beginsAsciiRun(bytes + i)) break;
    const bool isPair = (leads >> i & 1) != 0;
    u16 unit = table.unitOf(bytes[i], i + 1 != left ? bytes[i + 1] : u8{0}, isPair);
    i += 1 + u32{isPair};
    if (unit >= DoubleByteTable::kNoCharacter) [[unlikely]] {
      u32 at = at_ + i - 2;
      unit = readPair(at);
      i = at - at_;
    }
    units[done++] = unit;
  }
  at_ += i;
  return done;
}

bool DoubleByteReader::read(u16* units, u32 room, u32& count) {
  count = 0;
  while (count != room && at_ != n_) {
    count += readAscii(units + count, room - count);
    if (count != room && at_ != n_) count += readBlock(units + count, room - count);
  }
  return true;
}

// Finds the code of a unit for which the table had none. False when there is no memory for that.
bool DoubleByteWriter::findCode(u16 unit, u16& code) {
  if (!table_.fillCodes(unit, icu_)) return false;
  code = table_.codeOf(unit);
  if (code != DoubleByteTable::kNoCode) return true;
  bad_ = true;
  code = kSubstitute << 8;
  return true;
}

// Writes pieces that are short enough for the stack, so that the target grows by what the text takes.
bool DoubleByteWriter::write(const u16* units, u32 n, bool) {
  constexpr u32 kPiece = 512, kFew = 8;
  const DoubleByteTable& table = table_;
  for (u32 i = 0; i < n;) {
    u8 bytes[2 * kPiece];
    u8* to = bytes;
    for (const u32 end = i + std::min(n - i, kPiece); i < end;) {
      if (end - i >= kRun && beginsAsciiRun(units + i)) {
        for (u32 k = 0; k < kRun; ++k) to[k] = static_cast<u8>(units[i + k]);
        to += kRun;
        i += kRun;
        continue;
      }
      for (const u32 few = std::min(i + kFew, end); i < few; ++i) {
        u16 code = table.codeOf(units[i]);
        if (code == DoubleByteTable::kNoCode) [[unlikely]] {
          if (!findCode(units[i], code)) return false;
          if (beginsSurrogatePair(units + i, n - i)) ++i;  // one character
        }
        to[0] = static_cast<u8>(code >> 8);
        to[1] = static_cast<u8>(code);  // of a byte alone, written over by the next
        to += 1 + u32{(code & 0xFF) != 0};
      }
    }
    if (!out_.append(bytes, static_cast<u32>(to - bytes))) return false;
  }
  return true;
}

}  // namespace vk_charset
