#include "varnik/services/crypto/internal/SystemRandom.h"

#include <sys/random.h>

#include <cerrno>

#include "varnik/services/memory/Types.h"

// A signal can cut or interrupt a request for more than 256 bytes.
bool vk_fillRandom(void* to, std::size_t n) {
  u8* area = static_cast<u8*>(to);
  while (n != 0) {
    const auto count = ::getrandom(area, n, 0);
    if (count < 0 && errno != EINTR) return false;
    if (count <= 0) continue;
    area += count;
    n -= static_cast<std::size_t>(count);
  }
  return true;
}
