// Tidying of text held as bytes, each operation one pass in place.
#include <cstring>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/simd/ByteHits.h"
#include "varnik/simd/Compact.h"
#include "varnik/simd/ReplaceByte.h"
#include "varnik/simd/Reverse.h"
#include "varnik/text/internal/FrontMover.h"

namespace {

constexpr u8 kEsc = 0x1B;

// What a terminal-size probe sends: save the cursor, reset the scrolling region, go to row 999 column 999, ask where
// the cursor is, restore it.
constexpr char kSizeProbe[] = "\0337\033[r\033[999;999H\033[6n\0338";
constexpr u32 kSizeProbeLen = sizeof kSizeProbe - 1;

constexpr u32 kLongestColour = 16;  // ESC, '[', up to 13 bytes of any value, 'm'

// The length of the sequence that begins with the ESC at `at` and is to go; 0 when none does. `n` bytes remain.
u32 terminalSequence(const u8* at, u32 n) {
  if (n < 3) return 0;
  if (at[1] == kSizeProbe[1])
    return n >= kSizeProbeLen && std::memcmp(at, kSizeProbe, kSizeProbeLen) == 0 ? kSizeProbeLen : 0;
  if (at[1] != '[') return 0;
  const u32 most = n < kLongestColour ? n : kLongestColour;
  for (u32 i = 2; i < most; ++i)
    if (at[i] == 'm') return i + 1;
  return 0;
}

}  // namespace

void DataBuffer::processRawPopMime() {
  if (!isValid() || !data_ || size_ < 3) return;
  FrontMover content(data_, size_);
  vk_simd::eachHit(data_, size_, '\n', [this, &content](u32 i) {
    if (size_ - i < 3 || data_[i + 1] != '.' || data_[i + 2] != '.') return;
    content.keepTo(i + 2);
    content.dropTo(i + 3);
  });
  size_ = content.finish();
}

void DataBuffer::stripTerminalColorCodes() {
  if (!isValid() || !data_) return;
  FrontMover content(data_, size_);
  vk_simd::eachHit(data_, size_, kEsc, [this, &content](u32 i) {
    const u32 length = i < content.decided() ? 0 : terminalSequence(data_ + i, size_ - i);
    if (length == 0) return;
    content.keepTo(i);
    content.dropTo(i + length);
  });
  size_ = content.finish();
}

void DataBuffer::replaceChar(char from, char to) {
  if (isValid() && data_) vk_simd::replaceByte(data_, size_, static_cast<u8>(from), static_cast<u8>(to));
}

void DataBuffer::removeByteValue(u8 b) {
  if (data_) size_ = vk_simd::dropByte(data_, data_, size_, b);
}

void DataBuffer::drop_non_usascii() {
  if (isValid() && data_) size_ = vk_simd::keepAscii(data_, data_, size_);
}

void DataBuffer::reverseBytes() {
  if (data_) vk_simd::reverseInPlace(data_, size_);
}

bool DataBuffer::appendSkipNulls(const u8* bytes, u32 n) {
  if (!isValid()) return false;
  if (!bytes || n == 0) return true;
  const bool isOwn = ownsAddress(bytes);
  const std::ptrdiff_t offset = isOwn ? bytes - data_ : 0;
  if (!makeRoom(n)) return false;
  size_ += vk_simd::dropByte(data_ + size_, isOwn ? data_ + offset : bytes, n, 0);
  return true;
}

void DataBuffer::dropNullBytes() {
  if (isValid() && data_) size_ = vk_simd::keepEven(data_, data_, size_);
}
