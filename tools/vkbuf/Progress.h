// How far a long run has come, for a person who waits.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "varnik/services/memory/Types.h"

/// From the second second on, as long as it lives, keeps a line on standard error that tells how much was read. Does
/// nothing where standard error is no terminal, or where standard output is one: there the result is to be seen. One at
/// a time.
class Progress {
 public:
  Progress();
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Counts bytes that were read; adds to those that will be.
  static void read(u64 bytes);
  static void expect(u64 bytes);
  /// Shows nothing from now on: a person types the input, or sees the result.
  static void hide();
  /// Takes the line back, for a message to stand in its place.
  static void clearLine();

 private:
  void run();

  std::mutex mutex_;
  std::condition_variable wake_;
  bool done_ = false;
  std::thread thread_;
};
