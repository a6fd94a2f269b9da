#pragma once

#include "varnik/services/files/FileHandle.h"
#include "varnik/services/logging/LogBase.h"
#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class XString;

/// The file system. Paths are UTF-8; their bytes are handed on unchanged. A path that is null, empty or holds a NUL
/// fails.
class VARNIK_API _vkFileSys {
 public:
  /// Whether reading, or writing, files is permitted to the library; see `setPermissions`. A refusal is logged as an
  /// error when `logRefusal`.
  static bool js_validate_read_perm(LogBase& log, bool logRefusal);
  static bool js_validate_write_perm(LogBase& log, bool logRefusal);
  /// Sets what the two checks answer, for the whole process; both are true at start.
  static void setPermissions(bool mayRead, bool mayWrite);

  /// Opens a file for reading from its start. `errorCode` receives the system's error number, 0 on success. `forUpdate`
  /// must be false: files are only opened for reading here. A directory cannot be opened.
  static bool openFileForRead(FileHandle& handle, XString& path, bool forUpdate, int& errorCode, LogBase& log);

  /// Replaces the file's content by `n` bytes at `data`, as a whole or not at all: a temporary file beside the target
  /// is filled, flushed to disk and renamed over it. The mode bits of an existing target are kept; a link is followed;
  /// a device or pipe is written directly; a target that may not be written makes the save fail. On failure the old
  /// content stands and no temporary is left, but for one case: where only the flush of the folder fails, the new
  /// content is in place and the answer false all the same. True when the bytes are on the disk. `log` may be null.
  static bool writeFileUtf8(const char* path, const u8* data, u32 n, LogBase* log);

  /// Fills `path` with the current directory; empties it when the system does not tell. `log` may be null.
  static void getCurrentDir(XString& path, LogBase* log);
};
