#include "tests/support/Allocations.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

thread_local u32 countdown = 0;  // refuses when it falls to 1; 0 is unarmed
thread_local bool refusesForGood = false, hasStruck = false;
thread_local s64 live = 0;
thread_local u64 asked = 0, sum = 0, last = 0;
thread_local const void* watched = nullptr;
thread_local u32 watchedSize = 0;
thread_local bool wasReleased = false;
thread_local u8 seen[64];

// As the standard operators do; a handler that could find memory is not among us.
void tellHandler() noexcept {
  try {
    if (const auto handler = std::get_new_handler()) handler();
  } catch (const std::bad_alloc&) {
  }
}

void* allocate(std::size_t n) noexcept {
  if (countdown != 0) {
    if (countdown == 1) {
      hasStruck = true;
      if (!refusesForGood) countdown = 0;
      tellHandler();
      return nullptr;
    }
    --countdown;
  }
  void* block = std::malloc(n != 0 ? n : 1);
  if (block) {
    ++live;
    ++asked;
    sum += n;
    last = n;
  }
  return block;
}

void* allocateOrThrow(std::size_t n) {
  if (void* block = allocate(n)) return block;
  throw std::bad_alloc();
}

void release(void* block) noexcept {
  if (block && block == watched) {
    std::memcpy(seen, block, watchedSize);
    wasReleased = true;
    watched = nullptr;
  }
  if (block) --live;
  std::free(block);
}

}  // namespace

void* operator new(std::size_t n) {
  return allocateOrThrow(n);
}
void* operator new[](std::size_t n) {
  return allocateOrThrow(n);
}
void* operator new(std::size_t n, const std::nothrow_t&) noexcept {
  return allocate(n);
}
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept {
  return allocate(n);
}
void operator delete(void* block) noexcept {
  release(block);
}
void operator delete[](void* block) noexcept {
  release(block);
}
void operator delete(void* block, std::size_t) noexcept {
  release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
  release(block);
}

namespace faults {

FailAllocation::FailAllocation(u32 k, bool forGood) {
  countdown = k;
  refusesForGood = forGood;
  hasStruck = false;
}
FailAllocation::~FailAllocation() {
  countdown = 0;
}
bool FailAllocation::struck() const {
  return hasStruck;
}

WatchRelease::WatchRelease(const void* block, u32 n) {
  watched = block;
  watchedSize = std::min<u32>(n, sizeof seen);
  wasReleased = false;
}
WatchRelease::~WatchRelease() {
  watched = nullptr;
}
bool WatchRelease::released() const {
  return wasReleased;
}
const u8* WatchRelease::bytes() const {
  return seen;
}

s64 liveBlocks() {
  return live;
}
u64 allocations() {
  return asked;
}
u64 allocatedBytes() {
  return sum;
}
u64 lastAllocation() {
  return last;
}

}  // namespace faults
