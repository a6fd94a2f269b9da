// hexdump: bytes as hex and text. The usual form is that of xxd, --canonical that of `hexdump -C`, so that other tools
// read it, and whoever knows one knows the other.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vkbuf/Commands.h"
#include "tools/vkbuf/DumpReader.h"
#include "tools/vkbuf/Job.h"
#include "tools/vkbuf/Memory.h"
#include "tools/vkbuf/Text.h"

namespace {

constexpr u32 kPerLine = 16;

struct Options {
  Job job{"hexdump"};
  std::string offset, length, width;
  bool canonical = false, plain = false, reverse = false;
};

// The character that stands for a byte in the column of text.
char shown(u8 byte) {
  return static_cast<u8>(byte - 0x20) < 0x5F ? static_cast<char>(byte) : '.';
}

// Eight digits, more past 4 GiB.
char* putOffset(char* to, u64 offset) {
  int digits = 8;
  while (digits < 16 && offset >> (4 * digits) != 0) ++digits;
  while (digits-- != 0) *to++ = "0123456789abcdef"[offset >> (4 * digits) & 15];
  return to;
}

// What a line of a dump takes at most.
constexpr u32 kMostLine = 16 + 2 + 3 * kPerLine + 2 + kPerLine + 4;

// Each form puts a line of up to 16 bytes, whose digits are there already, and returns where it ends.

// "00000000: 6162 6305 0505 0505                      abc....."
struct XxdForm {
  static char* put(char* to, u64 offset, const u8* data, const char* digits, u32 n) {
    constexpr u32 kHexChars = kPerLine / 2 * 5 + 1;
    to = putOffset(to, offset);
    *to++ = ':';
    *to++ = ' ';
    if (n < kPerLine) {
      std::memset(to, ' ', kHexChars);
      for (u32 i = 0; i < n; ++i) std::memcpy(to + i * 2 + i / 2, digits + 2 * i, 2);
      for (u32 i = 0; i < n; ++i) to[kHexChars + i] = shown(data[i]);
    } else {
      for (u32 i = 0; i < kPerLine / 2; ++i) {
        std::memcpy(to + 5 * i, digits + 4 * i, 4);
        to[5 * i + 4] = ' ';
      }
      to[kHexChars - 1] = ' ';
      for (u32 i = 0; i < kPerLine; ++i) to[kHexChars + i] = shown(data[i]);
    }
    to[kHexChars + n] = '\n';
    return to + kHexChars + n + 1;
  }
  static char* end(char* to, u64) { return to; }
  static constexpr bool kSqueezes = false;
};

// "00000000  61 62 63 05 05 05 05 05                           |abc.....|", equal lines as one '*'.
struct CanonicalForm {
  static char* put(char* to, u64 offset, const u8* data, const char* digits, u32 n) {
    constexpr u32 kHexChars = 3 * kPerLine + 2;
    to = putOffset(to, offset);
    *to++ = ' ';
    std::memset(to, ' ', kHexChars);
    for (u32 i = 0; i < n; ++i) std::memcpy(to + 1 + i * 3 + i / 8, digits + 2 * i, 2);
    to += kHexChars;
    *to++ = ' ';
    *to++ = '|';
    for (u32 i = 0; i < n; ++i) *to++ = shown(data[i]);
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

// The digits of a part of the data, so small that they stay in a near cache and that its dump fits into a pipe.
class Digits {
 public:
  static constexpr u32 kPart = 15 * 1024;
  /// The digits of data[0, n), until the next call.
  const char* of(const u8* data, u32 n) {
    text_.weakClear();
    DataBuffer::encodeDB2("hexlower", data, n, text_);
    checkMemory();  // there may be fewer digits than are looked at
    return text_.getString();
  }

 private:
  StringBuffer text_;
};

// Dumps a part, at most `kPart` bytes, and returns where the lines end.
template <class Form>
class Lines {
 public:
  char* put(char* to, u64 offset, const u8* data, u32 n) {
    const char* const digits = digits_.of(data, n);
    for (u32 at = 0; at < n; at += kPerLine) {
      const u32 length = std::min(kPerLine, n - at);
      if (Form::kSqueezes && isRepeated(data + at, length)) {
        if (!squeezing_) to = std::copy_n("*\n", 2, to);
        squeezing_ = true;
        continue;
      }
      squeezing_ = false;
      to = Form::put(to, offset + at, data + at, digits + u64{2} * at, length);
    }
    return to;
  }

 private:
  // Whether a whole line is the same as the one before it.
  bool isRepeated(const u8* data, u32 length) {
    if (length < kPerLine) return false;
    const bool same = hasPrevious_ && std::memcmp(previous_.data(), data, kPerLine) == 0;
    std::memcpy(previous_.data(), data, kPerLine);
    hasPrevious_ = true;
    return same;
  }

  Digits digits_;
  std::array<u8, kPerLine> previous_{};
  bool hasPrevious_ = false, squeezing_ = false;
};

// The lines go out by parts, so that they too stay in a near cache.
template <class Form>
void dumpLines(Window& window, u64 offset, Output& output) {
  Lines<Form> lines;
  std::vector<char> area((Digits::kPart / kPerLine + 2) * kMostLine);
  for (;;) {
    const u32 n = window.isLast() ? window.size() : window.size() / kPerLine * kPerLine;
    for (u32 at = 0; at < n; at += Digits::kPart) {
      const char* const end = lines.put(area.data(), offset + at, window.data() + at, std::min(Digits::kPart, n - at));
      output.write(area.data(), static_cast<size_t>(end - area.data()));
    }
    offset += n;
    if (window.isLast()) break;
    window.advance(n);
  }
  if (offset != 0) output.write(area.data(), static_cast<size_t>(Form::end(area.data(), offset) - area.data()));
}

// Digits alone, in lines.
void dumpPlain(Window& window, u64 width, Output& output) {
  std::string lines;
  Digits digits;
  for (u64 column = 0;;) {
    lines.clear();
    for (u32 at = 0; at < window.size(); at += Digits::kPart) {
      const u32 part = std::min(Digits::kPart, window.size() - at);
      std::string_view text(digits.of(window.data() + at, part), 2 * part);
      while (!text.empty()) {
        const size_t n = width == 0 ? text.size() : std::min<size_t>(width - column, text.size());
        lines.append(text.substr(0, n));
        text.remove_prefix(n);
        column += n;
        if (column != width) continue;
        lines += '\n';
        column = 0;
      }
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
