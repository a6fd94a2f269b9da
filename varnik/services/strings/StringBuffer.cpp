// Life cycle, growth and additions of StringBuffer.
#include "varnik/services/strings/StringBuffer.h"

#include <algorithm>
#include <utility>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/memory/Memory.h"
#include "varnik/services/memory/Text.h"

namespace {
constexpr u64 kMost = 0xFFFFFFFF;
constexpr u64 kLeastBlock = 32;
}  // namespace

StringBuffer::StringBuffer(const StringBuffer& other) : secure_(other.secure_) {
  append(other);
}

StringBuffer::StringBuffer(StringBuffer&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)),
      size_(std::exchange(other.size_, 0)),
      capacity_(std::exchange(other.capacity_, 0)),
      secure_(std::exchange(other.secure_, false)) {}

StringBuffer& StringBuffer::operator=(const StringBuffer& other) {
  if (this != &other) *this = StringBuffer(other);
  return *this;
}

StringBuffer& StringBuffer::operator=(StringBuffer&& other) noexcept {
  StringBuffer value(std::move(other));
  std::swap(data_, value.data_);
  std::swap(size_, value.size_);
  std::swap(capacity_, value.capacity_);
  std::swap(secure_, value.secure_);
  return *this;
}

StringBuffer::~StringBuffer() {
  release();
}

// Bytes that once held a secret may lie anywhere in the block, so all of it is wiped.
void StringBuffer::release() {
  if (secure_) vk_memset(data_, 0, capacity_);
  delete[] reinterpret_cast<u8*>(data_);
}

// Room for `n` more bytes and the NUL. Grows by half, so that many small additions cost little; where so much is not to
// be had, asks for just what is needed.
bool StringBuffer::makeRoom(u32 n) {
  const u64 wanted = u64{size_} + n + 1;
  if (wanted > kMost) return false;
  if (wanted <= capacity_) return true;
  u64 capacity = std::min(std::max({wanted, capacity_ + u64{capacity_ / 2}, kLeastBlock}), kMost);
  u8* block = allocByteArray(static_cast<u32>(capacity));
  if (!block && capacity > wanted) block = allocByteArray(static_cast<u32>(capacity = wanted));
  if (!block) return false;
  if (data_) {
    vk_memcpy(block, data_, size_ + 1);
  } else {
    block[0] = 0;
  }
  release();
  data_ = reinterpret_cast<char*>(block);
  capacity_ = static_cast<u32>(capacity);
  return true;
}

bool StringBuffer::appendSlow(const char* bytes, u32 n) {
  if (!bytes || n == 0) return true;
  const bool own = data_ && bytes >= data_ && bytes < data_ + capacity_;
  const std::ptrdiff_t offset = own ? bytes - data_ : 0;  // where the source is once the block has moved
  if (!makeRoom(n)) return false;
  vk_memcpy(data_ + size_, own ? data_ + offset : bytes, n);
  setEnd(size_ + n);
  return true;
}

bool StringBuffer::append(const char* text) {
  return appendN(text, vk_strlen(text));
}

bool StringBuffer::append(const StringBuffer& other) {
  return appendN(other.data_, other.size_);
}

bool StringBuffer::append(const DataBuffer& bytes) {
  return appendN(reinterpret_cast<const char*>(bytes.getData2()), bytes.getSize());
}

bool StringBuffer::appendCharN(char c, u32 n) {
  if (n == 0) return true;
  if (!makeRoom(n)) return false;
  vk_memset(data_ + size_, c, n);
  setEnd(size_ + n);
  return true;
}

void StringBuffer::clear() {
  release();
  data_ = nullptr;
  size_ = capacity_ = 0;
}

void StringBuffer::secureClear() {
  vk_memset(data_, 0, size_);
  weakClear();
}

u8* StringBuffer::extractString2(u32& size, u32& capacity) {
  size = std::exchange(size_, 0);
  capacity = std::exchange(capacity_, 0);
  return reinterpret_cast<u8*>(std::exchange(data_, nullptr));
}
