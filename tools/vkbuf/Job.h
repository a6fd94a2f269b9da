// One run of a command: what it is called in messages, where its bytes come from, and where they go.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/vkbuf/Failure.h"
#include "tools/vkbuf/Input.h"
#include "tools/vkbuf/Output.h"
#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/strings/StringBuffer.h"

namespace CLI {
class App;
}

/// The heading of the options that commands share.
constexpr const char* kShared = "Shared options";

class Job {
 public:
  /// `command` heads the messages; a command may make it longer ("encode base64").
  explicit Job(std::string command) : command_(std::move(command)) {}
  void setCommand(std::string command) { command_ = std::move(command); }

  // ---- Options that commands share ----

  void addInput(CLI::App& app);    // [FILE] -s --chomp
  void addInputs(CLI::App& app);   // [FILE...] -s --chomp
  void addOutput(CLI::App& app);   // -o --no-clobber --newline
  void addInPlace(CLI::App& app);  // --in-place, beside the two above

  // ---- Running ----

  /// Opens the input: the text of -s, the one file named, or standard input. To be read as a stream.
  std::unique_ptr<Input> open();
  /// The same as a window over it, --chomp heeded.
  Window view(Input& input) const { return {*this, input, chomp_}; }
  /// Replaces `data` by the whole input.
  void read(DataBuffer& data);
  /// Replaces `data` by the whole of a file; "-" is standard input.
  void readFile(const std::string& file, DataBuffer& data);
  /// Begins the result, which goes to -o or standard output by pieces.
  Output begin() const;
  /// Writes the result as a whole.
  void write(const void* data, u32 n) const;
  void write(const DataBuffer& data) const { write(data.getData2(), data.size()); }
  void write(const StringBuffer& text) const { write(text.getString(), text.getSize()); }
  void write(const std::string& text) const { write(text.data(), static_cast<u32>(text.size())); }
  /// Writes to a file named otherwise than by -o; "-" is standard output.
  void writeTo(const std::string& file, const DataBuffer& data) const;
  /// Fails unless a file can be opened and is none of the things that have no parts: a folder, a pipe, a terminal.
  void checkFile(const std::string& file);
  /// Reads, changes and writes the input, or each file with --in-place. A change that answers another status than
  /// `kDone` is not written to a file. Returns the worst status.
  int filter(const std::function<int(DataBuffer&)>& change);
  /// Whether the files are to be rewritten, so that each is needed whole.
  bool isInPlace() const { return !inPlace_.empty(); }
  /// Tells a person that the line end of what was typed counts as data.
  void noteLineEnd(const u8* data, u32 n) const;

  /// Reads hex digits as people type them, with blanks and colons between the bytes and 0x in front.
  DataBuffer bytesOfHex(const std::string& typed) const;
  /// The operands that name files.
  std::vector<std::string> files() const;
  /// Whether the bytes come from -s.
  bool hasText() const { return text_.has_value(); }

  // ---- Messages: "COMMAND: INPUT: ..." ----

  /// -q: no notes.
  static void setQuiet(bool quiet);

  /// The data is at fault: status 1.
  [[noreturn]] void refuse(const std::string& message, const std::string& hint = {}) const;
  /// The call is at fault, or the system: status 2. The second form names a file.
  [[noreturn]] void fail(const std::string& message, const std::string& hint = {}) const;
  [[noreturn]] void failOn(const std::string& file, const std::string& message) const;
  /// Tells something beside the result, unless -q.
  void note(const std::string& message) const;

 private:
  void addSources(CLI::App& app, const char* operand);
  std::string here() const;
  bool toFile() const { return !out_.empty() && out_ != "-"; }
  void checkClobber(const std::string& file) const;
  void load(const std::string& file, u64 length, DataBuffer& data) const;
  void readAll(Input& input, DataBuffer& data) const;
  int filterInPlace(const std::function<int(DataBuffer&)>& change);
  int rewrite(const std::string& file, const std::function<int(DataBuffer&)>& change);

  std::string command_;
  std::string place_;  // the input at work, as messages name it; empty for -s
  std::optional<std::string> text_;
  std::optional<std::string> file_;
  const CLI::App* moreFiles_ = nullptr;  // the parser that holds further operands
  std::string out_;
  std::string inPlace_;  // as the parser has it: empty, "true", or what the names of the old files end in
  bool chomp_ = false, noClobber_ = false, newline_ = false;
};

/// Returns the first error that an operation logged, with the reason it gave, or `otherwise`.
class LogText;
std::string reasonIn(const LogText& log, const std::string& otherwise);
