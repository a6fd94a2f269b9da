#pragma once

#include <cstddef>

#include "varnik/services/files/internal/Target.h"
#include "varnik/services/memory/Api.h"

namespace vk_files {

/// Replaces the content of a file as a whole or not at all; the new content may come in pieces.
///
///   AtomicFile file;
///   bool done = file.open(path) && file.write(a, n) && file.write(b, m) && file.commit();
///
/// A temporary with a random name beside the target takes the pieces; `commit` flushes it to disk, renames it over the
/// target and flushes the folder, so that whoever looks, also after the program or the machine died, finds the old
/// content or the new. The temporary can be read by its owner alone until it is full. The target's mode bits are kept,
/// its owner and group as far as the caller may set them; hard links and extended attributes are not. A new file gets
/// the mode that the caller's umask and the folder's access lists give to one. A device or a pipe takes the pieces at
/// once.
///
/// After a failure the old content stands and no temporary is left, with one exception: when only the flush of the
/// folder fails, `commit` is false although the new content has taken its place.
class VARNIK_API AtomicFile {
 public:
  AtomicFile() = default;
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;
  /// Abandons what was not committed.
  ~AtomicFile() { abandon(); }

  /// Begins a new content of the file at `path` (UTF-8, links followed). REQUIRES: a new object.
  bool open(const char* path);
  /// Adds `n` bytes; `data` may be null when `n` is 0.
  bool write(const void* data, std::size_t n);
  /// Puts the new content in place. True when it is on the disk.
  bool commit();
  /// Gives the new content up: the temporary is removed.
  void abandon();

  /// The system's error number of the failure; 0 when there was none.
  int error() const { return error_; }

 private:
  bool fail();
  bool fail(int error);
  bool openTemporary();
  bool createTemporary(mode_t mode);
  bool keepOwner(uid_t owner, gid_t group);
  bool commitStream();

  Target target_;
  Descriptor file_;
  mode_t finalMode_ = 0;
  char temporary_[32] = "";  // its name in the target's folder; empty when there is none
  int error_ = 0;
};

}  // namespace vk_files
