#include "tools/vkbuf/Commands.h"

namespace {

constexpr Command kCommands[] = {
    {"hexdump", "show bytes as hex and text", setUpHexdump},
};

}  // namespace

std::span<const Command> allCommands() {
  return kCommands;
}

const Command* findCommand(const std::string& name) {
  for (const Command& each : kCommands)
    if (each.name == name) return &each;
  return nullptr;
}

std::vector<std::string> commandNames() {
  std::vector<std::string> names;
  for (const Command& each : kCommands) names.emplace_back(each.name);
  return names;
}
