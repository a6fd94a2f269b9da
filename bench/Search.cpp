// Search, replace and clean-up, beside the C and the C++ library.
#include <algorithm>
#include <cstring>
#include <functional>

#include "bench/Bench.h"
#include "varnik/buffer/DataBuffer.h"

namespace {

constexpr std::string_view kPattern = "Zmark_";

// Lines of text; a Z stands nowhere but in the pattern, which comes every `distance` bytes and at the end.
std::string lines(std::size_t n, std::size_t distance) {
  constexpr std::string_view kLine = "the character of a header is not in the line, but with the buffer on it.\r\n";
  std::string text(n, ' ');
  for (std::size_t i = 0; i < n; ++i) text[i] = kLine[i % kLine.size()];
  for (std::size_t i = distance; i + kPattern.size() < n; i += distance) text.replace(i, kPattern.size(), kPattern);
  return text.replace(n - kPattern.size(), kPattern.size(), kPattern);
}

const u8* bytesOf(std::string_view text) {
  return reinterpret_cast<const u8*>(text.data());
}

// A pattern whose first byte is rare, and one whose first byte is among the most frequent.
void addFinders(std::size_t n) {
  const std::string text = lines(n, n);
  for (const std::string_view pattern : {kPattern, std::string_view("tmark_")}) {
    std::string given = text;
    given.replace(n - pattern.size(), pattern.size(), pattern);
    const std::string operation = pattern[0] == 'Z' ? "find_rare" : "find_frequent";
    bench::add(operation, n, "varnik", [=] {
      return DataBuffer::findBytes2(bytesOf(given), static_cast<u32>(n), bytesOf(pattern),
                                    static_cast<u32>(pattern.size()));
    });
    bench::add(operation, n, "memmem", [=] { return memmem(given.data(), n, pattern.data(), pattern.size()); });
    bench::add(operation, n, "string_view", [=] { return std::string_view(given).find(pattern); });
  }
}

void addReplacers(std::size_t n) {
  constexpr std::string_view kWith = "header-field-name";
  const std::string text = lines(n, 512);
  bench::add("replace", n, "varnik", [=] {
    DataBuffer bytes;
    bytes.append(text.data(), static_cast<u32>(n));
    return bytes.replaceAllOccurances(bytesOf(kPattern), static_cast<u32>(kPattern.size()), bytesOf(kWith),
                                      static_cast<u32>(kWith.size()));
  });
  bench::add("replace", n, "find+append", [=] {
    std::string out;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(kPattern, from)) != text.npos; from = at + kPattern.size())
      out.append(text, from, at - from).append(kWith);
    return out.append(text, from);
  });
}

using Edit = std::function<std::size_t(std::string&)>;

// Each run works on a fresh copy; both sides pay for it.
void addEdit(const std::string& operation, const std::string& text, void (*ours)(DataBuffer&), const Edit& loop) {
  bench::add(operation, text.size(), "varnik", [=, work = text]() mutable {
    work = text;
    DataBuffer bytes;
    bytes.borrowData(work.data(), static_cast<u32>(work.size()));
    ours(bytes);
    return bytes.size();
  });
  bench::add(operation, text.size(), "std", [=, work = text]() mutable {
    work = text;
    return loop(work);
  });
}

void addEdits(std::size_t n) {
  const std::string text = lines(n, 512);
  addEdit(
      "drop_byte", text, [](DataBuffer& b) { b.removeByteValue('e'); },
      [](std::string& s) { return static_cast<std::size_t>(std::remove(s.begin(), s.end(), 'e') - s.begin()); });
  addEdit(
      "replace_byte", text, [](DataBuffer& b) { b.replaceChar('e', '_'); },
      [](std::string& s) {
        std::replace(s.begin(), s.end(), 'e', '_');
        return s.size();
      });
  addEdit(
      "reverse", text, [](DataBuffer& b) { b.reverseBytes(); },
      [](std::string& s) {
        std::reverse(s.begin(), s.end());
        return s.size();
      });
}

}  // namespace

int main(int argc, char** argv) {
  for (const std::size_t n : {std::size_t{512}, std::size_t{4} << 10, std::size_t{64} << 10, std::size_t{1} << 20}) {
    addFinders(n);
    addReplacers(n);
    addEdits(n);
  }
  return bench::run(argc, argv);
}
