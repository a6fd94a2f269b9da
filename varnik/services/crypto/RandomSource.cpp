#include "varnik/services/crypto/RandomSource.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/crypto/internal/SystemRandom.h"

namespace {

// The generator's other door, for a system that refuses the call.
bool readFromDevice(u8& byte) {
  const int device = ::open("/dev/urandom", O_RDONLY | O_CLOEXEC);
  if (device < 0) return false;
  const bool done = ::read(device, &byte, 1) == 1;
  ::close(device);
  return done;
}

void waitAMoment() {
  const timespec kMoment{0, 10'000'000};
  ::nanosleep(&kMoment, nullptr);
}

}  // namespace

bool RandomSource::generateBytes(u32 n, DataBuffer& out) {
  if (!out.checkValidityDb()) return false;
  if (n == 0) return true;
  if (!out.canAppendWithoutRealloc(n) && !out.expandBuffer(n)) return false;
  u8* const block = out.getData2();  // none where a caller gave the buffer a capacity alone
  if (!block || !vk_fillRandom(block + out.size(), n)) return false;
  out.addToSize(n);
  return true;
}

u8 RandomSource::generateByte(LogBase& log) {
  u8 byte = 0;
  for (bool isFirst = true; !vk_fillRandom(&byte, 1) && !readFromDevice(byte); isFirst = false) {
    if (isFirst) log.LogError_lcr("the system's generator of random bytes does not answer");
    waitAMoment();
  }
  return byte;
}
