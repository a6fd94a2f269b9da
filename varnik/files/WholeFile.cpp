// Files loaded and saved as a whole. The block of a loaded file is 32 bytes longer than the file, and those are zero:
// whoever scans the content may look a little past its end.
#include "varnik/buffer/DataBuffer.h"
#include "varnik/files/internal/LoadBlock.h"
#include "varnik/services/files/FileSys.h"
#include "varnik/services/logging/LogBase.h"
#include "varnik/services/strings/XString.h"

namespace {

constexpr u32 kSpare = 32;

// The length of an open file, if a buffer can hold so much; a failure is logged.
bool loadableLength(FileHandle& file, u32& length, LogBase& log) {
  s64 longLength = file.sizeWhenOpened();
  if (longLength < 0) longLength = file.getFileSize64(log);  // logs the reason
  if (longLength < 0) {
    log.LogError_lcr("the length of the file is not to be had");
    return false;
  }
  u32 high = 0;
  vk64::Int64ToDwords(longLength, length, high);
  if (high == 0 && !vk64::TooBigForUnsigned32(s64{length} + kSpare)) return true;
  log.LogError_lcr("the file is too large");
  log.LogDataInt64("length", longLength);
  return false;
}

}  // namespace

bool DataBuffer::loadFileX(XString& path, LogBase& log) {
  if (!_vkFileSys::js_validate_read_perm(log, true)) return false;
  const LogContextExitor context(log, "loadFileX");
  if (!isValid()) return false;
  deallocate();

  FileHandle file;
  int errorCode = 0;
  if (!_vkFileSys::openFileForRead(file, path, false, errorCode, log)) {
    log.LogError_lcr("the file cannot be opened");
    return false;
  }
  u32 length = 0;
  if (!loadableLength(file, length, log)) return false;
  return length == 0 || vk_files::loadBlock(file, path, length, kSpare, *this, log);
}

bool DataBuffer::loadFileUtf8(const char* path, LogBase* log) {
  if (!isValid()) return false;
  XString name;
  name.setFromUtf8(path);
  LogNull nowhere;
  return loadFileX(name, log ? *log : nowhere);
}

bool DataBuffer::db_saveToFileUtf8(const char* path, LogBase* log) const {
  return isValid() && _vkFileSys::writeFileUtf8(path, data_, size_, log);
}
