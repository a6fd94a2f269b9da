#pragma once

#include "varnik/services/logging/LogBase.h"
#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

/// An open file, closed at first; `_vkFileSys` opens it and the destructor closes it. Not copyable.
class VARNIK_API FileHandle {
 public:
  FileHandle() = default;
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  ~FileHandle();

  /// Returns the length in bytes; negative when the file is not open, is no regular file, or does not tell.
  s64 getFileSize64(LogBase& log);
  /// Returns the length in bytes that a regular file had when it was opened, without a call of the system; negative for
  /// anything else.
  s64 sizeWhenOpened() const { return sizeWhenOpened_; }
  /// Returns the length in bytes; 0xFFFFFFFF on failure and for a length that does not fit below it.
  u32 getFileSize32(LogBase& log);
  /// Reads up to `n` bytes from where the last read ended to `to`, until they are all there, the file ends, or an error
  /// comes; interrupted calls are repeated. Sets `numRead` to the bytes read and `atEnd` when the end was met. False on
  /// an error: the bytes read before it are counted.
  bool readBytesToBuf32(void* to, u32 n, u32& numRead, bool& atEnd, LogBase& log);
  /// Makes the next read start at an absolute offset. False when the file is not open or cannot seek there.
  bool seekTo(s64 offset, LogBase& log);

 private:
  friend class _vkFileSys;
  int descriptor_ = -1;
  s64 sizeWhenOpened_ = -1;
};
