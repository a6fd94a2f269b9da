// Storage that changes hands between buffers, callers and strings, and contents replaced by copies.
#include <utility>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/strings/StringBuffer.h"

// ---- From another buffer ----

void DataBuffer::takeData(DataBuffer& source) {
  if (!isValid() || &source == this) return;
  if (source.size_ == 0) {
    clear();
    return;
  }
  releaseStorage();
  install(source.data_, source.size_, source.capacity_, source.borrowed_);
  source.install(nullptr, 0, 0, false);
}

void DataBuffer::takeDataPtr(DataBuffer* source) {
  if (source) {
    takeData(*source);
  } else {
    clear();
  }
}

void DataBuffer::takeData_kb(DataBuffer& source) {
  if (!isValid() || &source == this) return;
  u8* kept = borrowed_ ? nullptr : data_;
  const u32 keptCapacity = kept ? capacity_ : 0;
  install(source.data_, source.size_, source.capacity_, source.borrowed_);
  source.install(kept, 0, keptCapacity, false);
}

void DataBuffer::swapData(DataBuffer& other) {
  std::swap(data_, other.data_);
  std::swap(size_, other.size_);
  std::swap(capacity_, other.capacity_);
  std::swap(borrowed_, other.borrowed_);
  std::swap(writable_, other.writable_);
  std::swap(secure, other.secure);
}

// ---- From a caller, and back ----

void DataBuffer::takeData2(void* block, u32 size, u32 capacity) {
  if (!isValid()) return;
  if (block != data_) releaseStorage();  // a buffer's own block, handed over again, only changes its counts
  install(static_cast<u8*>(block), size, capacity, false);
}

u8* DataBuffer::removeData() {
  if (!isValid()) return nullptr;
  u8* block = data_;
  install(nullptr, 0, 0, false);
  return block;
}

void DataBuffer::dropData() {
  install(nullptr, 0, 0, borrowed_);
}

u8* DataBuffer::getDataSafe4() {
  if (!isValid()) return nullptr;
  if (data_) return data_;
  u8* block = allocByteArray(4);
  if (!block) return nullptr;
  vk_memset(block, 0, 4);
  install(block, 0, 4, false);
  return block;
}

void DataBuffer::takeString(StringBuffer& text) {
  if (!isValid()) return;
  u32 size = 0, capacity = 0;
  u8* block = text.extractString2(size, capacity);
  takeData2(block, size, capacity);
}

bool DataBuffer::prepForSbTake() {
  if (size_ == 0) return appendChar(0);
  if (!data_) return false;
  if (data_[size_ - 1] != 0) return appendChar(0);
  while (size_ >= 2 && data_[size_ - 2] == 0) --size_;
  return true;
}

// ---- Copies ----

// Replaces the storage by an owned block of `capacity` bytes that begins with the `n` at `from`; empty without memory.
void DataBuffer::replaceBy(const u8* from, u32 n, u32 capacity) {
  u8* kept = ownsAddress(from) && !borrowed_ ? data_ : nullptr;  // still to be read from
  if (!kept) releaseStorage();
  u8* block = from && capacity != 0 ? allocByteArray(capacity) : nullptr;
  if (block) vk_memcpy(block, from, n);
  delete[] kept;
  install(block, block ? n : 0, block ? capacity : 0, false);
}

void DataBuffer::copy(const DataBuffer& source) {
  if (isValid()) replaceBy(source.data_, source.size_, source.capacity_);
}

void DataBuffer::copyData(const void* source, u32 n) {
  if (isValid()) replaceBy(static_cast<const u8*>(source), n, n);
}
