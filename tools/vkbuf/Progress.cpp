#include "tools/vkbuf/Progress.h"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>

namespace {

std::atomic<u64> numRead{0}, numExpected{0};

std::mutex screen;  // guards what follows
bool lineShown = false, hidden = false;

void show(long seconds) {
  const std::lock_guard lock(screen);
  if (hidden) return;
  constexpr u64 kMiB = 1024 * 1024;
  const auto done = static_cast<unsigned long long>(numRead / kMiB);
  const auto all = static_cast<unsigned long long>(numExpected / kMiB);
  lineShown = true;
  if (all > done)
    std::fprintf(stderr, "\r\033[Kvkbuf: %ld s, %llu of %llu MiB read", seconds, done, all);
  else
    std::fprintf(stderr, "\r\033[Kvkbuf: %ld s, %llu MiB read", seconds, done);
}

}  // namespace

// Signals are the main thread's: its handler takes the temporary away.
Progress::Progress() {
  if (!isatty(STDERR_FILENO)) return;
  sigset_t all, before;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, &before);
  thread_ = std::thread([this] { run(); });
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

Progress::~Progress() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    done_ = true;
  }
  wake_.notify_one();
  thread_.join();
  clearLine();
}

void Progress::run() {
  std::unique_lock lock(mutex_);
  for (long seconds = 1; !wake_.wait_for(lock, std::chrono::seconds(1), [this] { return done_; }); ++seconds)
    show(seconds);
}

void Progress::read(u64 bytes) {
  numRead += bytes;
}

void Progress::expect(u64 bytes) {
  numExpected += bytes;
}

void Progress::hide() {
  clearLine();
  const std::lock_guard lock(screen);
  hidden = true;
}

void Progress::clearLine() {
  const std::lock_guard lock(screen);
  if (lineShown) std::fputs("\r\033[K", stderr);
  lineShown = false;
}
