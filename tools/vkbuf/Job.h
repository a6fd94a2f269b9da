// One run of a command: what it is called in messages, where its bytes come from, and where they go.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/vkbuf/Failure.h"
#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/strings/StringBuffer.h"

namespace CLI {
class App;
}

class Job {
 public:
  /// `command` heads the messages; a command may make it longer ("encode base64").
  explicit Job(std::string command) : command_(std::move(command)) {}
  void setCommand(std::string command) { command_ = std::move(command); }

  // ---- Options that commands share ----

  void addInput(CLI::App& app);    // [FILE] -s --chomp -q
  void addInputs(CLI::App& app);   // [FILE...] -s --chomp -q
  void addOutput(CLI::App& app);   // -o --no-clobber
  void addInPlace(CLI::App& app);  // --in-place, beside the two above
  void addQuiet(CLI::App& app);    // -q; part of the inputs

  // ---- Running ----

  /// Replaces `data` by the whole input: the text of -s, the one file named, or standard input.
  void read(DataBuffer& data);
  /// Replaces `data` by the whole of a file; "-" is standard input.
  void readFile(const std::string& file, DataBuffer& data);
  /// Writes the result to -o or standard output. A terminal gets a last line feed and no control bytes.
  void write(const void* data, u32 n);
  void write(const DataBuffer& data) { write(data.getData2(), data.size()); }
  void write(const StringBuffer& text) { write(text.getString(), text.getSize()); }
  void write(const std::string& text) { write(text.data(), static_cast<u32>(text.size())); }
  /// Writes a piece of a result that comes in pieces; the last one goes through `write`. To a file all go at once.
  void writeMore(const void* data, u32 n);
  /// Writes to a file named otherwise than by -o; "-" is standard output.
  void writeTo(const std::string& file, const DataBuffer& data);
  /// Fails unless a file can be opened and is none of the things that have no parts: a folder, a pipe, a terminal.
  void checkFile(const std::string& file);
  /// Reads, changes and writes the input, or each file with --in-place. A change that answers another status than
  /// `kDone` is not written to a file. Returns the worst status.
  int filter(const std::function<int(DataBuffer&)>& change);

  /// The operands that name files.
  std::vector<std::string> files() const;
  /// Whether the bytes come from -s.
  bool hasText() const { return text_.has_value(); }

  // ---- Messages: "COMMAND: INPUT: ..." ----

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
  void chompLine(DataBuffer& data) const;
  void load(const std::string& file, u64 length, DataBuffer& data);
  void readDescriptor(int descriptor, DataBuffer& data);
  void save(const std::string& file, const void* data, u32 n);
  void writeOut(const void* data, u32 n);
  int filterInPlace(const std::function<int(DataBuffer&)>& change);

  std::string command_;
  std::string place_;  // the input at work, as messages name it; empty for -s
  std::optional<std::string> text_;
  std::optional<std::string> file_;
  const CLI::App* moreFiles_ = nullptr;  // the parser that holds further operands
  std::string out_;
  DataBuffer pending_;  // pieces for a file
  bool chomp_ = false, quiet_ = false, noClobber_ = false, inPlace_ = false;
};

/// Returns the first error that an operation logged, with the reason it gave, or `otherwise`.
class LogText;
std::string reasonIn(const LogText& log, const std::string& otherwise);
