#include "varnik/services/files/internal/Target.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

namespace vk_files {
namespace {

constexpr int kMostLinks = 40;  // as the kernel counts

bool fail(int error) {
  errno = error;
  return false;
}

}  // namespace

bool Target::find(const char* path) {
  if (!path || *path == 0) return fail(ENOENT);
  const std::size_t length = std::strlen(path);
  if (length >= sizeof name_) return fail(ENAMETOOLONG);
  std::memcpy(name_, path, length + 1);

  // The kernel's own answer comes first: what stands behind /dev/stdout cannot be reached by reading its link.
  struct stat facts;
  const bool exists = repeatInterrupted([&] { return ::stat(path, &facts); }) == 0;
  if (!exists && errno != ENOENT) return false;
  if (exists && S_ISDIR(facts.st_mode)) return fail(EISDIR);
  if (exists && !S_ISREG(facts.st_mode)) {
    kind_ = Kind::kStream;
    return true;
  }
  kind_ = exists ? Kind::kFile : Kind::kNew;
  return resolve() && (!exists || examineFile());
}

int Target::openStream() const {
  return repeatInterrupted([&] { return ::open(name_, O_WRONLY | O_CLOEXEC | O_NOCTTY); });
}

// Follows the links of the last name of the path; those of the folders before it are the system's business.
bool Target::resolve() {
  for (int links = 0; links <= kMostLinks; ++links) {
    bool wasLink = false;
    if (!enterFolder() || !followLink(wasLink)) return false;
    if (!wasLink) return true;
  }
  return fail(ELOOP);
}

// Opens the folder that the name leads through, and keeps what is behind its last slash.
bool Target::enterFolder() {
  char* slash = std::strrchr(name_, '/');
  if (!slash && folder_.isOpen()) return true;
  char path[PATH_MAX] = ".";
  if (slash) {
    const auto length = static_cast<std::size_t>(slash + 1 - name_);
    std::memcpy(path, name_, length);
    path[length] = 0;
    std::memmove(name_, slash + 1, std::strlen(slash + 1) + 1);
  }
  const int from = folder_.isOpen() ? folder_.get() : AT_FDCWD;
  if (!folder_.reset(repeatInterrupted([&] { return ::openat(from, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC); })))
    return false;
  return name_[0] != 0 || fail(EISDIR);
}

// Puts what the name points to in its place, if it is a link.
bool Target::followLink(bool& wasLink) {
  char to[PATH_MAX];
  const auto length = repeatInterrupted([&] { return ::readlinkat(folder_.get(), name_, to, sizeof to); });
  if (length < 0) return errno == EINVAL || errno == ENOENT;  // no link; nothing
  if (length == 0 || static_cast<std::size_t>(length) >= sizeof to) return fail(ENAMETOOLONG);
  std::memcpy(name_, to, static_cast<std::size_t>(length));
  name_[length] = 0;
  wasLink = true;
  return true;
}

bool Target::examineFile() {
  struct stat facts;
  const int flags = AT_SYMLINK_NOFOLLOW;
  if (repeatInterrupted([&] { return ::fstatat(folder_.get(), name_, &facts, flags); }) != 0) return false;
  if (!S_ISREG(facts.st_mode)) return fail(EINVAL);
  mode_ = facts.st_mode & 07777;
  owner_ = facts.st_uid;
  group_ = facts.st_gid;
  // A rename asks for the folder's permission alone; a file that its owner protected is not to be replaced.
  return repeatInterrupted([&] { return ::faccessat(folder_.get(), name_, W_OK, AT_EACCESS); }) == 0;
}

}  // namespace vk_files
