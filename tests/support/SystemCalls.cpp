#include "tests/support/SystemCalls.h"

#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

using faults::Call, faults::Fault, faults::pendingStrike;

namespace {

thread_local u64 made[static_cast<int>(Call::kAny) + 1] = {};

// Counts a call; true when it is to be struck.
bool strikes(Call call) {
  ++made[static_cast<int>(call)];
  ++made[static_cast<int>(Call::kAny)];
  if (pendingStrike.countdown == 0 || (pendingStrike.watched != call && pendingStrike.watched != Call::kAny))
    return false;
  if (pendingStrike.countdown > 1) return --pendingStrike.countdown, false;
  pendingStrike.hasStruck = true;
  if (!pendingStrike.isForGood) pendingStrike.countdown = 0;
  if (pendingStrike.fault.kind == Fault::kDie) _exit(9);
  return true;
}

// For calls that either work or fail.
bool fails(Call call) {
  if (!strikes(call) || pendingStrike.fault.kind != Fault::kError) return false;
  errno = pendingStrike.fault.value;
  return true;
}

// For calls that move bytes: false when the call is to be made, with what is left in `n`, else its answer is `answer`.
bool intercepts(Call call, std::size_t& n, ssize_t& answer) {
  if (!strikes(call)) return false;
  const int value = pendingStrike.fault.value;
  switch (pendingStrike.fault.kind) {
    case Fault::kError:
      errno = value;
      answer = -1;
      return true;
    case Fault::kNothing:
      answer = 0;
      return true;
    case Fault::kShort:
      n = n > static_cast<std::size_t>(value) ? n - static_cast<std::size_t>(value) : std::min<std::size_t>(n, 1);
      return false;
    case Fault::kBreak:
      pendingStrike = {call, 1, true, true, {value != 0 ? Fault::kError : Fault::kNothing, value}};
      [[fallthrough]];
    default:
      n = (n + 1) / 2;
      return false;
  }
}

}  // namespace

// The linker gives each call of X to __wrap_X, and knows the system's own as __real_X.
extern "C" {
#define WRAP(result, name, parameters, call, arguments) \
  result __real_##name parameters;                      \
  result __wrap_##name parameters;                      \
  result __wrap_##name parameters {                     \
    return fails(call) ? -1 : __real_##name arguments;  \
  }

// Where no file may be created the mode is not there, and not looked at.
WRAP(int, open, (const char* path, int flags, mode_t mode), Call::kOpen, (path, flags, mode))
WRAP(int, openat, (int fd, const char* path, int flags, mode_t mode), Call::kOpen, (fd, path, flags, mode))
WRAP(int, stat, (const char* path, struct stat* out), Call::kStat, (path, out))
WRAP(int, fstat, (int fd, struct stat* out), Call::kStat, (fd, out))
WRAP(int, fstatat, (int fd, const char* path, struct stat* out, int flags), Call::kStat, (fd, path, out, flags))
WRAP(off_t, lseek, (int fd, off_t offset, int whence), Call::kSeek, (fd, offset, whence))
WRAP(int, fsync, (int fd), Call::kSync, (fd))
WRAP(int, fchmod, (int fd, mode_t mode), Call::kChmod, (fd, mode))
WRAP(int, fchown, (int fd, uid_t owner, gid_t group), Call::kChown, (fd, owner, group))
WRAP(int, faccessat, (int fd, const char* path, int mode, int flags), Call::kAccess, (fd, path, mode, flags))
WRAP(ssize_t, readlinkat, (int fd, const char* path, char* to, size_t n), Call::kReadLink, (fd, path, to, n))
WRAP(int, renameat, (int f, const char* from, int t, const char* to), Call::kRename, (f, from, t, to))
WRAP(int, unlinkat, (int fd, const char* path, int flags), Call::kUnlink, (fd, path, flags))
#undef WRAP

int __real_close(int fd);
int __wrap_close(int fd);
int __wrap_close(int fd) {
  const int answer = __real_close(fd);
  return fails(Call::kClose) ? -1 : answer;
}

#define WRAP_MOVE(name, parameters, call, arguments)                       \
  ssize_t __real_##name parameters;                                        \
  ssize_t __wrap_##name parameters;                                        \
  ssize_t __wrap_##name parameters {                                       \
    ssize_t answer = 0;                                                    \
    return intercepts(call, n, answer) ? answer : __real_##name arguments; \
  }

WRAP_MOVE(read, (int fd, void* to, size_t n), Call::kRead, (fd, to, n))
WRAP_MOVE(write, (int fd, const void* from, size_t n), Call::kWrite, (fd, from, n))
WRAP_MOVE(getrandom, (void* to, size_t n, unsigned flags), Call::kRandom, (to, n, flags))
#undef WRAP_MOVE
}

namespace faults {

u64 calls(Call call) {
  return made[static_cast<int>(call)];
}

u32 openDescriptors() {
  const auto open = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  return static_cast<u32>(open - 1);  // without the folder's own
}

}  // namespace faults
