#include "tools/vkbuf/Commands.h"

#include "tools/vkbuf/Failure.h"
#include "tools/vkbuf/Nearest.h"
#include "varnik/services/codecs/internal/EncodingTable.h"

namespace {

constexpr Command kCommands[] = {
    {"encode", "bytes to text", "decode, names", setUpEncode},
    {"decode", "text to bytes; tells where bad input is", "encode, names, detect", setUpDecode},
    {"names", "the names that encode and decode take", "encode, decode, convert, pad", setUpNames},
    {"detect", "what a file looks like: charset, byte-order mark, line endings", "convert, xml-utf8", setUpDetect},
    {"convert", "text from one charset to another", "detect, names, xml-utf8", setUpConvert},
    {"xml-utf8", "an XML document in any charset, as UTF-8", "convert, detect", setUpXmlUtf8},
    {"hexdump", "bytes as hex and text, and back", "encode, edit, fields", setUpHexdump},
    {"clean", "tidy captured text", "replace, edit", setUpClean},
    {"find", "where a pattern occurs", "replace, hexdump", setUpFind},
    {"replace", "every occurrence of a pattern by another", "find, edit", setUpReplace},
    {"edit", "cut, insert, reverse, swap, xor", "fields, replace, chunk", setUpEdit},
    {"fields", "write and read numbers and texts in bytes", "edit, hexdump", setUpFields},
    {"pad", "pad data to whole blocks of a cipher", "unpad, names", setUpPad},
    {"unpad", "remove such a pad", "pad, tls-check", setUpUnpad},
    {"tls-check", "whether data ends in well-formed TLS padding", "unpad", setUpTlsCheck},
    {"split", "header and body of a file that begins with its header's length", "join, chunk", setUpSplit},
    {"join", "a header and a body to such a file", "split", setUpJoin},
    {"chunk", "a part of a file", "split, edit", setUpChunk},
    {"random", "random bytes from the operating system", "encode, pad", setUpRandom},
    {"completion", "the script that completes commands and options in a shell", "names", setUpCompletion},
    {"help", "what the tool, or a command, does", "completion", setUpHelp},
};

}  // namespace

std::span<const Command> allCommands() {
  return kCommands;
}

const Command& commandCalled(const std::string& name) {
  for (const Command& each : kCommands)
    if (each.name == name) return each;
  throw Failure(kFailed, "no command is called '" + name + "'; nearest: " + nearestNames(name, commandNames()),
                vk_codec::findEncodingName(name) ? "vkbuf encode " + name + ", vkbuf decode " + name : "vkbuf --help");
}

std::vector<std::string> commandNames() {
  std::vector<std::string> names;
  for (const Command& each : kCommands) names.emplace_back(each.name);
  return names;
}
