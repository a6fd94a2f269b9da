#include "tools/vkbuf/Input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Progress.h"
#include "tools/vkbuf/Text.h"

Input::Input(const Job& job, const std::string& file) : job_(job) {
  descriptor_ = file == "-" ? STDIN_FILENO : open(file.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat facts;
  if (descriptor_ < 0 || fstat(descriptor_, &facts) != 0) job.fail(std::strerror(errno));
  if (S_ISDIR(facts.st_mode)) job.fail(std::strerror(EISDIR));
  if (isatty(descriptor_)) {
    Progress::hide();
    job.note("reading from the terminal; Ctrl-D ends the input");
  }
  // Pipes, devices and the files of /proc do not tell their length.
  if (S_ISREG(facts.st_mode) && descriptor_ != STDIN_FILENO) length_ = static_cast<u64>(facts.st_size);
  Progress::expect(length_);
}

Input::Input(const Job& job, std::string_view text) : job_(job), text_(text), length_(text.size()) {}

Input::~Input() {
  if (descriptor_ > STDIN_FILENO) close(descriptor_);
}

u32 Input::read(u8* area, u32 n) {
  u32 done = 0;
  n = static_cast<u32>(std::min<u64>(n, left_));
  left_ -= n;
  if (descriptor_ < 0) {
    done = static_cast<u32>(text_.copy(reinterpret_cast<char*>(area), n));
    text_.remove_prefix(done);
    return done;
  }
  while (done < n) {
    constexpr u32 kMostPerCall = u32{1} << 30;  // one system call moves less than 2 GiB
    const ssize_t got = ::read(descriptor_, area + done, std::min(n - done, kMostPerCall));
    if (got == 0) break;
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) job_.fail(std::strerror(errno));
    done += static_cast<u32>(got);
    Progress::read(static_cast<u64>(got));
  }
  return done;
}

void Input::skip(u64 n) {
  u8 area[4096];
  if (descriptor_ >= 0 && length_ != 0 && lseek(descriptor_, static_cast<off_t>(std::min(n, length_)), SEEK_SET) >= 0)
    return;
  while (n != 0) {
    const u32 wanted = static_cast<u32>(std::min<u64>(n, sizeof area));
    if (read(area, wanted) < wanted) return;
    n -= wanted;
  }
}

namespace {

constexpr u32 kFirstArea = 256 * 1024, kLargestArea = 4 * 1024 * 1024;

}  // namespace

Window::Window(const Job& job, Input& input, bool chomp) : job_(job), input_(input), area_(kFirstArea), chomp_(chomp) {
  fill();
}

// One byte of the area stays free behind the bytes in view.
void Window::fill() {
  const u32 wanted = static_cast<u32>(area_.size()) - 1 - filled_;
  const u32 got = input_.read(area_.data() + filled_, wanted);
  filled_ += got;
  atEnd_ = got < wanted;
  size_ = filled_;
  if (!chomp_) return;
  size_ = atEnd_ ? filled_ - lineEndLength(area_.data(), filled_) : filled_ - std::min(filled_, 2U);
}

void Window::advance(u32 used) {
  if (used == 0) {
    if (area_.size() >= kLargestArea) job_.fail("holds more than 4 MiB that belong together: a line without end, say");
    area_.resize(area_.size() * 2);
  }
  std::memmove(area_.data(), area_.data() + used, filled_ - used);
  filled_ -= used;
  fill();
}
