// Encoded words, RFC 2047: =?charset?form?text?=
#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/Literals.h"
#include "varnik/services/memory/Text.h"
#include "varnik/services/strings/StringBuffer.h"

namespace {

constexpr u32 kMostWord = 75;  // section 2
constexpr u32 kFrame = 7;      // =? ? ? ?= and the letter of the form
constexpr u32 kLeast = 12;     // a character of four bytes as escapes: it fits, however long its charset's name

// The characters that a word has for its text.
u32 roomOf(const char* charset) {
  const u32 taken = vk_strlen(charset) + kFrame;
  return taken < kMostWord - kLeast ? kMostWord - taken : kLeast;
}

// The bytes of the UTF-8 character at data[0, n), 1 where there is none.
u32 characterLength(const u8* data, u32 n) {
  const u32 length = data[0] >= 0xF0 ? 4 : data[0] >= 0xE0 ? 3 : data[0] >= 0xC0 ? 2 : 1;
  if (length > n) return 1;
  for (u32 i = 1; i < length; ++i)
    if ((data[i] & 0xC0) != 0x80) return 1;
  return length;
}

// Section 5 (3): what may stand for itself wherever a word may stand.
constexpr bool isLiteral(u8 b) {
  return (b >= '0' && b <= '9') || ((b | 0x20) >= 'a' && (b | 0x20) <= 'z') || b == '!' || b == '*' || b == '+' ||
         b == '-' || b == '/';
}

struct FormB {
  static constexpr const char* kOpen = "?B?";
  // The text's length once these bytes have come to `bytes` others of the word.
  static u32 lengthWith(u32, u32 bytes, const u8*, u32 n) { return (bytes + n + 2) / 3 * 4; }
  static bool append(const u8* data, u32 n, StringBuffer& out) { return ContentEncoder::encodeBase64(data, n, out); }
};

struct FormQ {
  static constexpr const char* kOpen = "?Q?";
  static u32 lengthWith(u32 length, u32, const u8* data, u32 n) {
    return length + (isLiteral(data[0]) || data[0] == ' ' ? 1 : 3 * n);
  }
  static bool append(const u8* data, u32 n, StringBuffer& out) {
    char text[kMostWord];
    char* p = text;
    for (u32 i = 0; i < n; ++i) {
      const u8 b = data[i];
      if (isLiteral(b) || b == ' ') {
        *p++ = b == ' ' ? '_' : static_cast<char>(b);
      } else {
        *p++ = '=';
        *p++ = "0123456789ABCDEF"[b >> 4];
        *p++ = "0123456789ABCDEF"[b & 15];
      }
    }
    return out.appendN(text, static_cast<u32>(p - text));
  }
};

// How many bytes at the front of data[0, n) a word of `room` characters holds: whole characters, one at least.
template <class Form>
u32 bytesOfWord(const u8* data, u32 n, u32 room) {
  u32 bytes = 0, length = 0;
  while (bytes < n) {
    const u32 character = characterLength(data + bytes, n - bytes);
    length = Form::lengthWith(length, bytes, data + bytes, character);
    if (length > room) break;
    bytes += character;
  }
  return bytes;
}

template <class Form>
bool appendWords(const u8* data, u32 n, const char* charset, StringBuffer& out) {
  if (!charset || *charset == 0) charset = _vkLit_utf8();
  const u32 room = roomOf(charset);
  for (u32 i = 0; i < n;) {
    const u32 bytes = bytesOfWord<Form>(data + i, n - i, room);
    if (!out.append(i == 0 ? "=?" : "\r\n =?") || !out.append(charset) || !out.append(Form::kOpen) ||
        !Form::append(data + i, bytes, out) || !out.append("?="))
      return false;
    i += bytes;
  }
  return true;
}

}  // namespace

bool ContentEncoder::encodeWordB(const u8* data, u32 n, const char* charset, StringBuffer& out) {
  return appendWords<FormB>(data, n, charset, out);
}
bool ContentEncoder::encodeWordQ(const u8* data, u32 n, const char* charset, StringBuffer& out) {
  return appendWords<FormQ>(data, n, charset, out);
}
