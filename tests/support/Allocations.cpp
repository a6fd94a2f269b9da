#include "tests/support/Allocations.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

using faults::awaited, faults::pendingRefusal, faults::tally;

// As the standard operators do; a handler that could find memory is not among us.
void tellHandler() noexcept {
  try {
    if (const auto handler = std::get_new_handler()) handler();
  } catch (const std::bad_alloc&) {
  }
}

void* allocate(std::size_t n) noexcept {
  if (pendingRefusal.countdown == 1) {
    pendingRefusal.hasStruck = true;
    if (!pendingRefusal.isForGood) pendingRefusal.countdown = 0;
    tellHandler();
    return nullptr;
  }
  if (pendingRefusal.countdown != 0) --pendingRefusal.countdown;
  void* block = std::malloc(n != 0 ? n : 1);
  if (block) tally = {tally.live + 1, tally.blocks + 1, tally.bytes + n, n};
  return block;
}

void* allocateOrThrow(std::size_t n) {
  if (void* block = allocate(n)) return block;
  throw std::bad_alloc();
}

void release(void* block) noexcept {
  if (block && block == awaited.block) {
    std::memcpy(awaited.seen, block, awaited.n);
    awaited.block = nullptr;
  }
  if (block) --tally.live;
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
