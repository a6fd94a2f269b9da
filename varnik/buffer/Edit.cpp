// Bytes inserted, removed, rewritten and compared.
#include <algorithm>
#include <cstring>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/simd/Bitwise.h"

// ---- Inserting ----

// Opens a gap of `n` bytes at `pos` and fills it. REQUIRES: the capacity takes them, the source lies elsewhere.
void DataBuffer::insertInto(u32 pos, const void* source, u32 n) {
  std::memmove(data_ + pos + n, data_ + pos, size_ - pos);
  vk_memcpy(data_ + pos, source, n);
  size_ += n;
}

bool DataBuffer::prepend(const void* source, u32 n) {
  if (!isValid()) return false;
  if (!source || n == 0) return true;
  if (ownsAddress(source)) {
    DataBuffer staged;
    return stage(source, n, staged) && prepend(staged.data_, n);
  }
  if (!fits(n) || !ensureBuffer(size_ + n) || !data_) return false;
  insertInto(0, source, n);
  return true;
}

bool DataBuffer::insertAt(u32 pos, const void* source, u32 n) {
  if (!isValid()) return false;
  if (pos == 0) return prepend(source, n);
  if (pos >= size_) return append(source, n);
  if (!source || n == 0) return true;
  if (ownsAddress(source)) {
    DataBuffer staged;
    return stage(source, n, staged) && insertAt(pos, staged.data_, n);
  }
  if (!makeRoom(n)) return false;
  insertInto(pos, source, n);
  return true;
}

// ---- Removing ----

void DataBuffer::removeHead(u32 n) {
  if (!isValid() || !data_) return;
  if (n >= size_) {
    clear();
    return;
  }
  size_ -= n;
  std::memmove(data_, data_ + n, size_);
}

bool DataBuffer::removeChunk(s32 start, s32 n) {
  if (start < 0) return false;
  if (n < 1) return true;
  const u32 from = static_cast<u32>(start);
  if (from >= size_) return true;
  const u32 tail = size_ - from;
  const u32 count = std::min(static_cast<u32>(n), tail);
  if (data_) std::memmove(data_ + from, data_ + from + count, tail - count);
  size_ -= count;
  return true;
}

void DataBuffer::shorten(u32 n) {
  size_ -= std::min(n, size_);
}

void DataBuffer::slideTailToFront(u32 n, LogBase&) {
  if (n == 0 || !data_ || size_ <= n) return;
  std::memmove(data_, data_ + (size_ - n), n);
  size_ = n;
}

bool DataBuffer::resize(u32 n) {
  if (n > size_) return appendCharN(0, n - size_);
  size_ = n;
  return true;
}

// ---- Rewriting and comparing ----

bool DataBuffer::exclusiveOr(const DataBuffer& a, const DataBuffer& b) {
  if (a.size_ != b.size_) return false;
  const u32 n = a.size_;
  if (n == 0) {
    clear();
    return true;
  }
  if (!a.data_ || !b.data_ || !ensureBuffer(n)) return false;
  size_ = n;
  if (!data_) return false;
  vk_simd::xorBytes(data_, a.data_, b.data_, n);
  return true;
}

void DataBuffer::applyMask(const void* mask, u32 n) {
  if (mask && data_) vk_simd::andBytes(data_, data_, static_cast<const u8*>(mask), std::min(size_, n));
}

bool DataBuffer::equals(const DataBuffer& other) const {
  return equals2(other.data_, other.size_);
}

// A buffer can be given a size without a block, see `takeData2`.
bool DataBuffer::equals2(const void* p, u32 n) const {
  if (size_ != n) return false;
  return n == 0 || (p && data_ && vk_memcmp(p, data_, n) == 0);
}
