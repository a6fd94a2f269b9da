#include "varnik/services/files/FileHandle.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "varnik/services/files/internal/Posix.h"

namespace {

constexpr u32 kMostAtOnce = 1U << 30;  // a call moves 2 GiB - 4 KiB at most

}  // namespace

FileHandle::~FileHandle() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

s64 FileHandle::getFileSize64(LogBase& log) {
  struct stat facts;
  if (vk_files::repeatInterrupted([&] { return ::fstat(descriptor_, &facts); }) != 0) {
    vk_files::logReason(log, errno);
    return -1;
  }
  if (!S_ISREG(facts.st_mode)) {  // the length that a pipe or a device reports says nothing
    log.LogDataStr("reason", "no regular file");
    return -1;
  }
  return facts.st_size;
}

u32 FileHandle::getFileSize32(LogBase& log) {
  const s64 length = getFileSize64(log);
  return length < 0 || length > 0xFFFFFFFF ? 0xFFFFFFFF : static_cast<u32>(length);
}

bool FileHandle::readBytesToBuf32(void* to, u32 n, u32& numRead, bool& atEnd, LogBase& log) {
  u8* area = static_cast<u8*>(to);
  numRead = 0;
  atEnd = false;
  while (numRead < n) {
    const auto count = vk_files::repeatInterrupted(
        [&] { return ::read(descriptor_, area + numRead, std::min(n - numRead, kMostAtOnce)); });
    if (count < 0) {
      vk_files::logReason(log, errno);
      return false;
    }
    if (count == 0) {
      atEnd = true;
      break;
    }
    numRead += static_cast<u32>(count);
  }
  return true;
}

bool FileHandle::seekTo(s64 offset, LogBase& log) {
  if (::lseek(descriptor_, offset, SEEK_SET) == offset) return true;
  vk_files::logReason(log, errno);
  return false;
}
