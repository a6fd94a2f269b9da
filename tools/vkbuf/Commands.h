// The commands of the tool. A command sets up its options and answers what is to run once they are parsed.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace CLI {
class App;
}

struct Command {
  const char* name;
  const char* summary;
  const char* seeAlso;                       // other commands, commas between them
  std::function<int()> (*setUp)(CLI::App&);  // the function returned answers the exit status, or throws a Failure
};

/// All commands, in the order in which people meet them.
std::span<const Command> allCommands();
/// The command of a name; a name that is none ends the run.
const Command& commandCalled(const std::string& name);
std::vector<std::string> commandNames();

std::function<int()> setUpEncode(CLI::App& app);  // Encode.cpp
std::function<int()> setUpDecode(CLI::App& app);
std::function<int()> setUpNames(CLI::App& app);    // EncodingNames.cpp
std::function<int()> setUpXmlUtf8(CLI::App& app);  // XmlUtf8.cpp
std::function<int()> setUpDetect(CLI::App& app);   // Detect.cpp
std::function<int()> setUpConvert(CLI::App& app);  // Convert.cpp
std::function<int()> setUpEdit(CLI::App& app);     // Edit.cpp
std::function<int()> setUpFields(CLI::App& app);   // Fields.cpp
std::function<int()> setUpHexdump(CLI::App& app);  // Hexdump.cpp
std::function<int()> setUpClean(CLI::App& app);    // Clean.cpp
std::function<int()> setUpFind(CLI::App& app);     // Search.cpp
std::function<int()> setUpReplace(CLI::App& app);
std::function<int()> setUpPad(CLI::App& app);  // Padding.cpp
std::function<int()> setUpUnpad(CLI::App& app);
std::function<int()> setUpTlsCheck(CLI::App& app);
std::function<int()> setUpRandom(CLI::App& app);
std::function<int()> setUpSplit(CLI::App& app);  // Parts.cpp
std::function<int()> setUpJoin(CLI::App& app);
std::function<int()> setUpChunk(CLI::App& app);
std::function<int()> setUpCompletion(CLI::App& app);  // Completion.cpp
std::function<int()> setUpHelp(CLI::App& app);        // Help.cpp
