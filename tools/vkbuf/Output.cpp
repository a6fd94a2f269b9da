#include "tools/vkbuf/Output.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Memory.h"
#include "tools/vkbuf/Progress.h"

namespace {

bool looksLikeText(const u8* data, std::size_t n) {
  return std::none_of(data, data + n,
                      [](u8 b) { return b == 0 || b == 0x7F || (b < 0x20 && !std::strchr("\t\n\r\f\033", b)); });
}

void writeStandard(const Job& job, const void* data, std::size_t n) {
  checkMemory();
  if (!vk_files::writeWhole(STDOUT_FILENO, data, n)) job.failOn("standard output", std::strerror(errno));
}

}  // namespace

Output::Output(const Job& job, const std::string& file, bool newline) : job_(job), newline_(newline) {
  if (!file.empty() && file != "-") saver_.emplace(job, file);
  if (!saver_ && isatty(STDOUT_FILENO)) Progress::hide();
  terminal_ = file.empty() && isatty(STDOUT_FILENO);
}

void Output::write(const void* data, std::size_t n) {
  if (n == 0) return;
  last_ = static_cast<const char*>(data)[n - 1];
  if (saver_) return saver_->write(data, n);
  if (terminal_ && !looksLikeText(static_cast<const u8*>(data), n))
    job_.fail("the result is no text, and standard output is a terminal",
              "write it to a file with -o FILE, pipe it into 'vkbuf hexdump', or insist with -o -");
  writeStandard(job_, data, n);
}

void Output::finish() {
  if (last_ != '\n' && (newline_ || (terminal_ && last_ != '\0'))) write("\n", 1);
  if (saver_) saver_->commit();
}
