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
  bool hex = false, all = false, count = false, noCase = false, json = false;
};

DataBuffer bytesOf(const Options& options, const std::string& typed) {
  if (options.hex) return options.job.bytesOfHex(typed);
  DataBuffer bytes;
  bytes.append(typed.data(), static_cast<u32>(typed.size()));
  return bytes;
}

DataBuffer patternOf(const Options& options) {
  DataBuffer pattern = bytesOf(options, options.pattern);
  if (pattern.empty()) options.job.fail("the pattern is empty");
  return pattern;
}

u64 startOf(const Options& options) {
  if (options.from.empty()) return 0;
  const auto from = parseCount(options.from);
  if (!from) options.job.fail("--from: '" + options.from + "' is no offset");
  return *from;
}

// What is found goes out as the input comes in.
class Report {
 public:
  Report(const Options& options, Output& output) : options_(options), output_(output) {
    if (options_.json) text_ = "{\"offsets\": [";
  }
  void add(u64 offset) {
    ++count_;
    if (options_.count) return;
    text_ += options_.json ? (count_ == 1 ? "" : ", ") + std::to_string(offset) : std::to_string(offset) + "\n";
  }
  void flush() {
    output_.write(text_.data(), text_.size());
    text_.clear();
  }
  void finish() {
    if (options_.json && options_.count)
      text_ = "{\"count\": " + std::to_string(count_) + "}\n";
    else if (options_.json)
      text_ += "], \"count\": " + std::to_string(count_) + "}\n";
    else if (options_.count)
      text_ = std::to_string(count_) + "\n";
    flush();
    output_.finish();
  }
  u64 count() const { return count_; }

 private:
  const Options& options_;
  Output& output_;
  std::string text_;
  u64 count_ = 0;
};

int find(Options& options) {
  Job& job = options.job;
  const DataBuffer pattern = patternOf(options);
  u64 offset = startOf(options);
  const auto input = job.open();
  input->skip(offset);
  Window window = job.view(*input);
  Output output = job.begin();
  Report report(options, output);
  for (bool more = true; more;) {
    u32 at = 0;
    while (const u8* const found =
               DataBuffer::findBytes2(window.data() + at, window.size() - at, pattern.getData2(), pattern.size())) {
      at = static_cast<u32>(found - window.data());
      report.add(offset + at);
      at += pattern.size();
      more = options.all || options.count;
      if (!more) break;
    }
    if (!options.count) report.flush();
    if (!more || window.isLast()) break;
    // An occurrence may begin in view and end behind it.
    const u32 used = window.size() < pattern.size() ? 0 : std::max(at, window.size() - pattern.size() + 1);
    offset += used;
    window.advance(used);
  }
  report.finish();
  return report.count() != 0 ? kDone : kNo;
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
  app.add_flag("--json", options->json, "the offsets and their count as JSON");
  options->job.addInput(app);
  options->job.addOutput(app);
  app.footer(
      "Offsets are in bytes, from 0. Occurrences do not overlap. Not found is status 1.\n\n"
      "Examples:\n"
      "  vkbuf find --all dish windows-1252.xml\n"
      "  vkbuf find --hex 955c --count shift_jis.xml\n"
      "  vkbuf find --json --all xml utf8-bom.xml\n");
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
      "  vkbuf replace --hex 0a 0d0a windows-1252.xml | vkbuf detect\n"
      "  vkbuf replace dish meal windows-1252.xml -o menu.xml\n");
  return [options] {
    if (options->hex && options->noCase) options->job.fail("--nocase is for text, so not with --hex");
    return options->job.filter([&](DataBuffer& data) { return replace(*options, data); });
  };
}
