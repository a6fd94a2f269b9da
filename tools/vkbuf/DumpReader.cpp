#include "tools/vkbuf/DumpReader.h"

#include <algorithm>

namespace {

int digitOf(u8 c) {
  if (c >= '0' && c <= '9') return c - '0';
  const u8 lower = c | 0x20;
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

bool isBlank(u8 c) {
  return c == ' ' || c == '\t' || c == '\r';
}

}  // namespace

void DumpReader::refuse(const u8* text, u32 at, const char* why) const {
  job_.refuse(nameOfByte(text[at]) + " at " + place_.of(text, at) + ", " + why);
}

void DumpReader::read(Window& window) {
  for (;;) {
    const u8* const text = window.data();
    const u32 size = window.size();
    bytes_.clear();
    u32 start = 0;
    while (start < size) {
      const u8* const feed = std::find(text + start, text + size, u8{'\n'});
      const u32 end = static_cast<u32>(feed - text);
      if (end == size && !window.isLast()) break;
      readLine(text, start, end);
      start = std::min(end + 1, size);
    }
    output_.write(bytes_.data(), bytes_.size());
    if (window.isLast()) return;
    place_.pass(text, start);
    window.advance(start);
  }
}

// With an offset: "00000000: 6162 6305  abc." or "00000000  61 62 63 05  |abc.|". Two blanks end the bytes in the first
// form; in the second they part the halves, and a bar ends them.
void DumpReader::readLine(const u8* text, u32 start, u32 end) {
  while (end > start && isBlank(text[end - 1])) --end;
  if (start == end) return;
  if (end - start == 1 && text[start] == '*' && !previous_.empty()) {
    repeats_ = true;
    return;
  }
  u32 at = start;
  while (at < end && digitOf(text[at]) >= 0) ++at;
  const bool colon = at > start && at < end && text[at] == ':';
  const bool columns =
      at - start >= 8 && (at == end ? counts_ : end - at > 1 && text[at] == ' ' && text[at + 1] == ' ');
  if (!colon && !columns) {
    if (readBytes(text, start, end, end) != end) refuse(text, start, "begins no line of a dump");
    return;
  }
  at = readOffset(text, start, end, at);
  const size_t before = bytes_.size();
  u32 stop = readBytes(text, std::min(at + 1, end), end, colon ? 1 : 2);
  while (!colon && stop != end && isBlank(text[stop])) ++stop;
  if (!colon && stop != end && text[stop] != '|') refuse(text, stop, "is no hex digit");
  previous_.assign(bytes_, before);
  offset_ += previous_.size();
}

// Returns where the bytes begin. A '*' before the line stands for the line before that, as often as it takes.
u32 DumpReader::readOffset(const u8* text, u32 start, u32 end, u32 colon) {
  u64 offset = 0;
  if (colon - start > 16) refuse(text, start, "begins an offset that is too long");
  for (u32 i = start; i < colon; ++i) offset = offset << 4 | static_cast<u64>(digitOf(text[i]));
  if (!counts_) offset_ = offset;
  counts_ = true;
  for (; repeats_ && offset_ < offset; offset_ += previous_.size()) {
    bytes_ += previous_;
    if (bytes_.size() < 1024 * 1024) continue;
    output_.write(bytes_.data(), bytes_.size());
    bytes_.clear();
  }
  repeats_ = false;
  if (offset_ != offset) refuse(text, start, "begins an offset that does not follow the bytes before");
  return std::min(colon, end);
}

// Takes pairs of digits with up to `mostGap` blanks between them. Returns where they end.
u32 DumpReader::readBytes(const u8* text, u32 at, u32 end, u32 mostGap) {
  while (at < end && isBlank(text[at])) ++at;
  for (;;) {
    u32 next = at;
    while (next < end && isBlank(text[next])) ++next;
    if (next == end) return end;
    if (next - at > mostGap) return at;
    const int high = digitOf(text[next]), low = next + 1 < end ? digitOf(text[next + 1]) : -1;
    if (high < 0) return next;
    if (low < 0) refuse(text, next, "has no second digit beside it");
    bytes_ += static_cast<char>(high << 4 | low);
    at = next + 2;
  }
}
