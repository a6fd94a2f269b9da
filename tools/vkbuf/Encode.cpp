// encode and decode: bytes to text and back, under a name.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstring>
#include <memory>

#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/EncodingNames.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Nearest.h"
#include "tools/vkbuf/Text.h"
#include "varnik/encoding/internal/DecodeText.h"
#include "varnik/services/codecs/EncodingIds.h"
#include "varnik/services/strings/StringBuffer.h"

namespace {

struct Options {
  Job job{""};
  std::string name;
  bool partial = false, ignoreGarbage = false;
};

// The id under which a name decodes; a name that is none ends the command.
s32 encodingId(const std::string& name) {
  LogNull log;
  const s32 id = _clsEncode::encodingIdForName(name.c_str(), log);
  if (id == 0)
    throw Failure(kFailed, "no encoding is called '" + name + "'; nearest: " + nearestNames(name, encodingNames()),
                  "vkbuf names");
  return id;
}

int encode(Options& options) {
  Job& job = options.job;
  job.setCommand("encode " + options.name);
  encodingId(options.name);
  DataBuffer data;
  job.read(data);
  StringBuffer text;
  if (!data.encodeDB(options.name.c_str(), text)) job.fail("out of memory, or the text would pass 4 GiB");
  job.write(text);
  return kDone;
}

bool isWhiteSpace(u8 c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isIn(std::string_view alphabet, u8 c) {
  return alphabet.find(static_cast<char>(c)) != alphabet.npos;
}

// Why the character at `at` could not be decoded, as far as the alphabet tells.
std::string reasonAt(std::string_view alphabet, const DataBuffer& text, u32 at) {
  if (alphabet.empty()) return "does not decode";
  if (!isIn(alphabet, text.byteAt(at))) return "is not in the alphabet";
  if (isIn(alphabet, '=') && std::memchr(text.getData2(), '=', at)) return "stands behind the padding";
  return "belongs to a group that is incomplete or that no encoder writes";
}

[[noreturn]] void refuseText(const Options& options, s32 id, const DataBuffer& text, const DecodeResult& result) {
  const Job& job = options.job;
  if (result.badAt == kNoFault) job.fail("out of memory, or the text does not decode");
  if (result.badAt >= text.size()) job.refuse("the text ends too early, at byte " + std::to_string(text.size()));
  const u8 bad = text.byteAt(result.badAt);
  const std::string_view alphabet = alphabetOf(id);
  const bool forUrl = isIn(alphabet, '+') && !isIn(alphabet, '-') && (bad == '-' || bad == '_');
  job.refuse(
      nameOfByte(bad) + " at " + placeIn(text.getData2(), result.badAt) + ", " + reasonAt(alphabet, text, result.badAt),
      forUrl ? "this looks like base64url" : "");
}

void dropGarbage(const Options& options, s32 id, DataBuffer& text) {
  const std::string_view alphabet = alphabetOf(id);
  if (alphabet.empty()) options.job.fail("--ignore-garbage has no meaning here: every character has one");
  // A character reference is no garbage, but letters in it would be taken for data.
  for (const std::string_view reference : {"&#xD;", "&#13;"})
    text.replaceAllOccurances(reinterpret_cast<const u8*>(reference.data()), static_cast<u32>(reference.size()),
                              nullptr, 0);
  u8* const data = text.getData2();
  u8* const end =
      std::remove_if(data, data + text.size(), [&](u8 c) { return !isIn(alphabet, c) && !isWhiteSpace(c); });
  text.shorten(static_cast<u32>(data + text.size() - end));
}

int decode(Options& options) {
  Job& job = options.job;
  job.setCommand("decode " + options.name);
  const s32 id = encodingId(options.name);
  DataBuffer text, data;
  job.read(text);
  if (options.ignoreGarbage) dropGarbage(options, id, text);
  if (!text.appendChar(0)) job.fail("out of memory");  // decoders may look for the end
  text.shorten(1);
  const DecodeResult result = vk_decodeText(id, reinterpret_cast<const char*>(text.getData2()), text.size(), data);
  const bool bad = !result.ok || result.badAt != kNoFault;
  if (!bad || options.partial) job.write(data);
  if (bad) refuseText(options, id, text, result);
  return kDone;
}

std::shared_ptr<Options> setUp(CLI::App& app) {
  auto options = std::make_shared<Options>();
  app.add_option("NAME", options->name, "the encoding; 'vkbuf names' lists them")->required()->option_text(" ");
  options->job.addInput(app);
  options->job.addOutput(app);
  return options;
}

}  // namespace

std::function<int()> setUpEncode(CLI::App& app) {
  const auto options = setUp(app);
  app.footer(
      "Examples:\n"
      "  vkbuf encode base64 -s 'Hello, world'\n"
      "  vkbuf encode base64_mime utf8-bom.xml\n"
      "  vkbuf encode qp-40 windows-1252.xml | vkbuf decode qp\n");
  return [options] { return encode(*options); };
}

std::function<int()> setUpDecode(CLI::App& app) {
  const auto options = setUp(app);
  app.add_flag("--ignore-garbage", options->ignoreGarbage, "skip characters that the encoding does not have");
  app.add_flag("--partial", options->partial, "write the bytes before a fault too");
  app.footer(
      "Examples:\n"
      "  vkbuf decode base64url -s 'Pz8-Pg'\n"
      "  vkbuf decode hex -s '48 65 78'\n"
      "  vkbuf encode uu koi8-r.xml | vkbuf decode uu\n");
  return [options] { return decode(*options); };
}
