// Bytes added at the end.
#include <algorithm>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/crypto/RandomSource.h"
#include "varnik/services/memory/Text.h"
#include "varnik/services/strings/StringBuffer.h"
#include "varnik/simd/Reverse.h"

namespace {

// The increment of an append of one or two bytes, by the bytes held.
u32 charStep(u32 size) {
  if (size <= 63) return 64;
  if (size <= 255) return 256;
  return size <= 1'023 ? 1'024 : 10'000;
}

}  // namespace

// Room for `n` more bytes by the growth policy, where the capacity does not do.
bool DataBuffer::makeRoom(u32 n) {
  if (!fits(n)) return false;
  return (n <= capacity_ - size_ || expandBuffer(n)) && data_;
}

bool DataBuffer::makeRoomForChars(u32 k) {
  if (!isValid()) return false;
  const u32 step = charStep(size_);
  if (k > capacity_ - size_ && (!fits(step) || !reallocate(size_ + step))) return false;
  return data_ != nullptr;
}

// A copy of bytes that lie in the buffer's own storage, taken before that storage moves.
bool DataBuffer::stage(const void* source, u32 n, DataBuffer& staged) const {
  staged.secure = secure;
  return fits(n) && staged.append(source, n);
}

bool DataBuffer::appendSlow(const void* source, u32 n) {
  if (!isValid()) return false;
  if (!source || n == 0) return true;
  if (ownsAddress(source)) {  // and does not fit: what fits was appended inline
    DataBuffer staged;
    return stage(source, n, staged) && append(staged);
  }
  if (!makeRoom(n)) return false;
  vk_memcpy(data_ + size_, source, n);
  size_ += n;
  return true;
}

bool DataBuffer::append(const StringBuffer& text) {
  return text.isEmpty() || append(text.getString(), text.getSize());
}

bool DataBuffer::appendStr(const char* text) {
  return !text || append(text, vk_strlen(text));
}

bool DataBuffer::appendRange(const DataBuffer& source, u32 start, u32 n) {
  if (start >= source.size_ || !source.data_) return false;
  return append(source.data_ + start, std::min(n, source.size_ - start));
}

bool DataBuffer::appendRange2(const DataBuffer& source, u32 start, u32 n) {
  if (start >= source.size_ || source.size_ - start < n || !source.data_) return false;
  return append(source.data_ + start, n);
}

bool DataBuffer::appendReverse(const void* source, u32 n, bool reverse) {
  if (!isValid()) return false;
  if (!source || n == 0) return true;
  if (ownsAddress(source)) {
    DataBuffer staged;
    return stage(source, n, staged) && appendReverse(staged.data_, n, reverse);
  }
  if (!makeRoom(n)) return false;
  const u8* bytes = static_cast<const u8*>(source);
  if (reverse) {
    vk_simd::reverseCopy(data_ + size_, bytes, n);
  } else {
    vk_memcpy(data_ + size_, bytes, n);
  }
  size_ += n;
  return true;
}

bool DataBuffer::appendCharSlow(u8 c) {
  if (!makeRoomForChars(1)) return false;
  data_[size_++] = c;
  return true;
}

bool DataBuffer::appendChar2(u8 c1, u8 c2) {
  if (!makeRoomForChars(2)) return false;
  data_[size_] = c1;
  data_[size_ + 1] = c2;
  size_ += 2;
  return true;
}

bool DataBuffer::appendCharN(u8 c, u32 n) {
  if (n == 0) return true;
  if (!isValid()) return false;
  const u64 step = u64{n} + 10'000;
  if (n > capacity_ - size_ && (!fits(step) || !reallocate(static_cast<u32>(size_ + step)))) return false;
  if (!data_) return false;
  vk_memset(data_ + size_, c, n);
  size_ += n;
  return true;
}

bool DataBuffer::appendRandomBytes(u32 n) {
  return isValid() && RandomSource::generateBytes(n, *this);
}
