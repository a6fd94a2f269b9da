#include "tools/vkbuf/Saver.h"

#include <csignal>
#include <cstring>
#include <initializer_list>

#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Memory.h"

namespace {

// What the handler takes away: the one file that is being written. Closing and unlinking are permitted to handlers.
vk_files::AtomicFile* unfinished = nullptr;

// The signal is held back while its handler runs, so that it ends the process as soon as that returns.
void endBySignal(int number) {
  unfinished->abandon();
  std::signal(number, SIG_DFL);
  std::raise(number);
}

constexpr std::initializer_list<int> kEnding = {SIGINT, SIGTERM};

// A signal that the caller has told the tool to ignore stays ignored.
void handleSignals() {
  struct sigaction action = {}, before;
  action.sa_handler = endBySignal;
  for (const int number : kEnding) sigaddset(&action.sa_mask, number);
  for (const int number : kEnding) {
    sigaction(number, nullptr, &before);
    if (before.sa_handler == SIG_DFL) sigaction(number, &action, nullptr);
  }
}

// Between the making of the temporary and the moment when the handler would find it no signal may come.
class SignalsHeld {
 public:
  SignalsHeld() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int number : kEnding) sigaddset(&ending, number);
    pthread_sigmask(SIG_BLOCK, &ending, &before_);
  }
  ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

 private:
  sigset_t before_;
};

void restoreSignals() {
  struct sigaction now;
  for (const int number : kEnding) {
    sigaction(number, nullptr, &now);
    if (now.sa_handler == endBySignal) std::signal(number, SIG_DFL);
  }
}

}  // namespace

Saver::Saver(const Job& job, std::string file) : job_(job), path_(std::move(file)) {
  const SignalsHeld held;
  if (!file_.open(path_.c_str())) fail();
  unfinished = &file_;
  handleSignals();
}

Saver::~Saver() {
  const SignalsHeld held;
  restoreSignals();
  unfinished = nullptr;
  file_.abandon();
}

void Saver::fail() const {
  job_.failOn(path_, std::string("the file cannot be written: ") + std::strerror(file_.error()));
}

void Saver::write(const void* data, std::size_t n) {
  checkMemory();
  if (!file_.write(data, n)) fail();
}

void Saver::commit() {
  checkMemory();
  if (!file_.commit()) fail();
}
