#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "varnik/services/files/internal/Posix.h"
#include "varnik/services/logging/LogBase.h"
#include "varnik/services/memory/Types.h"

namespace vk_files {
namespace {

constexpr std::size_t kMostAtOnce = 1U << 30;  // a call moves 2 GiB - 4 KiB at most

// There are two forms of strerror_r: one returns the text, the other a status and fills the area.
[[maybe_unused]] const char* textOf(const char* text, const char*) {
  return text;
}
[[maybe_unused]] const char* textOf(int status, const char* area) {
  return status == 0 ? area : "unknown error";
}

}  // namespace

bool Descriptor::close() {
  const int number = std::exchange(number_, -1);
  return number < 0 || ::close(number) == 0 || errno == EINTR;
}

bool writeWhole(int descriptor, const void* data, std::size_t n) {
  const u8* from = static_cast<const u8*>(data);
  while (n != 0) {
    const auto written = repeatInterrupted([&] { return ::write(descriptor, from, std::min(n, kMostAtOnce)); });
    if (written < 0) return false;
    if (written == 0) {  // nothing says that the next one would write more
      errno = EIO;
      return false;
    }
    from += written;
    n -= static_cast<std::size_t>(written);
  }
  return true;
}

void logReason(LogBase& log, int error) {
  char area[128];
  log.LogDataStr("reason", textOf(strerror_r(error, area, sizeof area), area));
}

}  // namespace vk_files
