#include "tools/vkbuf/TextPieces.h"

#include <cstring>

#include "tools/vkbuf/Text.h"

namespace {

constexpr u32 kReference = 5;  // characters

const u8* findChar(const u8* text, u32 n, char c) {
  return static_cast<const u8*>(std::memchr(text, c, n));
}

// ---- Groups of characters, white space anywhere ----

struct Groups {
  u32 chars;        // of a group
  char closing;     // what begins the end
  bool references;  // references to a carriage return are white space
  char whole;       // a character that is a group by itself, or 0
};

u32 countSignificant(const Groups& groups, const u8* text, u32 n) {
  u32 count = n - countBytes(text, n, isWhiteSpace);
  const u8 whole = static_cast<u8>(groups.whole);
  if (whole != 0) count += countBytes(text, n, [whole](u8 c) { return c == whole; }) * (groups.chars - 1);
  if (!groups.references) return count;
  const u8* const end = text + n;
  for (const u8* at = text; (at = findChar(at, static_cast<u32>(end - at), '&')); ++at)
    if (isReturnReference(at, static_cast<u32>(end - at))) count -= kReference;
  return count;
}

// Goes back from `n` until what is left in front is made of whole groups, `extra` being too many.
u32 backToGroup(const Groups& groups, const u8* text, u32 n, u32 extra) {
  u32 passed = 0;
  while (n != 0 && passed % groups.chars != extra) {
    --n;
    if (isWhiteSpace(text[n])) continue;
    if (groups.references && n + 1 >= kReference && isReturnReference(text + n + 1 - kReference, kReference))
      n -= kReference - 1;
    else
      passed += groups.whole != 0 && text[n] == static_cast<u8>(groups.whole) ? groups.chars : 1;
  }
  return n;
}

TextCut cutGroups(const Groups& groups, const u8* text, u32 n) {
  const u8* const closing = findChar(text, n, groups.closing);
  if (closing) n = static_cast<u32>(closing - text);
  // A reference that is not all in view stays behind the cut.
  for (u32 k = 1; groups.references && !closing && k < kReference && k <= n; ++k)
    if (text[n - k] == '&') n -= k;
  const u32 extra = countSignificant(groups, text, n) % groups.chars;
  return {backToGroup(groups, text, n, extra), closing != nullptr};
}

TextCut cutBase64(const u8* text, u32 n) {
  return cutGroups({4, '=', true, 0}, text, n);
}
TextCut cutBase32(const u8* text, u32 n) {
  return cutGroups({8, '=', false, 0}, text, n);
}
TextCut cutHex(const u8* text, u32 n) {
  return cutGroups({2, '=', false, 0}, text, n);
}
TextCut cutAscii85(const u8* text, u32 n) {
  return cutGroups({5, '~', false, 'z'}, text, n);
}

// ---- The others ----

TextCut cutPlain(const u8*, u32 n) {
  return {n, false};
}

// An escape is % and two digits.
TextCut cutUrl(const u8* text, u32 n) {
  if (n >= 1 && text[n - 1] == '%') return {n - 1, false};
  if (n >= 2 && text[n - 2] == '%') return {n - 2, false};
  return {n, false};
}

TextCut cutDecList(const u8* text, u32 n) {
  while (n != 0 && text[n - 1] != ',' && !isWhiteSpace(text[n - 1])) --n;
  return {n, false};
}

// Whole lines, up to the first that holds no bytes or no data.
TextCut cutUu(const u8* text, u32 n) {
  u32 start = 0;
  while (const u8* const end = findChar(text + start, n - start, '\n')) {
    if (std::strchr("` \r\n", text[start]) || text[start] == 'e') return {start, true};
    start = static_cast<u32>(end + 1 - text);
  }
  return {start, false};
}

// `begin`, blanks, an octal mode, and whatever name.
bool isUuBegin(const u8* line, const u8* end) {
  constexpr u32 kWord = 5;
  if (end - line <= kWord || std::memcmp(line, "begin", kWord) != 0 || line[kWord] != ' ') return false;
  const u8* at = line + kWord;
  while (at != end && *at == ' ') ++at;
  const u8* const mode = at;
  while (at != end && *at >= '0' && *at <= '7') ++at;
  return at != mode && (at == end || *at == ' ' || *at == '\r');
}

}  // namespace

bool isReturnReference(const u8* text, u32 n) {
  return n >= kReference &&
         (std::memcmp(text, "&#xD;", kReference) == 0 || std::memcmp(text, "&#13;", kReference) == 0);
}

FindCut* cutsOf(s32 id) {
  switch (id) {
    case 1:
    case 24:
    case 10:
    case 20:
      return cutBase64;
    case 30:
      return cutBase32;
    case 3:
    case 25:
      return cutHex;
    case 17:
      return cutAscii85;
    case 4:
      return cutUrl;
    case 23:
      return cutDecList;
    case 37:
      return cutUu;
    case 6:
      return cutPlain;
    default:
      return nullptr;
  }
}

u32 findUuBegin(const u8* text, u32 n, bool& found) {
  u32 start = 0;
  for (;;) {
    const u8* const feed = findChar(text + start, n - start, '\n');
    found = isUuBegin(text + start, feed ? feed : text + n);
    if (found || !feed) return start;
    start = static_cast<u32>(feed + 1 - text);
  }
}
