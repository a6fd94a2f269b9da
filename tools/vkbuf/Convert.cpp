// convert: text from one charset to another.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>

#include "tools/vkbuf/CharsetChoice.h"
#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Text.h"
#include "varnik/services/charset/EncodingConvert.h"

namespace {

struct Options {
  Job job{"convert"};
  std::string from, to;
  bool substitute = false, mark = false;
};

bool convertBytes(s32 from, s32 to, const u8* data, u32 n, DataBuffer& out) {
  LogNull log;
  return _vkEncodingConvert().EncConvert(from, to, data, n, out, log);
}

// "auto": by byte-order mark, zero bytes, or because it is valid UTF-8.
s32 lookedUp(const Job& job, const DataBuffer& data) {
  if (const Mark mark = markOf(data); mark.codePage != 0) return mark.codePage;
  if (const s32 obvious = data.detectObviousCodePage(); obvious > 0) return obvious;
  if (firstBadUtf8(data.getData2(), data.size()) == data.size()) return kUtf8;
  job.refuse("no charset is obvious: no byte-order mark, no zero bytes, no valid UTF-8", "name it with --from CHARSET");
}

s32 sourceOf(const Options& options, const DataBuffer& data) {
  return options.from == "auto" ? lookedUp(options.job, data) : codePageOf(options.from);
}

// Goes by the name where there is one: "utf-16" leaves the byte order to the mark, a code page does not.
bool convertInput(const Options& options, s32 to, const DataBuffer& data, DataBuffer& out) {
  if (options.from == "auto") return convertBytes(sourceOf(options, data), to, data.getData2(), data.size(), out);
  StringBuffer name(options.from.c_str());
  LogNull log;
  return _vkEncodingConvert().ChConvert2(name, to, data.getData2(), data.size(), out, log);
}

bool isWritable(s32 to, const u8* text, const u8* end) {
  DataBuffer ignored;
  return convertBytes(kUtf8, to, text, static_cast<u32>(end - text), ignored);
}

// The first character of a UTF-8 text that a charset lacks, looked for line by line and then by character; empty when
// there is none.
std::string_view firstUnwritable(s32 to, const DataBuffer& text) {
  const u8* const data = text.getData2();
  const u8* const end = data + text.size();
  for (const u8* line = data; line != end;) {
    const u8* const next = std::find(line, end, u8{'\n'});
    for (const u8* c = isWritable(to, line, next) ? next : line; c != next;) {
      const u8* const after = std::find_if(c + 1, next, [](u8 b) { return (b & 0xC0) != 0x80; });
      if (!isWritable(to, c, after)) return {reinterpret_cast<const char*>(c), static_cast<std::size_t>(after - c)};
      c = after;
    }
    line = next == end ? end : next + 1;
  }
  return {};
}

[[noreturn]] void refuse(const Options& options, s32 to, const DataBuffer& data) {
  const char* const kHint = "--substitute carries on with a substitute for it";
  const s32 from = sourceOf(options, data);
  DataBuffer text;
  if (from == kUtf8) {
    const u32 bad = firstBadUtf8(data.getData2(), data.size());
    if (bad < data.size())
      options.job.refuse(
          nameOfByte(data.byteAt(bad)) + " at " + Place().of(data.getData2(), bad) + ", is no valid UTF-8", kHint);
    text.append(data);
  } else if (!convertInput(options, kUtf8, data, text)) {
    options.job.refuse("is no valid " + (options.from == "auto" ? charsetOf(from) : options.from), kHint);
  }
  const std::string_view lost = firstUnwritable(to, text);
  const u32 at = lost.empty() ? 0 : static_cast<u32>(reinterpret_cast<const u8*>(lost.data()) - text.getData2());
  const std::string where = Place().of(text.getData2(), at) + (from == kUtf8 ? "" : " of the text in UTF-8");
  options.job.refuse(lost.empty() ? "a character has no place in " + options.to
                                  : "'" + std::string(lost) + "' at " + where + ", has no place in " + options.to,
                     kHint);
}

int convert(const Options& options, s32 to, DataBuffer& data) {
  DataBuffer converted;
  if (options.mark) {
    const std::string_view mark = markBytes(to);
    if (mark.empty()) options.job.fail("--bom: " + options.to + " has no byte-order mark");
    converted.append(mark.data(), static_cast<u32>(mark.size()));
  }
  if (!convertInput(options, to, data, converted) && !options.substitute) refuse(options, to, data);
  data.takeData(converted);
  return kDone;
}

}  // namespace

std::function<int()> setUpConvert(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  app.add_option("--from", options->from, "the charset that it is in; 'auto': by mark, zero bytes or valid UTF-8")
      ->required()
      ->option_text("CHARSET");
  app.add_option("--to", options->to, "the charset that is wanted")->required()->option_text("CHARSET");
  app.add_flag("--substitute", options->substitute, "write a substitute for what does not convert, and carry on");
  app.add_flag("--bom", options->mark, "put a byte-order mark at the head");
  options->job.addInputs(app);
  options->job.addOutput(app);
  options->job.addInPlace(app);
  app.footer(
      "A byte-order mark at the head of the input is dropped.\n\n"
      "Examples:\n"
      "  vkbuf convert --from auto --to utf-8 utf16be-bom.xml\n"
      "  vkbuf convert --from koi8-r --to windows-1251 koi8-r.xml | vkbuf hexdump\n"
      "  vkbuf convert --from utf-8 --to utf-16le --bom -s 'text' -o text.txt\n");
  return [options] {
    const s32 to = codePageOf(options->to);
    if (options->from != "auto") codePageOf(options->from);  // a mistyped name is told before a byte is read
    return options->job.filter([&](DataBuffer& data) { return convert(*options, to, data); });
  };
}
