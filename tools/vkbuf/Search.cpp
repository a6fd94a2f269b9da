// find and replace: a pattern given as text or as hex digits.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Text.h"
#include "varnik/services/strings/StringBuffer.h"
#include "varnik/services/strings/XString.h"

namespace {

struct Options {
  Job job{""};
  std::string pattern, with, from;
  bool hex = false, all = false, count = false, noCase = false;
};

// Hex as people have it: blanks and colons between the bytes, 0x in front.
DataBuffer bytesOf(const Options& options, const std::string& typed) {
  DataBuffer bytes;
  if (!options.hex) {
    bytes.append(typed.data(), static_cast<u32>(typed.size()));
    return bytes;
  }
  StringBuffer digits;
  digits.appendN(typed.data(), static_cast<u32>(typed.size()));
  digits.removeCharOccurances(':');
  digits.trim2();
  if (digits.beginsWithIgnoreCase("0x")) {
    StringBuffer rest(digits.getString() + 2);
    digits = rest;
  }
  if (!digits.hexStringToBinary(bytes)) options.job.fail("'" + typed + "' is not made of pairs of hex digits");
  return bytes;
}

DataBuffer patternOf(const Options& options) {
  DataBuffer pattern = bytesOf(options, options.pattern);
  if (pattern.empty()) options.job.fail("the pattern is empty");
  return pattern;
}

u32 startOf(const Options& options) {
  if (options.from.empty()) return 0;
  const auto from = parseCount(options.from);
  if (!from) options.job.fail("--from: '" + options.from + "' is no offset");
  return static_cast<u32>(std::min<u64>(*from, 0xFFFFFFFF));
}

int find(Options& options) {
  Job& job = options.job;
  const DataBuffer pattern = patternOf(options);
  u32 at = startOf(options);
  DataBuffer data;
  job.read(data);
  std::string offsets;
  u32 count = 0;
  for (bool found = true;; at += pattern.size()) {
    at = data.findBytesIdx(pattern.getData2(), static_cast<s32>(pattern.size()), found, at);
    if (!found) break;
    ++count;
    if (!options.count) offsets += std::to_string(at) + "\n";
    if (!options.all && !options.count) break;
  }
  job.write(options.count ? std::to_string(count) + "\n" : offsets);
  return count != 0 ? kDone : kNo;
}

u32 replaceNoCase(const Options& options, DataBuffer& data) {
  XString pattern, with;
  pattern.setFromUtf8(options.pattern.c_str());
  with.setFromUtf8(options.with.c_str());
  return data.replaceAllOccurancesUtf16NoCase(pattern, with);
}

int replace(const Options& options, DataBuffer& data) {
  const DataBuffer pattern = patternOf(options), with = bytesOf(options, options.with);
  const u32 count = options.noCase
                        ? replaceNoCase(options, data)
                        : data.replaceAllOccurances(pattern.getData2(), pattern.size(), with.getData2(), with.size());
  if (options.count) options.job.note(std::to_string(count) + " replaced");
  return count != 0 ? kDone : kNo;
}

}  // namespace

std::function<int()> setUpFind(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  options->job.setCommand("find");
  app.add_option("PATTERN", options->pattern, "what to look for")->required()->option_text(" ");
  app.add_flag("--hex", options->hex, "PATTERN is given in hex digits");
  app.add_flag("--all", options->all, "print the offset of each occurrence, not of the first one only");
  app.add_flag("--count", options->count, "print how many there are");
  app.add_option("--from", options->from, "the offset to begin at")->option_text("N");
  options->job.addInput(app);
  options->job.addOutput(app);
  app.footer(
      "Offsets are in bytes, from 0. Occurrences do not overlap. Not found is status 1.\n\n"
      "Examples:\n"
      "  vkbuf find --all dish windows-1252.xml\n"
      "  vkbuf find --hex 955c --count shift_jis.xml\n");
  return [options] { return find(*options); };
}

std::function<int()> setUpReplace(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  options->job.setCommand("replace");
  app.add_option("FIND", options->pattern, "what to look for")->required()->option_text(" ");
  app.add_option("WITH", options->with, "what to put there; '' deletes")->required()->option_text(" ");
  app.add_flag("--hex", options->hex, "both are given in hex digits");
  app.add_flag("--nocase", options->noCase, "the data is UTF-16 in this machine's byte order; ignore letter case");
  app.add_flag("--count", options->count, "tell on standard error how many were replaced");
  options->job.addInputs(app);
  options->job.addOutput(app);
  options->job.addInPlace(app);
  app.footer(
      "Where nothing is found the data goes to standard output unchanged, a file is not written, and the status is "
      "1.\n\n"
      "Examples:\n"
      "  vkbuf replace KOI8-R UTF-8 koi8-r.xml | vkbuf convert --from koi8-r --to utf-8\n"
      "  vkbuf replace --hex 0a 0d0a windows-1252.xml | vkbuf detect\n");
  return [options] {
    if (options->hex && options->noCase) options->job.fail("--nocase is for text, so not with --hex");
    return options->job.filter([&](DataBuffer& data) { return replace(*options, data); });
  };
}
