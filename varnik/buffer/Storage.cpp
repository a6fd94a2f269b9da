// Life cycle, growth and clearing of DataBuffer.
#include <algorithm>
#include <new>
#include <utility>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/memory/Psdk.h"

namespace {

constexpr u64 kMost = 0xFFFFFFFF;

// The least increment of a bulk append, by the bytes held.
u32 growthStep(u32 size) {
  constexpr u32 kSteps[] = {12'000'000, 8'000'000, 4'000'000, 3'000'000, 2'000'000, 1'000'000, 100'000, 50'000};
  for (const u32 step : kSteps)
    if (size >= step) return step;
  return 20'000;
}

}  // namespace

// ---- Life cycle ----

DataBuffer::DataBuffer(const DataBuffer& other) : VarnikObject(other), secure(other.secure) {
  replaceBy(other.data_, other.size_, other.capacity_);
}

DataBuffer::DataBuffer(DataBuffer&& other) noexcept
    : VarnikObject(other),
      size_(std::exchange(other.size_, 0)),
      capacity_(std::exchange(other.capacity_, 0)),
      borrowed_(std::exchange(other.borrowed_, u8{0})),
      writable_(std::exchange(other.writable_, 0)),
      data_(std::exchange(other.data_, nullptr)),
      secure(std::exchange(other.secure, u8{0})) {}

// Both assignments build the new value first, then exchange: what was held goes with the local, which wipes it when it
// is secure; assignment to itself comes out even.
DataBuffer& DataBuffer::operator=(const DataBuffer& other) {
  if (this == &other) return *this;
  DataBuffer value(other);
  swapData(value);
  return *this;
}

DataBuffer& DataBuffer::operator=(DataBuffer&& other) noexcept {
  DataBuffer value(std::move(other));
  swapData(value);
  return *this;
}

// What the destructor does about a damaged object, and about storage of its own.
void DataBuffer::release() {
  if (validity_ != kValid) Psdk::corruptObjectFound(nullptr);
  if (!data_ || borrowed_) return;
  if (secure) vk_memset(data_, 0, size_);
  delete[] data_;
}

DataBuffer* DataBuffer::createNewObject() {
  return new (std::nothrow) DataBuffer;
}

// The answer of `isValid` for a destroyed or damaged object.
bool DataBuffer::reportDamage() const {
  Psdk::badObjectFound(nullptr);
  return false;
}

void DataBuffer::dumpObject(const char*) const {}

// ---- Storage and growth ----

void DataBuffer::deallocate() {
  releaseStorage();
  install(nullptr, 0, 0, false);
}

bool DataBuffer::ensureBuffer(u32 n) {
  if (n == 0) return true;
  if (!isValid()) return false;
  return capacity_ >= n || reallocate(n);
}

bool DataBuffer::reallocate(u32 n) {
  if (n == 0) return false;
  if (n < size_) {
    Psdk::badObjectFound(nullptr);
    return false;
  }
  u8* block = allocByteArray(n);
  if (!block) return false;
  if (data_) vk_memcpy(block, data_, size_);
  releaseStorage();
  install(block, size_, n, false);
  return true;
}

bool DataBuffer::expandBuffer(u32 n) {
  const u64 increment = std::max(n, growthStep(size_));
  if (size_ + increment > kMost) return false;
  if (reallocate(static_cast<u32>(size_ + increment))) return true;
  return u64{n} + 400 < increment && reallocate(size_ + n + 400);
}

bool DataBuffer::canAppendWithoutRealloc(u32 n) const {
  return isValid() && u64{size_} + n <= capacity_;
}

u8* DataBuffer::getAppendPtr(u32 n) {
  if (!isValid()) return nullptr;
  const u64 wanted = u64{size_} + n + 1;
  return wanted <= kMost && ensureBuffer(static_cast<u32>(wanted)) && data_ ? data_ + size_ : nullptr;
}

bool DataBuffer::minimizeMemoryUsage() {
  return capacity_ <= u64{size_} + 4 || reallocate(size_ + 4);
}

bool DataBuffer::minimizeMemoryUsage2(u32 slack) {
  return capacity_ - size_ <= slack || minimizeMemoryUsage();
}

u32 DataBuffer::heapUsage() const {
  return borrowed_ ? 0 : capacity_;
}

u32 DataBuffer::totalMemoryUsage() const {
  return static_cast<u32>(std::min(sizeof(DataBuffer) + heapUsage(), kMost));
}

u32 DataBuffer::calcSegmentSize(u32 start, u32 len) const {
  if (start >= size_) return 0;
  return len == 0 ? size_ - start : std::min(len, size_ - start);
}

// ---- Clearing ----

void DataBuffer::secureClear() {
  if (data_) vk_memset(data_, 0, size_);
  size_ = 0;
}

void DataBuffer::secureClearWithDeallocate() {
  secureClear();
  deallocate();
}

void DataBuffer::clearWithDeallocate() {
  if (isValid()) deallocate();
}

void DataBuffer::clearBuffer() {
  if (isValid() && data_) vk_memset(data_, 0, capacity_);
}
