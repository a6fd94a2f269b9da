#include "varnik/services/files/FileHandle.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <memory>

#include "varnik/services/files/internal/Posix.h"
#include "varnik/services/memory/Memory.h"
#include "varnik/simd/Cpu.h"

namespace {

constexpr u32 kMostAtOnce = 1U << 30;  // a call moves 2 GiB - 4 KiB at most
constexpr u32 kBulk = 4U << 20;        // from here on a block of its own pages is filled
constexpr u32 kStation = 256U << 10;
constexpr u32 kPage = 4096;
constexpr u32 kLine = 64;

std::uintptr_t roundUp(std::uintptr_t address, u32 to) {
  return (address + to - 1) & ~std::uintptr_t{to - 1};
}

// Reads from a descriptor, piece by piece. The system copies from whole pages, and on AMD's processors does so several
// times slower to an area that begins just behind a page's start, where the allocator puts large blocks. There such an
// area is filled by way of a station that begins with a page.
class Reader {
 public:
  Reader(int descriptor, u8* area, u32 n) : descriptor_(descriptor) {
    if (n < kBulk || !vk_simd::isAmd()) return;
    if (reinterpret_cast<std::uintptr_t>(area) % kLine == 0) return;
    block_.reset(allocByteArray(kStation + kPage));  // without one the plain way is gone
    if (block_) station_ = reinterpret_cast<u8*>(roundUp(reinterpret_cast<std::uintptr_t>(block_.get()), kPage));
  }

  // As the system's call: the count of bytes, 0 at the end, below 0 on an error.
  ssize_t read(u8* to, u32 n) {
    if (!station_) return readTo(to, std::min(n, kMostAtOnce));
    const ssize_t count = readTo(station_, std::min(n, kStation));
    if (count > 0) vk_memcpy(to, station_, static_cast<u32>(count));
    return count;
  }

 private:
  ssize_t readTo(u8* to, u32 n) const {
    return vk_files::repeatInterrupted([&] { return ::read(descriptor_, to, n); });
  }

  int descriptor_;
  std::unique_ptr<u8[]> block_;
  u8* station_ = nullptr;
};

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
  Reader reader(descriptor_, area, n);
  numRead = 0;
  atEnd = false;
  while (numRead < n) {
    const ssize_t count = reader.read(area + numRead, n - numRead);
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
