#include "tools/vkbuf/Commands.h"

namespace {

constexpr Command kCommands[] = {
    {"encode", "bytes to text", setUpEncode},
    {"decode", "text to bytes; tells where bad input is", setUpDecode},
    {"names", "the names that encode and decode take", setUpNames},
    {"xml-utf8", "an XML document in any charset, as UTF-8", setUpXmlUtf8},
    {"detect", "what a file looks like: byte-order mark, charset, line endings", setUpDetect},
    {"convert", "text from one charset to another", setUpConvert},
    {"hexdump", "bytes as hex and text", setUpHexdump},
    {"clean", "tidy captured text", setUpClean},
    {"find", "where a pattern occurs", setUpFind},
    {"replace", "every occurrence of a pattern by another", setUpReplace},
    {"pad", "pad data to whole blocks of a cipher", setUpPad},
    {"unpad", "remove such a pad", setUpUnpad},
    {"tls-check", "whether data ends in well-formed TLS padding", setUpTlsCheck},
    {"random", "random bytes from the operating system", setUpRandom},
    {"split", "header and body of a file that begins with its header's length", setUpSplit},
    {"join", "a header and a body to such a file", setUpJoin},
    {"chunk", "a part of a file", setUpChunk},
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
