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
  std::function<int()> (*setUp)(CLI::App&);  // the function returned answers the exit status, or throws a Failure
};

/// All commands, in the order in which people meet them.
std::span<const Command> allCommands();
/// The command of a name, or null.
const Command* findCommand(const std::string& name);
std::vector<std::string> commandNames();

std::function<int()> setUpHexdump(CLI::App&);  // Hexdump.cpp
