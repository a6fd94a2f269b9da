#pragma once

#include <sys/types.h>

#include <climits>

#include "varnik/services/files/internal/Posix.h"

namespace vk_files {

/// What is to be written: found by its path, its links followed to the end.
///
/// The folder is held open, so that the target, the temporary beside it and the renaming mean one and the same folder,
/// whatever becomes of its path meanwhile.
class Target {
 public:
  enum class Kind { kNew, kFile, kStream };  // kStream: a device, a pipe; all that is no regular file

  /// Finds the target of `path`. False when it cannot be written, with errno telling why. A link that leads nowhere
  /// names a new file.
  bool find(const char* path);

  Kind kind() const { return kind_; }
  const Descriptor& folder() const { return folder_; }
  /// The name in the folder.
  const char* name() const { return name_; }
  /// Opens a stream for writing; -1 on failure. REQUIRES: the kind is `kStream`.
  int openStream() const;

  // Of an existing file.
  mode_t mode() const { return mode_; }
  uid_t owner() const { return owner_; }
  gid_t group() const { return group_; }

 private:
  bool resolve();
  bool enterFolder();
  bool followLink(bool& wasLink);
  bool examineFile();

  Kind kind_ = Kind::kNew;
  Descriptor folder_;
  mode_t mode_ = 0;
  uid_t owner_ = 0;
  gid_t group_ = 0;
  char name_[PATH_MAX] = "";  // what is left of the path, in the folder
};

}  // namespace vk_files
