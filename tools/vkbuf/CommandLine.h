// The command line of each command, for whoever runs it, explains it or completes it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tools/vkbuf/Commands.h"

/// A command with all its options.
struct CommandLine {
  explicit CommandLine(const Command& command);
  ~CommandLine();

  std::unique_ptr<CLI::App> app;
  std::function<int()> run;  // after the options are parsed
  bool takesMore = false;    // any number of operands
  bool quiet = false;
};

constexpr const char* kVersion = "vkbuf " VARNIK_VERSION;
constexpr const char* kStatuses = "0 done or yes, 1 the data says no, 2 wrong use or failed I/O";

/// An option as the table of a command has it.
struct OptionFacts {
  std::vector<std::string> names;  // "-w", "--wrap"; one for an operand
  std::string value;               // what it takes: "N", "lf|crlf"; empty for a flag
  std::string what;
  bool isOperand, isRequired, isShared;
  /// The values to choose among, where these are a few.
  std::vector<std::string> choices() const;
};

std::vector<OptionFacts> optionsOf(const CommandLine& line);

/// The text of `vkbuf --help`, of `vkbuf COMMAND --help`.
extern const char* const kHelp;
std::string helpOf(const CommandLine& line);
/// Manual pages, for troff: of the tool, of a command.
std::string manualOfTool();
std::string manualOf(const Command& command);
