// edit: changes by place, in the order in which they are given.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <memory>

#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Text.h"

namespace {

enum class Change { head, tail, skip, insert, reverse, swap, exclusiveOr, mask };

struct Kind {
  const char* option;
  const char* operand;  // null for a flag
  const char* what;
  Change change;
};

constexpr Kind kKinds[] = {
    {"--head", "N", "keep the first N bytes", Change::head},
    {"--tail", "N", "keep the last N bytes", Change::tail},
    {"--skip", "N", "drop the first N bytes", Change::skip},
    {"--insert", "AT:HEX", "put bytes at an offset; past the end is the end", Change::insert},
    {"--reverse", nullptr, "last byte first", Change::reverse},
    {"--swap", "2|4", "reverse every group of 2 or 4 bytes, and the rest of one of 4", Change::swap},
    {"--xor", "HEX", "XOR with bytes, again and again", Change::exclusiveOr},
    {"--mask", "HEX", "AND with bytes, again and again", Change::mask},
};

struct Step {
  Change change;
  u64 number;  // a count, an offset, a group's length
  DataBuffer bytes;
};

struct Options {
  Job job{"edit"};
  const CLI::App* app = nullptr;
  std::vector<Step> steps;
};

Step stepOf(const Job& job, const Kind& kind, const std::string& typed) {
  const auto numberIn = [&](const std::string& text) {
    const auto number = parseCount(text);
    if (!number) job.fail(std::string(kind.option) + ": '" + text + "' is no count");
    return *number;
  };
  Step step{kind.change, 0, {}};
  switch (kind.change) {
    case Change::reverse:
      break;
    case Change::insert: {
      const size_t colon = typed.find(':');
      if (colon == typed.npos) job.fail("--insert: '" + typed + "' is not AT:HEX");
      step.number = numberIn(typed.substr(0, colon));
      step.bytes = job.bytesOfHex(typed.substr(colon + 1));
      break;
    }
    case Change::exclusiveOr:
    case Change::mask:
      step.bytes = job.bytesOfHex(typed);
      if (step.bytes.empty()) job.fail(std::string(kind.option) + ": no bytes are given");
      break;
    default:
      step.number = numberIn(typed);
      if (kind.change == Change::swap && step.number != 2 && step.number != 4)
        job.fail("--swap: groups are of 2 or 4 bytes");
  }
  return step;
}

// The parser keeps the values of an option apart from those of another, and tells the order of all.
void readSteps(Options& options) {
  std::map<const CLI::Option*, size_t> used;
  for (const CLI::Option* option : options.app->parse_order()) {
    const auto kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                   [&](const Kind& each) { return option->get_name() == each.option; });
    if (kind == std::end(kKinds)) continue;
    const size_t n = used[option]++;
    options.steps.push_back(stepOf(options.job, *kind, kind->operand ? option->results().at(n) : ""));
  }
  if (options.steps.empty())
    options.job.fail("say what to do: --head, --tail, --skip, --insert, --reverse, --swap, --xor, --mask");
}

// Combines the data with the bytes of `key` over and over, as if from the offset `at`. The key is laid out often enough
// for one long run at a time, and once more for the start within it.
template <class Combine>
void combine(u8* data, u32 n, const DataBuffer& key, u64 at, Combine combineBytes) {
  constexpr u32 kRun = 4096;
  const u32 length = key.size(), run = (kRun + length - 1) / length * length;
  std::vector<u8> repeated;
  while (repeated.size() < run + length) repeated.insert(repeated.end(), key.getData2(), key.getData2() + length);
  const u8* const from = repeated.data() + at % length;
  for (u32 i = 0; i < n; i += run)
    for (u32 k = 0; k < std::min(run, n - i); ++k) data[i + k] = combineBytes(data[i + k], from[k]);
}

void swapGroups(u8* data, u32 n, u64 length) {
  DataBuffer view;
  view.borrowData(data, n);
  if (length == 2)
    view.byteSwap21();
  else
    view.byteSwap4321();
}

// Changes that leave every byte in its group of four, on a part of the data that begins at the offset `at`.
void applyInPlace(const Step& step, u8* data, u32 n, u64 at) {
  if (step.change == Change::swap) return swapGroups(data, n, step.number);
  if (step.change == Change::exclusiveOr)
    return combine(data, n, step.bytes, at, [](u8 a, u8 b) { return static_cast<u8>(a ^ b); });
  combine(data, n, step.bytes, at, [](u8 a, u8 b) { return static_cast<u8>(a & b); });
}

bool isInPlace(const Step& step) {
  return step.change >= Change::swap;
}

void apply(const Job& job, const Step& step, DataBuffer& data) {
  const u32 number = static_cast<u32>(std::min<u64>(step.number, data.size()));
  switch (step.change) {
    case Change::head:
      return data.shorten(data.size() - number);
    case Change::tail:
      return data.removeHead(data.size() - number);
    case Change::skip:
      return data.removeHead(number);
    case Change::insert:
      if (!data.insertAt(number, step.bytes.getData2(), step.bytes.size())) job.fail("out of memory");
      return;
    case Change::reverse:
      return data.reverseBytes();
    default:
      if (!data.empty()) applyInPlace(step, data.getData2(), data.size(), 0);
  }
}

void editStream(Options& options) {
  const auto input = options.job.open();
  Window window = options.job.view(*input);
  Output output = options.job.begin();
  for (u64 at = 0;;) {
    const u32 n = window.isLast() ? window.size() : window.size() / 4 * 4;
    for (const Step& step : options.steps)
      if (n != 0) applyInPlace(step, window.data(), n, at);
    output.write(window.data(), n);
    if (window.isLast()) break;
    at += n;
    window.advance(n);
  }
  output.finish();
}

int edit(Options& options) {
  readSteps(options);
  if (!options.job.isInPlace() && std::all_of(options.steps.begin(), options.steps.end(), isInPlace)) {
    editStream(options);
    return kDone;
  }
  return options.job.filter([&](DataBuffer& data) {
    for (const Step& step : options.steps) apply(options.job, step, data);
    return kDone;
  });
}

}  // namespace

std::function<int()> setUpEdit(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  options->app = &app;
  for (const Kind& kind : kKinds) {
    if (kind.operand)
      app.add_option(kind.option)->description(kind.what)->option_text(kind.operand)->expected(1)->take_all();
    else
      app.add_flag(kind.option)->description(kind.what)->take_all();
  }
  options->job.addInputs(app);
  options->job.addOutput(app);
  options->job.addInPlace(app);
  app.footer(
      "Any of them may be given several times. N is decimal or 0x..., with k, M or G for powers of 1024.\n\n"
      "Examples:\n"
      "  vkbuf edit --skip 3 --head 5 utf8-bom.xml\n"
      "  vkbuf edit --swap 2 utf16be-bom.xml | vkbuf convert --from auto --to utf-8\n"
      "  vkbuf edit --insert 0:efbbbf -s text | vkbuf hexdump\n");
  return [options] { return edit(*options); };
}
