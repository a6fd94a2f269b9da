#include "varnik/services/files/FileSys.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <climits>

#include "varnik/services/files/internal/AtomicFile.h"
#include "varnik/services/files/internal/Posix.h"
#include "varnik/services/memory/Text.h"
#include "varnik/services/strings/XString.h"

namespace {

std::atomic<bool> readingPermitted{true};
std::atomic<bool> writingPermitted{true};

bool validate(const std::atomic<bool>& permitted, const char* refusal, bool logRefusal, LogBase& log) {
  if (permitted.load(std::memory_order_relaxed)) return true;
  if (logRefusal) log.LogError_lcr(refusal);
  return false;
}

// Opens without waiting: a pipe that nobody writes to would hold the caller up. On a regular file the flag means
// nothing. Answers below 0 on failure, with errno.
int openExisting(const char* path) {
  constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  return vk_files::repeatInterrupted([&] { return ::open(path, kFlags); });
}

// Opens a file that can be read; 0, or what stands in the way. Sets the size of a regular file.
int openForRead(XString& path, int& descriptor, s64& size) {
  if (path.isEmpty()) return ENOENT;
  const char* name = path.getUtf8();
  if (vk_strlen(name) != path.getUtf8Sb_rw().getSize()) return EINVAL;
  descriptor = openExisting(name);
  if (descriptor < 0) return errno;
  struct stat facts;
  if (vk_files::repeatInterrupted([&] { return ::fstat(descriptor, &facts); }) != 0) return 0;
  if (S_ISREG(facts.st_mode)) size = facts.st_size;
  if (!S_ISDIR(facts.st_mode)) return 0;
  ::close(descriptor);
  descriptor = -1;
  return EISDIR;
}

}  // namespace

bool _vkFileSys::js_validate_read_perm(LogBase& log, bool logRefusal) {
  return validate(readingPermitted, "reading files is not permitted", logRefusal, log);
}

bool _vkFileSys::js_validate_write_perm(LogBase& log, bool logRefusal) {
  return validate(writingPermitted, "writing files is not permitted", logRefusal, log);
}

void _vkFileSys::setPermissions(bool mayRead, bool mayWrite) {
  readingPermitted.store(mayRead, std::memory_order_relaxed);
  writingPermitted.store(mayWrite, std::memory_order_relaxed);
}

bool _vkFileSys::openFileForRead(FileHandle& handle, XString& path, bool forUpdate, int& errorCode, LogBase& log) {
  if (handle.descriptor_ >= 0) ::close(handle.descriptor_);
  handle.descriptor_ = -1;
  handle.sizeWhenOpened_ = -1;
  errorCode = forUpdate ? EINVAL : openForRead(path, handle.descriptor_, handle.sizeWhenOpened_);
  if (errorCode == 0) return true;
  log.LogDataX("path", path);
  vk_files::logReason(log, errorCode);
  return false;
}

bool _vkFileSys::writeFileUtf8(const char* path, const u8* data, u32 n, LogBase* log) {
  vk_files::AtomicFile file;
  if (file.open(path) && file.write(data, n) && file.commit()) return true;
  if (log) {
    log->LogError_lcr("the file cannot be written");
    log->LogDataStr("path", path ? path : "");
    vk_files::logReason(*log, file.error());
  }
  return false;
}

void _vkFileSys::getCurrentDir(XString& path, LogBase* log) {
  char area[PATH_MAX];
  if (::getcwd(area, sizeof area)) {
    path.setFromUtf8(area);
    return;
  }
  if (log) vk_files::logReason(*log, errno);
  path.weakClear();
}
