// hexdump: bytes as hex and text. The usual form is that of xxd, --canonical that of `hexdump -C`, so that other tools
// read it, and whoever knows one knows the other.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>

#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/DumpReader.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Text.h"

namespace {

constexpr u32 kPerLine = 16;

struct Options {
  Job job{"hexdump"};
  std::string offset, length, width;
  bool canonical = false, plain = false, reverse = false;
};

// For each byte its two digits, and the character that stands for it in the column of text.
struct Forms {
  char digits[256][2];
  char text[256];
};
constexpr Forms makeForms() {
  Forms forms{};
  for (int b = 0; b < 256; ++b) {
    forms.digits[b][0] = "0123456789abcdef"[b >> 4];
    forms.digits[b][1] = "0123456789abcdef"[b & 15];
    forms.text[b] = b >= 0x20 && b < 0x7F ? static_cast<char>(b) : '.';
  }
  return forms;
}
constexpr Forms kForms = makeForms();

char* putDigits(char* to, u8 byte) {
  std::memcpy(to, kForms.digits[byte], 2);
  return to + 2;
}

// Eight digits, more past 4 GiB.
char* putOffset(char* to, u64 offset) {
  int bytes = 4;
  while (bytes < 8 && offset >> (8 * bytes) != 0) ++bytes;
  while (bytes-- != 0) to = putDigits(to, static_cast<u8>(offset >> (8 * bytes)));
  return to;
}

// What a line of a dump takes at most.
constexpr u32 kMostLine = 16 + 2 + 3 * kPerLine + 2 + kPerLine + 4;

// "00000000: 6162 6305 0505 0505                      abc....."
struct XxdForm {
  static char* put(char* to, u64 offset, const u8* data, u32 n) {
    to = putOffset(to, offset);
    *to++ = ':';
    *to++ = ' ';
    constexpr u32 kHexChars = kPerLine / 2 * 5 + 1;
    if (n < kPerLine) std::memset(to, ' ', kHexChars);
    for (u32 i = 0; i < n; ++i) {
      putDigits(to + i * 2 + i / 2, data[i]);
      if (i % 2 == 1) to[i * 2 + i / 2 + 2] = ' ';
      to[kHexChars + i] = kForms.text[data[i]];
    }
    to[kHexChars - 1] = ' ';
    to += kHexChars + n;
    *to++ = '\n';
    return to;
  }
  static char* end(char* to, u64) { return to; }
  static constexpr bool kSqueezes = false;
};

// "00000000  61 62 63 05 05 05 05 05                           |abc.....|", equal lines as one '*'.
struct CanonicalForm {
  static char* put(char* to, u64 offset, const u8* data, u32 n) {
    constexpr u32 kHexChars = 3 * kPerLine + 2;
    to = putOffset(to, offset);
    *to++ = ' ';
    std::memset(to, ' ', kHexChars);
    for (u32 i = 0; i < n; ++i) putDigits(to + 1 + i * 3 + i / 8, data[i]);
    to += kHexChars;
    *to++ = ' ';
    *to++ = '|';
    for (u32 i = 0; i < n; ++i) *to++ = kForms.text[data[i]];
    *to++ = '|';
    *to++ = '\n';
    return to;
  }
  static char* end(char* to, u64 offset) {
    to = putOffset(to, offset);
    *to++ = '\n';
    return to;
  }
  static constexpr bool kSqueezes = true;
};

template <class Form>
void dumpLines(Window& window, u64 offset, Output& output) {
  std::string lines;
  std::array<u8, kPerLine> previous{};
  bool hasPrevious = false, squeezing = false;
  for (;;) {
    const u32 n = window.isLast() ? window.size() : window.size() / kPerLine * kPerLine;
    lines.resize(u64{n / kPerLine + 2} * kMostLine);
    char* to = lines.data();
    for (u32 at = 0; at < n; at += kPerLine) {
      const u8* const data = window.data() + at;
      const u32 length = std::min(kPerLine, n - at);
      if (Form::kSqueezes && length == kPerLine) {
        const bool same = hasPrevious && std::memcmp(previous.data(), data, kPerLine) == 0;
        std::memcpy(previous.data(), data, kPerLine);
        hasPrevious = true;
        if (same && !squeezing) to = std::copy_n("*\n", 2, to);
        squeezing = same;
        if (same) continue;
      }
      to = Form::put(to, offset + at, data, length);
    }
    offset += n;
    if (window.isLast() && offset != 0) to = Form::end(to, offset);
    output.write(lines.data(), static_cast<size_t>(to - lines.data()));
    if (window.isLast()) return;
    window.advance(n);
  }
}

// Digits alone, in lines.
void dumpPlain(Window& window, u64 width, Output& output) {
  std::string lines;
  for (u64 column = 0;;) {
    lines.clear();
    for (u32 at = 0; at < window.size();) {
      const u64 n = width == 0 ? window.size() - at : std::min<u64>((width - column) / 2, window.size() - at);
      for (const u8* byte = window.data() + at; byte != window.data() + at + n; ++byte)
        lines.append(kForms.digits[*byte], 2);
      at += static_cast<u32>(n);
      column += 2 * n;
      if (width == 0 || column < width) continue;
      lines += '\n';
      column = 0;
    }
    if (window.isLast() && column != 0) lines += '\n';
    output.write(lines.data(), lines.size());
    if (window.isLast()) return;
    window.advance(window.size());
  }
}

u64 countOf(const Options& options, const char* option, const std::string& typed, u64 otherwise) {
  if (typed.empty()) return otherwise;
  const auto count = parseCount(typed);
  if (!count) options.job.fail(std::string(option) + ": '" + typed + "' is no count");
  return *count;
}

int hexdump(Options& options) {
  Job& job = options.job;
  const u64 offset = countOf(options, "--offset", options.offset, 0);
  const u64 length = countOf(options, "--length", options.length, ~u64{0});
  const u64 width = countOf(options, "-w", options.width, 60);
  if (int{options.canonical} + int{options.plain} + int{options.reverse} > 1)
    job.fail("give one of --canonical, --plain and --reverse");
  if (!options.width.empty() && !options.plain) job.fail("-w is for --plain");
  if (width % 2 != 0) job.fail("-w: a byte takes two characters, so " + std::to_string(width) + " is no width");
  const auto input = job.open();
  input->skip(offset);
  input->limit(length);
  Window window = job.view(*input);
  Output output = job.begin();
  if (options.reverse)
    DumpReader(job, output).read(window);
  else if (options.plain)
    dumpPlain(window, width, output);
  else if (options.canonical)
    dumpLines<CanonicalForm>(window, offset, output);
  else
    dumpLines<XxdForm>(window, offset, output);
  output.finish();
  return kDone;
}

}  // namespace

std::function<int()> setUpHexdump(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  app.add_flag("--canonical", options->canonical, "single bytes, the text between bars, equal lines as one '*'");
  app.add_flag("--plain", options->plain, "hex digits alone");
  app.add_option("-w,--wrap", options->width, "--plain in lines of N characters; 0: one line (60)")->option_text("N");
  app.add_option("--offset", options->offset, "leave out the first N bytes")->option_text("N");
  app.add_option("--length", options->length, "show N bytes at most")->option_text("N");
  app.add_flag("--reverse", options->reverse, "turn a dump of any of these forms back into bytes");
  options->job.addInput(app);
  options->job.addOutput(app);
  app.footer(
      "Examples:\n"
      "  vkbuf hexdump utf16le-bom.xml --length 32\n"
      "  vkbuf hexdump --canonical -s 'four'\n"
      "  vkbuf hexdump koi8-r.xml | vkbuf hexdump --reverse | vkbuf detect\n");
  return [options] { return hexdump(*options); };
}
