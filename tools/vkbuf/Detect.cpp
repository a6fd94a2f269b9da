// detect: what the bytes of a file look like.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "tools/vkbuf/CharsetChoice.h"
#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/EncodingNames.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Text.h"
#include "varnik/encoding/internal/DecodeText.h"
#include "varnik/services/charset/EncodingConvert.h"

namespace {

using Facts = std::vector<std::pair<std::string, std::string>>;

struct Options {
  Job job{"detect"};
  std::string is;
  bool json = false;
};

struct LineFacts {
  u32 crLf = 0, lf = 0, cr = 0, longest = 0;
};

LineFacts linesOf(const u8* data, u32 n) {
  LineFacts lines;
  u32 length = 0;
  for (u32 i = 0; i < n; ++i) {
    if (data[i] != '\r' && data[i] != '\n') {
      lines.longest = std::max(lines.longest, ++length);
      continue;
    }
    length = 0;
    if (data[i] == '\n') {
      ++lines.lf;
    } else if (i + 1 < n && data[i + 1] == '\n') {
      ++lines.crLf;
      ++i;
    } else {
      ++lines.cr;
    }
  }
  return lines;
}

std::string endingsOf(const LineFacts& lines) {
  std::string text;
  const auto count = [&text](u32 n, const char* what) {
    if (n != 0) text += (text.empty() ? "" : ", ") + std::to_string(n) + what;
  };
  count(lines.crLf, " CR LF");
  count(lines.lf, " LF");
  count(lines.cr, " CR");
  return text.empty() ? "none" : text;
}

// Text that was UTF-8, was read as windows-1252 and written as UTF-8 again becomes valid, shorter UTF-8 when it is
// taken back through windows-1252.
bool looksEncodedTwice(const DataBuffer& data) {
  constexpr s32 kWindows1252 = 1252;
  DataBuffer back;
  LogNull log;
  return _vkEncodingConvert().EncConvert(kUtf8, kWindows1252, data.getData2(), data.size(), back, log) &&
         back.size() < data.size() && !back.is7bit(0) && firstBadUtf8(back.getData2(), back.size()) == back.size();
}

std::string validity(const DataBuffer& data) {
  const u32 bad = firstBadUtf8(data.getData2(), data.size());
  if (bad < data.size()) return "no, first bad byte at " + std::to_string(bad);
  return !data.is7bit(0) && looksEncodedTwice(data) ? "yes; looks like UTF-8 encoded twice" : "yes";
}

// The encodings that a text in ASCII is likely to be in, by decreasing strictness; none for a short one, which could be
// a word.
std::string likelyEncoding(const DataBuffer& data) {
  constexpr u32 kTooShort = 16;
  constexpr const char* kCandidates[] = {"uu", "hex", "base32", "base64", "base64url"};
  if (data.size() < kTooShort || !data.is7bit(0)) return "";
  DataBuffer text(data), bytes;
  if (!text.appendChar(0)) return "";
  for (const char* name : kCandidates) {
    bytes.clear();
    const s32 id = vk_codec::factsOf(codecOf(name)).decoderId;
    const DecodeResult result = vk_decodeText(id, reinterpret_cast<const char*>(text.getData2()), data.size(), bytes);
    if (result.ok && result.badAt == kNoFault && bytes.size() >= kTooShort / 2) return name;
  }
  return "";
}

Facts factsOf(DataBuffer& data) {
  Facts facts;
  const Mark mark = markOf(data);
  facts.emplace_back("byte-order mark", mark.codePage == 0 ? "none" : mark.charset);
  const s32 obvious = data.detectObviousCodePage();
  const s32 unicode = mark.codePage != 0 ? mark.codePage : obvious;
  if (mark.codePage == 0 && unicode > 0)
    facts.emplace_back("zero bytes",
                       "as in " + std::string(charsetOf(unicode)) + " (code page " + std::to_string(unicode) + ")");

  // Declaration and lines are those of the text, so UTF-16 and UTF-32 are looked at as UTF-8.
  DataBuffer text;
  LogNull log;
  const bool wide = unicode > 0 && unicode != kUtf8 &&
                    _vkEncodingConvert().EncConvert(unicode, kUtf8, data.getData2(), data.size(), text, log);
  DataBuffer& readable = wide ? text : data;
  StringBuffer declared;
  const bool isXml = readable.containsSubstring("<?xml", 0) && readable.getXmlCharset(declared);
  facts.emplace_back("XML declaration", isXml ? declared.getString() : "none");
  facts.emplace_back("7-bit", data.is7bit(0) ? "yes" : "no");
  facts.emplace_back("valid UTF-8", validity(data));
  const LineFacts lines = linesOf(readable.getData2(), readable.size());
  facts.emplace_back("line endings", endingsOf(lines));
  facts.emplace_back("longest line", std::to_string(lines.longest) + (wide ? ", as UTF-8" : ""));
  if (const std::string likely = likelyEncoding(data); !likely.empty()) facts.emplace_back("looks like", likely);
  return facts;
}

// Why the data is not what --is asks for; empty when it is.
std::string deniedBecause(const std::string& kind, DataBuffer& data) {
  const u8* const bytes = data.getData2();
  const u8* const end = bytes + data.size();
  const auto firstThat = [&](auto isBad) {
    const u8* const bad = std::find_if(bytes, end, isBad);
    return bad == end ? "" : nameOfByte(*bad) + " at " + Place().of(bytes, static_cast<u32>(bad - bytes));
  };
  if (kind == "ascii") return firstThat([](u8 b) { return b >= 0x80; });
  if (kind == "xml") {
    DataBuffer text(data);
    LogNull log;
    text.convertXmlToUtf8(log);
    const u8* const head = text.getData2();
    const u8* const first = std::find_if_not(head, head + text.size(), isWhiteSpace);
    return first != head + text.size() && *first == '<' ? "" : "no '<' at its head";
  }
  if (kind == "text") {  // in Unicode, or in a charset of single bytes: no control characters
    if (markOf(data).codePage != 0 || data.detectObviousCodePage() > 0) return "";
    return firstThat([](u8 b) { return b < 0x20 && !isWhiteSpace(b) && b != 0x1B; });
  }
  const u32 bad = firstBadUtf8(bytes, data.size());
  return bad == data.size() ? "" : nameOfByte(bytes[bad]) + " at " + Place().of(bytes, bad);
}

std::string nameOf(const Job& job, const std::string& file) {
  return job.hasText() ? "the text" : file == "-" ? "standard input" : file;
}

void report(const Options& options, const std::string& file, DataBuffer& data, std::string& text) {
  const std::string name = nameOf(options.job, file);
  if (options.json) {
    text += (text.empty() ? "[\n  {" : ",\n  {") + jsonText("file") + ": " + jsonText(name) + ", " + jsonText("bytes") +
            ": " + std::to_string(data.size());
    for (const auto& [what, fact] : factsOf(data)) text += ", " + jsonText(what) + ": " + jsonText(fact);
    text += "}";
    return;
  }
  text += name + ": " + std::to_string(data.size()) + " bytes\n";
  for (const auto& [what, fact] : factsOf(data))
    text.append("  ").append(what).append(17 - what.size(), ' ').append(fact).append("\n");
}

int detect(Options& options) {
  Job& job = options.job;
  std::vector<std::string> files = job.files();
  if (files.empty()) files.emplace_back("-");
  std::string text;
  int worst = kDone;
  for (const std::string& file : files) {
    DataBuffer data;
    try {
      if (job.hasText())
        job.read(data);
      else
        job.readFile(file, data);
      const std::string why = options.is.empty() ? "" : deniedBecause(options.is, data);
      if (!why.empty()) job.refuse("is not " + options.is + ": " + why);
    } catch (const Failure& failure) {  // the other files still have their turn
      if (files.size() == 1) throw;
      say(failure);
      worst = std::max(worst, failure.status);
      continue;
    }
    if (options.is.empty()) report(options, file, data, text);
  }
  if (options.json && options.is.empty()) text += text.empty() ? "[]\n" : "\n]\n";
  job.write(text);
  return worst;
}

}  // namespace

std::function<int()> setUpDetect(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  app.add_flag("--json", options->json, "the facts as a JSON array, an object for each file");
  app.add_option("--is", options->is, "only answer by the status whether each file is utf8, ascii, text or xml")
      ->option_text("KIND")
      ->check(CLI::IsMember({"utf8", "ascii", "text", "xml"}));
  options->job.addInputs(app);
  options->job.addOutput(app);
  app.footer(
      "Examples:\n"
      "  vkbuf detect koi8-r.xml\n"
      "  vkbuf detect --json utf16le-nobom.xml utf32be-bom.xml\n"
      "  vkbuf detect --is utf8 utf8-bom.xml && echo yes\n");
  return [options] { return detect(*options); };
}
