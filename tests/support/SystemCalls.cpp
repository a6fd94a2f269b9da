#include "tests/support/SystemCalls.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>

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
  const bool struck = fails(Call::kClose);
  const int error = errno;
  const int answer = __real_close(fd);
  if (!struck) return answer;
  errno = error;
  return -1;
}

// The mode is only there when a file may be created.
#define WRAP_OPEN(name, parameters, arguments)                              \
  int __real_##name(parameters, int flags, ...);                            \
  int __wrap_##name(parameters, int flags, ...);                            \
  int __wrap_##name(parameters, int flags, ...) {                           \
    va_list more;                                                           \
    va_start(more, flags);                                                  \
    const mode_t mode = flags & O_CREAT ? va_arg(more, mode_t) : 0;         \
    va_end(more);                                                           \
    return fails(Call::kOpen) ? -1 : __real_##name(arguments, flags, mode); \
  }
#define BOTH(a, b) a, b

WRAP_OPEN(open, const char* path, path)
WRAP_OPEN(openat, BOTH(int fd, const char* path), BOTH(fd, path))
#undef WRAP_OPEN

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
  u32 count = 0;
  DIR* folder = opendir("/proc/self/fd");
  if (!folder) return 0;
  while (readdir(folder)) ++count;
  closedir(folder);
  return count - 3;  // ".", ".." and the folder's own
}

}  // namespace faults
