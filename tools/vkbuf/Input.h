// The input of a command: a file, standard input, or the text of -s; as a stream, or as a window that moves over it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "varnik/services/memory/Types.h"

class Job;

/// Bytes one after the other. Failures end the command.
class Input {
 public:
  /// Opens a file; "-" is standard input. `job` and, in the second form, `text` live as long.
  Input(const Job& job, const std::string& file);
  Input(const Job& job, std::string_view text);
  ~Input();
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  /// Reads `n` bytes; fewer only where the input ends.
  u32 read(u8* area, u32 n);
  /// Passes over `n` bytes, or all that there are.
  void skip(u64 n);
  /// Makes the input end `n` bytes from here at the latest.
  void limit(u64 n) { left_ = n; }
  /// The length of a regular file; 0 where nothing tells it.
  u64 length() const { return length_; }

 private:
  const Job& job_;
  int descriptor_ = -1;  // -1: the text
  std::string_view text_;
  u64 length_ = 0, left_ = ~u64{0};
};

/// A part of the input in memory. It begins with the first bytes and moves on as they are used.
class Window {
 public:
  /// With `chomp` the input's last line end is left out.
  Window(const Job& job, Input& input, bool chomp);

  /// The bytes in view. Those behind them may be read, one at least, and written.
  u8* data() { return area_.data(); }
  u32 size() const { return size_; }
  /// Whether the input ends with what is in view.
  bool isLast() const { return atEnd_; }
  /// Drops the first `used` bytes and fills up from the input. Where none could be used it grows, up to a limit.
  void advance(u32 used);

 private:
  void fill();

  const Job& job_;
  Input& input_;
  std::vector<u8> area_;
  u32 size_ = 0;    // in view
  u32 filled_ = 0;  // in view or held back: the last two bytes that were read may be a line end to be dropped
  bool chomp_, atEnd_ = false;
};
