#include "tools/vkbuf/Job.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "tools/vkbuf/Progress.h"
#include "tools/vkbuf/Text.h"
#include "varnik/services/logging/LogText.h"

namespace {

// The library loads a file with 32 bytes to spare, so this is the longest input.
constexpr u64 kMaxInput = 0xFFFFFFFF - 32;
const char* const kTooLong = "longer than 4 GiB - 33 bytes, which is all that a buffer takes";

bool quiet = false;

// Makes room for `n` more bytes, twice the capacity at least: the buffer's own growth by fixed steps would copy
// gigabytes many times over.
bool makeRoom(DataBuffer& data, u32 n) {
  constexpr u32 kFirstRead = 64 * 1024;
  if (n <= data.getBufSize() - data.size()) return true;
  const u64 wanted = std::max<u64>({u64{data.getBufSize()} * 2, u64{data.size()} + n, kFirstRead});
  return data.ensureBuffer(static_cast<u32>(std::min(wanted, kMaxInput + 1)));
}

}  // namespace

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
  app.add_option("-s,--text", text_, "the input itself")->option_text("TEXT")->group(kShared);
  app.add_flag("--chomp", chomp_, "drop one line end from the end of the input")->group(kShared);
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
  app.add_option("-o,--output", out_, "write to FILE, as a whole or not at all")->option_text("FILE")->group(kShared);
  app.add_flag("--no-clobber", noClobber_, "refuse to write to a file that exists")->group(kShared);
  app.add_flag("--newline", newline_, "end the result with a line feed if it lacks one")->group(kShared);
}

// A flag, so that it never takes the word behind it for its suffix.
void Job::addInPlace(CLI::App& app) {
  app.add_flag("--in-place", inPlace_, "rewrite each FILE; the old one is kept as FILE and SUFFIX")
      ->option_text("[=SUFFIX]")
      ->group(kShared);
}

void Job::setQuiet(bool wanted) {
  quiet = wanted;
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
  if (!quiet) say(here() + ": " + message);
}

std::unique_ptr<Input> Job::open() {
  const auto named = files();
  if (text_ && !named.empty()) fail("give either -s TEXT or a FILE, not both");
  if (named.size() > 1) fail("'" + named[1] + "' is one file too many");
  place_.clear();
  if (text_) return std::make_unique<Input>(*this, std::string_view(*text_));
  const std::string file = named.empty() ? "-" : named[0];
  place_ = file == "-" ? "standard input" : file;
  return std::make_unique<Input>(*this, file);
}

void Job::read(DataBuffer& data) {
  const auto input = open();
  if (text_ || input->length() == 0)
    readAll(*input, data);
  else
    load(place_, input->length(), data);
  if (chomp_) data.shorten(lineEndLength(data.getData2(), data.size()));
}

void Job::readFile(const std::string& file, DataBuffer& data) {
  text_.reset();
  file_ = file;
  moreFiles_ = nullptr;
  read(data);
}

void Job::load(const std::string& file, u64 length, DataBuffer& data) const {
  if (length > kMaxInput) fail(kTooLong);
  LogText log;
  if (!data.loadFileUtf8(file.c_str(), &log)) fail(reasonIn(log, "cannot be read"));
  Progress::read(length);
}

void Job::readAll(Input& input, DataBuffer& data) const {
  data.clear();
  for (u32 room = 1; room != 0;) {
    if (data.size() > kMaxInput) fail(kTooLong);
    if (!makeRoom(data, 1)) fail("out of memory");
    room = data.getBufSize() - data.size();
    const u32 got = input.read(data.getData2() + data.size(), room);
    data.addToSize(got);
    if (got < room) return;
  }
}

DataBuffer Job::bytesOfHex(const std::string& typed) const {
  std::string digits;
  std::remove_copy_if(typed.begin(), typed.end(), std::back_inserter(digits),
                      [](char c) { return c == ':' || isWhiteSpace(static_cast<u8>(c)); });
  if (digits.starts_with("0x") || digits.starts_with("0X")) digits.erase(0, 2);
  DataBuffer bytes;
  if (!StringBuffer(digits.c_str()).hexStringToBinary(bytes))
    fail("'" + typed + "' is not made of pairs of hex digits");
  return bytes;
}

void Job::noteLineEnd(const u8* data, u32 n) const {
  if (place_ == "standard input" && !chomp_ && isatty(STDERR_FILENO) && lineEndLength(data, n) != 0)
    note("ends with a line feed, which counts; --chomp drops it");
}

Output Job::begin() const {
  if (toFile()) checkClobber(out_);
  return {*this, out_, newline_};
}

void Job::write(const void* data, u32 n) const {
  Output output = begin();
  output.write(data, n);
  output.finish();
}

void Job::writeTo(const std::string& file, const DataBuffer& data) const {
  if (file != "-") checkClobber(file);
  Output output(*this, file, false);
  output.write(data.getData2(), data.size());
  output.finish();
}

void Job::checkClobber(const std::string& file) const {
  struct stat facts;
  const bool exists = stat(file.c_str(), &facts) == 0;
  if (exists && noClobber_) failOn(file, "exists already, and --no-clobber was given");
  if (exists && S_ISDIR(facts.st_mode)) failOn(file, std::strerror(EISDIR));
}

void Job::checkFile(const std::string& file) {
  place_ = file;
  const int opened = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  struct stat facts;
  if (opened < 0 || fstat(opened, &facts) != 0) fail(std::strerror(errno));
  close(opened);
  if (S_ISDIR(facts.st_mode)) fail(std::strerror(EISDIR));
  if (!S_ISREG(facts.st_mode)) fail("is no regular file, so it has no parts to be read");
}

int Job::filter(const std::function<int(DataBuffer&)>& change) {
  if (isInPlace()) return filterInPlace(change);
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
      status = rewrite(file, change);
    } catch (const Failure& failure) {
      say(failure);
      status = failure.status;
    }
    worst = std::max(worst, status);
  }
  return worst;
}

// The old file is kept by a second name of its own, so it is whole at any moment.
int Job::rewrite(const std::string& file, const std::function<int(DataBuffer&)>& change) {
  DataBuffer data;
  readFile(file, data);
  const int status = change(data);
  if (status != kDone) return status;
  if (inPlace_ != "true") {
    const std::string old = file + inPlace_;
    checkClobber(old);
    if ((unlink(old.c_str()) != 0 && errno != ENOENT) ||
        linkat(AT_FDCWD, file.c_str(), AT_FDCWD, old.c_str(), AT_SYMLINK_FOLLOW) != 0)
      failOn(old, std::string("the old file cannot be kept: ") + std::strerror(errno));
  }
  Saver saver(*this, file);
  saver.write(data.getData2(), data.size());
  saver.commit();
  return kDone;
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
