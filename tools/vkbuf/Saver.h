// A file that is written as a whole or not at all, whatever ends the tool.
#pragma once

#include <cstddef>
#include <string>

#include "varnik/services/files/internal/AtomicFile.h"

class Job;

/// The new content of a file, by pieces; failures end the command. What is not committed leaves the old content, also
/// when SIGINT or SIGTERM comes: the temporary is removed and the process ends by that signal. One at a time.
class Saver {
 public:
  Saver(const Job& job, std::string file);
  ~Saver();
  Saver(const Saver&) = delete;
  Saver& operator=(const Saver&) = delete;

  void write(const void* data, std::size_t n);
  void commit();

 private:
  [[noreturn]] void fail() const;

  const Job& job_;
  std::string path_;
  vk_files::AtomicFile file_;
};
