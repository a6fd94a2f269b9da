#include "tools/vkbuf/Job.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string_view>

#include "varnik/services/files/FileSys.h"
#include "varnik/services/logging/LogText.h"

namespace {

// The library loads a file with 32 bytes to spare, so this is the longest input.
constexpr u64 kMaxInput = 0xFFFFFFFF - 32;
constexpr u32 kFirstRead = 64 * 1024;
constexpr size_t kMostPerCall = size_t{1} << 30;  // one system call moves less than 2 GiB
const char* const kTooLong = "longer than 4 GiB - 33 bytes, which is all that a buffer takes";

std::string systemReason(int error) {
  return std::strerror(error);
}

struct Descriptor {
  int number;
  explicit Descriptor(int n) : number(n) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number >= 0) close(number);
  }
};

// Makes room for `n` more bytes, twice the capacity at least: the buffer's own growth by fixed steps would copy
// gigabytes many times over.
bool makeRoom(DataBuffer& data, u32 n) {
  if (n <= data.getBufSize() - data.size()) return true;
  const u64 wanted = std::max<u64>({u64{data.getBufSize()} * 2, u64{data.size()} + n, kFirstRead});
  return data.ensureBuffer(static_cast<u32>(std::min(wanted, kMaxInput + 1)));
}

bool looksLikeText(const u8* data, u32 n) {
  return std::none_of(data, data + n,
                      [](u8 b) { return b == 0 || b == 0x7F || (b < 0x20 && !std::strchr("\t\n\r\f\033", b)); });
}

}  // namespace

void Job::addQuiet(CLI::App& app) {
  app.add_flag("-q,--quiet", quiet_, "no notes on standard error, errors only");
}

void Job::addInput(CLI::App& app) {
  addSources(app, "FILE");
}

// Further operands are left to the parser's rest: its lists would take a file name in brackets apart.
void Job::addInputs(CLI::App& app) {
  addSources(app, "FILE...");
  app.allow_extras();
  moreFiles_ = &app;
}

void Job::addSources(CLI::App& app, const char* operand) {
  app.add_option(operand, file_, "the input; '-' or none: standard input")->option_text(" ");
  app.add_option("-s,--text", text_, "the input itself")->option_text("TEXT");
  app.add_flag("--chomp", chomp_, "drop one line end from the end of the input");
  addQuiet(app);
}

std::vector<std::string> Job::files() const {
  std::vector<std::string> files;
  if (!file_) return files;
  files.push_back(*file_);
  if (moreFiles_) {
    const auto more = moreFiles_->remaining();
    const auto mark = std::find(more.begin(), more.end(), "--");
    files.insert(files.end(), more.begin(), mark);
    if (mark != more.end()) files.insert(files.end(), mark + 1, more.end());
  }
  return files;
}

void Job::addOutput(CLI::App& app) {
  app.add_option("-o,--output", out_, "write to FILE, as a whole or not at all")->option_text("FILE");
  app.add_flag("--no-clobber", noClobber_, "refuse to write to a file that exists");
}

void Job::addInPlace(CLI::App& app) {
  app.add_flag("--in-place", inPlace_, "rewrite each FILE, as a whole or not at all");
}

std::string Job::here() const {
  return place_.empty() ? command_ : command_ + ": " + place_;
}

void Job::refuse(const std::string& message, const std::string& hint) const {
  throw Failure(kNo, here() + ": " + message, hint);
}

void Job::fail(const std::string& message, const std::string& hint) const {
  throw Failure(kFailed, here() + ": " + message, hint);
}

void Job::failOn(const std::string& file, const std::string& message) const {
  throw Failure(kFailed, command_ + ": " + file + ": " + message);
}

void Job::note(const std::string& message) const {
  if (!quiet_) say(here() + ": " + message);
}

void Job::read(DataBuffer& data) {
  const auto named = files();
  if (text_ && !named.empty()) fail("give either -s TEXT or a FILE, not both");
  if (named.size() > 1) fail("'" + named[1] + "' is one file too many");
  if (!text_) return readFile(named.empty() ? "-" : named[0], data);
  place_.clear();
  data.clear();
  if (!data.append(text_->data(), static_cast<u32>(text_->size()))) fail("out of memory");
  chompLine(data);
}

void Job::readFile(const std::string& file, DataBuffer& data) {
  data.clear();
  if (file == "-") {
    place_ = "standard input";
    if (isatty(STDIN_FILENO)) note("reading from the terminal; Ctrl-D ends the input");
    readDescriptor(STDIN_FILENO, data);
  } else {
    place_ = file;
    const Descriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat facts;
    if (opened.number < 0 || fstat(opened.number, &facts) != 0) fail(systemReason(errno));
    if (S_ISDIR(facts.st_mode)) fail(systemReason(EISDIR));
    // Pipes, devices and the files of /proc do not tell their length.
    if (S_ISREG(facts.st_mode) && facts.st_size > 0)
      load(file, static_cast<u64>(facts.st_size), data);
    else
      readDescriptor(opened.number, data);
  }
  chompLine(data);
}

void Job::load(const std::string& file, u64 length, DataBuffer& data) {
  if (length > kMaxInput) fail(kTooLong);
  LogText log;
  if (!data.loadFileUtf8(file.c_str(), &log)) fail(reasonIn(log, "cannot be read"));
}

void Job::readDescriptor(int descriptor, DataBuffer& data) {
  for (;;) {
    if (data.size() > kMaxInput) fail(kTooLong);
    if (!makeRoom(data, 1)) fail("out of memory");
    const size_t room = std::min<size_t>(data.getBufSize() - data.size(), kMostPerCall);
    const ssize_t got = ::read(descriptor, data.getData2() + data.size(), room);
    if (got == 0) return;
    if (got > 0)
      data.addToSize(static_cast<u32>(got));
    else if (errno != EINTR)
      fail(systemReason(errno));
  }
}

void Job::chompLine(DataBuffer& data) const {
  if (data.empty() || data.lastByte() != '\n') return;
  if (chomp_) {
    data.shorten(1);
    if (!data.empty() && data.lastByte() == '\r') data.shorten(1);
  }
}

void Job::write(const void* data, u32 n) {
  if (toFile()) {
    if (pending_.empty()) return save(out_, data, n);
    writeMore(data, n);
    return save(out_, pending_.getData2(), pending_.size());
  }
  const bool terminal = isatty(STDOUT_FILENO) && out_.empty();
  const u8* const bytes = static_cast<const u8*>(data);
  if (terminal && !looksLikeText(bytes, n))
    fail("the result is no text, and standard output is a terminal",
         "write it to a file with -o FILE, pipe it into 'vkbuf hexdump', or insist with -o -");
  writeOut(data, n);
  if (terminal && n != 0 && bytes[n - 1] != '\n') writeOut("\n", 1);
}

void Job::writeMore(const void* data, u32 n) {
  if (!toFile()) return writeOut(data, n);
  if (n > kMaxInput - pending_.size()) failOn(out_, std::string("the result is ") + kTooLong);
  if (!makeRoom(pending_, n) || !pending_.append(data, n)) failOn(out_, "out of memory");
}

void Job::writeOut(const void* data, u32 n) {
  const char* rest = static_cast<const char*>(data);
  for (size_t left = n; left != 0;) {
    const ssize_t done = ::write(STDOUT_FILENO, rest, std::min(left, kMostPerCall));
    if (done < 0 && errno == EINTR) continue;
    if (done < 0) failOn("standard output", systemReason(errno));
    rest += done;
    left -= static_cast<size_t>(done);
  }
}

void Job::writeTo(const std::string& file, const DataBuffer& data) {
  if (file == "-")
    writeOut(data.getData2(), data.size());
  else
    save(file, data.getData2(), data.size());
}

void Job::checkFile(const std::string& file) {
  place_ = file;
  const Descriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat facts;
  if (opened.number < 0 || fstat(opened.number, &facts) != 0) fail(systemReason(errno));
  if (S_ISDIR(facts.st_mode)) fail(systemReason(EISDIR));
  if (!S_ISREG(facts.st_mode)) fail("is no regular file, so it has no parts to be read");
}

void Job::save(const std::string& file, const void* data, u32 n) {
  struct stat facts;
  const bool exists = stat(file.c_str(), &facts) == 0;
  if (exists && noClobber_) failOn(file, "exists already, and --no-clobber was given");
  if (exists && S_ISDIR(facts.st_mode)) failOn(file, systemReason(EISDIR));
  LogText log;
  if (!_vkFileSys::writeFileUtf8(file.c_str(), static_cast<const u8*>(data), n, &log))
    failOn(file, reasonIn(log, "cannot be written"));
}

int Job::filter(const std::function<int(DataBuffer&)>& change) {
  if (inPlace_) return filterInPlace(change);
  DataBuffer data;
  read(data);
  const int status = change(data);
  if (status == kDone || !toFile()) write(data);
  return status;
}

// A file that fails does not keep the others from their turn.
int Job::filterInPlace(const std::function<int(DataBuffer&)>& change) {
  const auto named = files();
  if (text_ || named.empty()) fail("--in-place needs the names of files");
  if (!out_.empty()) fail("give either --in-place or -o, not both");
  int worst = kDone;
  for (const std::string& file : named) {
    int status = kDone;
    try {
      if (file == "-") fail("--in-place cannot rewrite standard input");
      DataBuffer data;
      readFile(file, data);
      status = change(data);
      if (status == kDone) save(file, data.getData2(), data.size());
    } catch (const Failure& failure) {
      say(failure);
      status = failure.status;
    }
    worst = std::max(worst, status);
  }
  return worst;
}

std::string reasonIn(const LogText& log, const std::string& otherwise) {
  const std::string_view text = log.getText();
  const auto valueOf = [text](std::string_view tag) {
    const size_t at = text.find(tag);
    if (at == text.npos) return std::string();
    const std::string_view rest = text.substr(at + tag.size());
    return std::string(rest.substr(0, rest.find('\n')));
  };
  const std::string error = valueOf("error: "), reason = valueOf("reason: ");
  if (error.empty()) return reason.empty() ? otherwise : reason;
  return reason.empty() ? error : error + ": " + reason;
}
