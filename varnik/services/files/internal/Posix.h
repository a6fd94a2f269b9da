// What the file services share of the system's interface: interrupted calls are repeated, transfers are whole, and a
// descriptor belongs to an object.
#pragma once

#include <cerrno>
#include <cstddef>

#include "varnik/services/memory/Api.h"

class LogBase;

namespace vk_files {

/// Makes a system call that answers below 0 on failure, again whenever a signal interrupts it. Not for close: that has
/// released the descriptor even when it was interrupted.
template <class Call>
auto repeatInterrupted(Call call) {
  for (;;) {
    const auto result = call();
    if (result >= 0 || errno != EINTR) return result;
  }
}

/// A descriptor that is closed when its owner goes; -1 is none.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(); }

  int get() const { return number_; }
  bool isOpen() const { return number_ >= 0; }
  /// Closes what is held and takes `number` instead; returns whether that is a descriptor.
  bool reset(int number) {
    close();
    number_ = number;
    return number >= 0;
  }
  /// Closes it. False when the system reports an error of the writes before; errno tells which.
  VARNIK_API bool close();

 private:
  int number_ = -1;
};

/// Writes all `n` bytes. False on an error; errno tells which.
VARNIK_API bool writeWhole(int descriptor, const void* data, std::size_t n);

/// Records the system's words for an error number under "reason".
void logReason(LogBase& log, int error);

}  // namespace vk_files
