#include "varnik/services/charset/internal/Pivot.h"

#include <algorithm>

#include "varnik/simd/AsciiRun.h"

namespace vk_charset {
namespace {

constexpr u32 kBlock = 2048;  // units from reader to writer at once
constexpr u32 kSlice = 512;   // bytes that ICU gets before the next look for a run of ASCII

bool isHighSurrogate(u16 unit) {
  return (unit & 0xFC00) == 0xD800;
}

u32 asciiUnits(const u16* units, u32 n) {
  u32 i = 0;
  while (i < n && units[i] < 0x80) ++i;
  return i;
}

// How many units go to ICU before ASCII is worth the change of roads, or must change them: some of ICU's tables for
// Windows charsets write these three controls as one another.
u32 unitsForIcu(const u16* units, u32 n) {
  constexpr u32 kWorthIt = 16;
  u32 ascii = 0;
  for (u32 i = 0; i < n; ++i) {
    ascii = units[i] < 0x80 ? ascii + 1 : 0;
    if (units[i] == 0x1A || units[i] == 0x1C || units[i] == 0x7F) return i;
    if (ascii == kWorthIt) return i + 1 - kWorthIt;
  }
  return n;
}

const u8* bytesOf(const u16* units) {
  return reinterpret_cast<const u8*>(units);
}

}  // namespace

bool UtfReader::read(u16* units, u32 room, u32& count) {
  const auto done =
      vk_simd::convertUtf(form_, kUtf16Host, data_ + at_, n_ - at_, reinterpret_cast<u8*>(units), room * 2);
  at_ += done.read;
  bad_ |= done.bad;
  count = done.written / 2;
  return true;
}

bool SingleByteReader::read(u16* units, u32 room, u32& count) {
  count = std::min(room, n_ - at_);
  const u8* const from = data_ + at_;
  u32 flags = 0;
  for (u32 i = 0; i < count; ++i) {
    units[i] = table_.unit[from[i]];
    flags |= table_.utf8[from[i]];
  }
  bad_ |= (flags & vk_simd::kNoCharacter) != 0;
  at_ += count;
  return true;
}

u32 IcuReader::readAscii(u16* units, u32 room) {
  if (!asciiBytes_ || !icu_.isBetweenCharacters()) return 0;
  const u32 run = vk_simd::asciiRun(data_ + at_, std::min(room, n_ - at_));
  for (u32 i = 0; i < run; ++i) units[i] = data_[at_ + i];
  at_ += run;
  return run;
}

bool IcuReader::read(u16* units, u32 room, u32& count) {
  count = 0;
  while (!ended_) {
    if (!icuHasMore_) count += readAscii(units + count, room - count);
    if (at_ == n_ && !icu_.isOpen()) ended_ = true;
    if (ended_ || count == room) break;
    const u32 slice = std::min(kSlice, n_ - at_);
    const bool last = slice == n_ - at_;
    const auto step = icu_.toUnits(data_ + at_, slice, units + count, room - count, last);
    if (step.result == IcuConverter::Result::kFailed) return false;
    at_ += step.read;
    count += step.written;
    bad_ |= icu_.bad();
    icuHasMore_ = step.result == IcuConverter::Result::kRoomUsed;
    ended_ = last && !icuHasMore_;
    if (icuHasMore_) break;
  }
  return true;
}

bool UtfWriter::write(const u16* units, u32 n, bool) {
  return appendUtf(kUtf16Host, form_, bytesOf(units), n * 2, out_, bad_);
}

bool SingleByteWriter::write(const u16* units, u32 n, bool) {
  if (!makeRoom(out_, n)) return false;
  u8* const to = freeSpace(out_);
  const auto charset = table_.charset();
  u32 written = 0;
  for (u32 i = 0; i < n; ++i) {
    u8 byte = charset.byteOf(units[i]);
    if (byte == 0 && units[i] != 0) {
      byte = table_.substitute;
      bad_ = true;
      if (beginsSurrogatePair(units + i, n - i)) ++i;  // one character
    }
    to[written++] = byte;
  }
  out_.addToSize(written);
  return true;
}

bool IcuWriter::writeAscii(const u16* units, u32 n) {
  if (!makeRoom(out_, n)) return false;
  u8* const to = freeSpace(out_);
  for (u32 i = 0; i < n; ++i) to[i] = static_cast<u8>(units[i]);
  out_.addToSize(n);
  return true;
}

bool IcuWriter::writeOthers(const u16* units, u32 n, bool last) {
  for (;;) {
    if (!makeRoom(out_, std::max<u32>(n, 64))) return false;
    const auto step = icu_.fromUnits(units, n, freeSpace(out_), freeBytes(out_), last);
    out_.addToSize(step.written);
    units += step.read;
    n -= step.read;
    bad_ |= icu_.bad();
    if (step.result == IcuConverter::Result::kDone) return true;
    if (step.result == IcuConverter::Result::kFailed || (step.read == 0 && step.written == 0)) return false;
  }
}

bool IcuWriter::write(const u16* units, u32 n, bool last) {
  if (!asciiBytes_) return writeOthers(units, n, last);
  for (u32 i = 0; i < n;) {
    const u32 ascii = asciiUnits(units + i, n - i);
    if (ascii != 0 && !writeAscii(units + i, ascii)) return false;
    i += ascii;
    const u32 others = unitsForIcu(units + i, n - i);
    if (others != 0 && !writeOthers(units + i, others, true)) return false;
    i += others;
  }
  return true;
}

bool pump(UnitReader& reader, UnitWriter& writer) {
  u16 units[kBlock];
  u32 held = 0;  // a high surrogate at the end of a block waits for its other half
  for (bool last = false; !last;) {
    u32 count = 0;
    if (!reader.read(units + held, kBlock - held, count)) return false;
    last = reader.atEnd();
    if (!last && count == 0) return false;  // no progress: a converter that is stuck
    count += held;
    held = !last && isHighSurrogate(units[count - 1]) ? 1 : 0;
    if (!writer.write(units, count - held, last)) return false;
    if (held != 0) units[0] = units[count - 1];
  }
  return !reader.bad() && !writer.bad();
}

}  // namespace vk_charset
