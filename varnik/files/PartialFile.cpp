// Parts of files: the header, the body, a chunk. A header-prefixed file:
//
//   offset 0   4 bytes    H, little-endian, which counts these 4 bytes too
//          4   H - 4      the header
//          H   the rest   the body
#include <algorithm>
#include <memory>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/files/internal/LoadBlock.h"
#include "varnik/services/files/FileSys.h"
#include "varnik/services/logging/LogBase.h"
#include "varnik/services/strings/XString.h"

namespace {

constexpr u32 kPrefix = 4;
constexpr u32 kBodySpare = 4;
constexpr u32 kNoLength = 0xFFFFFFFF;  // what getFileSize32 answers on failure

bool open(FileHandle& file, XString& path, LogBase& log) {
  int errorCode = 0;
  return _vkFileSys::openFileForRead(file, path, false, errorCode, log);
}

bool failAt(XString& path, const char* error, LogBase& log) {
  log.LogError_lcr(error);
  log.LogDataX("path", path);
  return false;
}

// Reads H, and tells nobody when that fails.
bool readHeaderLength(FileHandle& file, u32& headerLen) {
  u8 raw[kPrefix] = {};
  u32 numRead = 0;
  bool atEnd = false;
  LogNull nowhere;
  if (!file.readBytesToBuf32(raw, kPrefix, numRead, atEnd, nowhere) || numRead != kPrefix) return false;
  headerLen = raw[0] | u32{raw[1]} << 8 | u32{raw[2]} << 16 | u32{raw[3]} << 24;
  return true;
}

// Replaces the content of `header` by the `n` bytes behind the prefix; unchanged on failure.
bool readHeader(FileHandle& file, XString& path, u32 n, DataBuffer& header, LogBase& log) {
  const std::unique_ptr<u8[]> bytes(allocByteArray(n));
  if (!bytes) return failAt(path, "memory does not suffice for the header", log);
  u32 numRead = 0;
  bool atEnd = false;
  if (!file.readBytesToBuf32(bytes.get(), n, numRead, atEnd, log)) {
    log.LogDataX("path", path);
    return false;
  }
  if (numRead != n) {
    log.LogDataUint32("numRead", numRead);
    log.LogDataUint32("headerLength", n);
    return failAt(path, "the file ends within its header", log);
  }
  header.clear();
  header.append(bytes.get(), n);
  return true;
}

}  // namespace

bool DataBuffer::loadFileWithHeaderUtf8(const char* path, DataBuffer& header, u32 maxHeaderLen, LogBase& log) {
  if (!isValid() || !_vkFileSys::js_validate_read_perm(log, true)) return false;

  XString name;
  name.setFromUtf8(path);  // before the storage goes: the path may lie in it
  deallocate();

  FileHandle file;
  LogNull nowhere;
  if (!open(file, name, nowhere)) return false;
  const u32 length = file.getFileSize32(nowhere);
  if (length == kNoLength) return false;
  if (length < kPrefix) {
    log.LogError_lcr("the file is shorter than the length of its header");
    return true;
  }
  u32 headerLen = 0;
  if (!readHeaderLength(file, headerLen)) return false;
  if (headerLen <= kPrefix || headerLen > maxHeaderLen) return failAt(name, "the header's length is out of range", log);
  if (!readHeader(file, name, headerLen - kPrefix, header, log)) return false;
  if (length < headerLen) return failAt(name, "the file grew while it was read", log);
  return vk_files::loadBlock(file, name, length - headerLen, kBodySpare, *this, log);
}

bool DataBuffer::loadCacheHeaderUtf8(const char* path, u32 maxHeaderLen, LogBase& log) {
  if (!isValid() || !_vkFileSys::js_validate_write_perm(log, true)) return false;

  XString name;
  name.setFromUtf8(path);  // before the storage goes: the path may lie in it
  deallocate();

  FileHandle file;
  LogNull nowhere;
  if (!open(file, name, nowhere)) return false;
  const u32 length = file.getFileSize32(log);
  if (length == kNoLength) return failAt(name, "the length of the file is not to be had, or too large", log);
  if (length < kPrefix) {
    log.LogError_lcr("the file is shorter than the length of its header");
    return true;
  }
  u32 headerLen = 0;
  if (!readHeaderLength(file, headerLen)) return false;
  if (headerLen < kPrefix || headerLen > maxHeaderLen) return failAt(name, "the header's length is out of range", log);
  return readHeader(file, name, headerLen - kPrefix, *this, log);
}

bool DataBuffer::loadFileChunk(const char* path, s64 offset, u32 maxLen, LogBase& log) {
  if (!isValid() || !path || offset < 0 || maxLen == 0) return false;
  if (!_vkFileSys::js_validate_read_perm(log, true)) return false;
  const LogContextExitor context(log, "loadFileChunk");

  XString name;
  name.setFromUtf8(path);  // before the storage goes: the path may lie in it
  deallocate();

  FileHandle file;
  if (!open(file, name, log)) return false;
  const s64 available = file.getFileSize64(log) - offset;  // negative when the length is not to be had
  if (available <= 0) return false;
  const u32 n = static_cast<u32>(std::min(available, s64{maxLen}));
  std::unique_ptr<u8[]> bytes(allocByteArray(n));
  if (!bytes || (offset != 0 && !file.seekTo(offset, log))) return false;
  u32 numRead = 0;
  bool atEnd = false;
  if (!file.readBytesToBuf32(bytes.get(), n, numRead, atEnd, log) || numRead != n) return false;
  takeData2(bytes.release(), n, n);
  return true;
}
