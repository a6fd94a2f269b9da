#include "varnik/services/files/internal/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "varnik/services/crypto/internal/SystemRandom.h"
#include "varnik/services/memory/Types.h"

namespace vk_files {
namespace {

constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;
constexpr mode_t kAnyone = kOwnerOnly | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
constexpr char kPrefix[] = ".varnik-";

// Writes a name that nobody can foresee to `area`, short enough for any folder whatever the length of the target's.
bool makeName(char* area) {
  u8 random[8];
  if (!vk_fillRandom(random, sizeof random)) return false;
  std::memcpy(area, kPrefix, sizeof kPrefix - 1);
  char* to = area + sizeof kPrefix - 1;
  for (const u8 byte : random) {
    *to++ = "0123456789abcdef"[byte >> 4];
    *to++ = "0123456789abcdef"[byte & 15];
  }
  *to = 0;
  return true;
}

// Keeps a write to a pipe that lost its reader from ending the process, in this thread and as long as it lives: the
// signal that such a write raises is taken back, one that was waiting before is not.
class BrokenPipeGuard {
 public:
  BrokenPipeGuard() {
    sigset_t waiting;
    sigpending(&waiting);
    wasWaiting_ = sigismember(&waiting, SIGPIPE) == 1;
    sigemptyset(&pipe_);
    sigaddset(&pipe_, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
  }
  ~BrokenPipeGuard() {
    const int error = errno;
    const timespec atOnce{};
    if (!wasWaiting_ && error == EPIPE) repeatInterrupted([&] { return sigtimedwait(&pipe_, nullptr, &atOnce); });
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    errno = error;
  }
  BrokenPipeGuard(const BrokenPipeGuard&) = delete;
  BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;

 private:
  sigset_t pipe_, before_;
  bool wasWaiting_ = false;
};

int flush(int descriptor) {
  return repeatInterrupted([&] { return ::fsync(descriptor); });
}

// A pipe has nothing to flush to, nor have the folders of some file systems; such an answer is no failure.
bool flushIfPossible(int descriptor) {
  return flush(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP || errno == EROFS;
}

}  // namespace

bool AtomicFile::fail() {
  return fail(errno);
}

bool AtomicFile::fail(int error) {
  abandon();
  error_ = error;
  return false;
}

bool AtomicFile::open(const char* path) {
  if (!target_.find(path)) return fail();
  if (target_.kind() != Target::Kind::kStream) return openTemporary() || fail();
  return file_.reset(target_.openStream()) || fail();
}

// A new file is created with the mode of any new file, which tells the mode it shall have in the end: the umask cannot
// be asked for without changing it for the other threads, and it does not tell the folder's default access list. Who
// opens the temporary in the moment before it is closed to others may read the file later anyway.
bool AtomicFile::openTemporary() {
  if (target_.kind() == Target::Kind::kFile) {
    finalMode_ = target_.mode();
    return createTemporary(kOwnerOnly) && keepOwner(target_.owner(), target_.group());
  }
  struct stat facts;
  if (!createTemporary(kAnyone)) return false;
  if (repeatInterrupted([&] { return ::fstat(file_.get(), &facts); }) != 0) return false;
  finalMode_ = facts.st_mode & 07777;
  return repeatInterrupted([&] { return ::fchmod(file_.get(), kOwnerOnly); }) == 0;
}

bool AtomicFile::createTemporary(mode_t mode) {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  for (int tries = 0; tries < 16; ++tries) {
    char name[sizeof temporary_];
    if (!makeName(name)) return false;
    const int folder = target_.folder().get();
    if (file_.reset(repeatInterrupted([&] { return ::openat(folder, name, kFlags, mode); }))) {
      std::memcpy(temporary_, name, sizeof name);
      return true;
    }
    if (errno != EEXIST) return false;
  }
  return false;
}

// A bit that lends the owner's or the group's rights to whoever runs the file must not lend those of another.
bool AtomicFile::keepOwner(uid_t owner, gid_t group) {
  struct stat facts;
  if (repeatInterrupted([&] { return ::fstat(file_.get(), &facts); }) != 0) return false;
  if (facts.st_uid == owner && facts.st_gid == group) return true;
  if (repeatInterrupted([&] { return ::fchown(file_.get(), owner, group); }) == 0) return true;
  finalMode_ &= ~static_cast<mode_t>(S_ISUID | S_ISGID);
  constexpr auto kSameOwner = static_cast<uid_t>(-1);
  [[maybe_unused]] const int groupAtLeast = repeatInterrupted([&] { return ::fchown(file_.get(), kSameOwner, group); });
  return true;
}

bool AtomicFile::write(const void* data, std::size_t n) {
  if (!file_.isOpen()) return error_ != 0 ? false : fail(EBADF);
  if (!data && n != 0) return fail(EINVAL);
  if (target_.kind() != Target::Kind::kStream) return writeWhole(file_.get(), data, n) || fail();
  const BrokenPipeGuard guard;
  return writeWhole(file_.get(), data, n) || fail();
}

bool AtomicFile::commit() {
  if (!file_.isOpen()) return error_ != 0 ? false : fail(EBADF);
  if (target_.kind() == Target::Kind::kStream) return commitStream();
  if (repeatInterrupted([&] { return ::fchmod(file_.get(), finalMode_); }) != 0) return fail();
  if (flush(file_.get()) != 0 || !file_.close())
    return fail();  // an error of an earlier write can come as late as here
  const int folder = target_.folder().get();
  if (repeatInterrupted([&] { return ::renameat(folder, temporary_, folder, target_.name()); }) != 0) return fail();
  temporary_[0] = 0;
  return flushIfPossible(folder) || fail();
}

bool AtomicFile::commitStream() {
  return (flushIfPossible(file_.get()) && file_.close()) || fail();
}

void AtomicFile::abandon() {
  file_.close();
  if (temporary_[0] == 0) return;
  const int folder = target_.folder().get();
  repeatInterrupted([&] { return ::unlinkat(folder, temporary_, 0); });
  temporary_[0] = 0;
}

}  // namespace vk_files
