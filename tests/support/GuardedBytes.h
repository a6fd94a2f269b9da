// Memory whose neighbours are unreadable: one byte read or written outside stops the test at once.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "varnik/services/memory/Types.h"

/// An area between two unreadable pages. The pointers that it hands out share the one area: a later content replaces
/// an earlier one. They are valid while the object lives.
class GuardedBytes {
 public:
  /// Room for contents of up to `most` bytes.
  explicit GuardedBytes(std::size_t most) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    area_ = (most + page - 1) / page * page;
    mapped_ = area_ + 2 * page;
    whole_ = mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    first_ = static_cast<u8*>(whole_) + page;
    if (whole_ == MAP_FAILED || (area_ != 0 && mprotect(first_, area_, PROT_READ | PROT_WRITE) != 0)) std::abort();
  }
  ~GuardedBytes() { munmap(whole_, mapped_); }
  GuardedBytes(GuardedBytes&&) = delete;

  /// Returns `n` writable bytes with an unreadable page right behind them.
  u8* ending(std::size_t n) { return first_ + area_ - n; }
  /// The same, filled with a content.
  u8* ending(std::string_view content) { return fill(ending(content.size()), content); }
  /// Returns bytes with an unreadable page right before them, filled with a content.
  u8* starting(std::string_view content) { return fill(first_, content); }

 private:
  static u8* fill(u8* to, std::string_view content) {
    if (!content.empty()) std::memcpy(to, content.data(), content.size());
    return to;
  }

  void* whole_ = nullptr;
  u8* first_ = nullptr;
  std::size_t area_ = 0, mapped_ = 0;
};
