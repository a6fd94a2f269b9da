#include "varnik/services/memory/Memory.h"

#include <sys/mman.h>

#include <bit>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <new>

#include "varnik/simd/Copy.h"

u8* allocByteArray(u32 n) {
  return new (std::nothrow) u8[n];
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
