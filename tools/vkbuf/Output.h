// The result of a command on its way to -o or standard output.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "tools/vkbuf/Saver.h"

class Job;

/// The result by pieces. To a file all of it goes or nothing: `finish` puts it in place. A terminal gets a last line
/// feed and no control bytes.
class Output {
 public:
  /// `job` lives as long. An empty `file` is standard output, and so is "-", where even a terminal gets every byte.
  Output(const Job& job, const std::string& file, bool newline);

  void write(const void* data, std::size_t n);
  void finish();

 private:
  const Job& job_;
  std::optional<Saver> saver_;
  bool terminal_, newline_;
  char last_ = '\0';
};
