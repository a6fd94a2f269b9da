// Questions about text held as bytes.
#include <cstring>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/simd/Lines.h"

bool DataBuffer::containsBareCRLF() const {
  return isValid() && data_ && vk_simd::hasBareLineEnd(data_, size_);
}

// A line is too long when maxLen + 1 bytes from its start on hold no line end. Looking for one from the far end of that
// stretch back leaves most of the bytes of lines much shorter than maxLen unread.
bool DataBuffer::findLongLine(u32 maxLen) const {
  if (!data_) return false;
  u32 start = 0, clean = 0;  // data_[start, clean) is known to hold no line end
  while (size_ - start > maxLen) {
    const u32 end = start + maxLen + 1;
    start = vk_simd::behindLastLineEnd(data_, clean, end);
    if (start == clean) return true;
    clean = end;
  }
  return false;
}

u8* DataBuffer::findByte(u8 b) {
  if (!isValid() || !data_) return nullptr;
  return static_cast<u8*>(std::memchr(data_, b, size_));
}

bool DataBuffer::containsChar(char c) const {
  return isValid() && data_ && std::memchr(data_, static_cast<u8>(c), size_);
}

bool DataBuffer::altBytesNull() const {
  return isValid() && data_ && size_ >= 2 && vk_simd::oddBytesAreZero(data_, size_);
}
