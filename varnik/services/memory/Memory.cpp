#include "varnik/services/memory/Memory.h"

#include <sys/mman.h>

#include <bit>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <new>

#include "varnik/simd/Copy.h"

namespace {

constexpr u32 kLargeBlock = 4 * 1024 * 1024;  // the C library serves smaller blocks from memory in use

// Asks for large pages under a fresh block, which is about to be filled: a page fault then brings 2 MiB instead of
// 4 KiB. Advice only: where it is refused nothing else changes.
void adviseLargePages([[maybe_unused]] const u8* block, [[maybe_unused]] u32 n) {
#if defined(MADV_HUGEPAGE)
  constexpr std::uintptr_t kPage = 4096;
  const auto begin = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t from = (begin + kPage - 1) & ~(kPage - 1), to = (begin + n) & ~(kPage - 1);
  const int error = errno;
  ::madvise(reinterpret_cast<void*>(from), to - from, MADV_HUGEPAGE);
  errno = error;
#endif
}

}  // namespace

u8* allocByteArray(u32 n) {
  u8* block = new (std::nothrow) u8[n];
  if (block && n >= kLargeBlock) adviseLargePages(block, n);
  return block;
}

void vk_memcpy(void* to, const void* from, u32 n) {
  vk_simd::copyBytes(static_cast<u8*>(to), static_cast<const u8*>(from), n);
}

void vk_memset(void* to, int value, u32 n) {
  if (n == 0) return;
  std::memset(to, value, n);
  // The compiler must take the bytes as read here, so that a fill before the release of a block is no dead store.
  asm volatile("" : : "r"(to) : "memory");
}

int vk_memcmp(const void* a, const void* b, std::size_t n) {
  return n == 0 ? 0 : std::memcmp(a, b, n);
}

bool vk_isLittleEndian() {
  return std::endian::native == std::endian::little;
}
