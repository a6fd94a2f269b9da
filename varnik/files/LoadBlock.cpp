#include "varnik/files/internal/LoadBlock.h"

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/files/FileSys.h"
#include "varnik/services/logging/LogBase.h"
#include "varnik/services/strings/XString.h"

namespace vk_files {
namespace {

void logPlaces(XString& path, LogBase& log) {
  XString folder;
  _vkFileSys::getCurrentDir(folder, nullptr);
  log.LogDataX("path", path);
  log.LogDataX("currentDir", folder);
}

}  // namespace

bool loadBlock(FileHandle& file, XString& path, u32 n, u32 spare, DataBuffer& out, LogBase& log) {
  u8* block = allocByteArray(n + spare);
  if (!block) {
    log.LogError_lcr("memory does not suffice for the file");
    log.LogDataUint32("length", n);
    return false;
  }
  u32 numRead = 0;
  bool atEnd = false;
  const bool done = file.readBytesToBuf32(block, n, numRead, atEnd, log);
  vk_memset(block + numRead, 0, n - numRead + spare);
  out.takeData2(block, n, n + spare);
  if (!done) logPlaces(path, log);
  if (numRead == n) return done;
  log.LogDataUint32("length", n);
  log.LogDataUint32("numRead", numRead);
  log.LogError_lcr("the file ended early or could not be read to its end");
  return false;
}

}  // namespace vk_files
