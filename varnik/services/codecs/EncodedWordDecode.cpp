// Header values with encoded words, RFC 2047, as mail really holds them: words that stand right beside other text or
// contain blanks are taken, too. RFC 2231 section 5 adds a language to the charset: =?charset*language?form?text?=
#include <cstring>
#include <string_view>

#include "varnik/services/charset/CharsetNames.h"
#include "varnik/services/charset/EncodingConvert.h"
#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/internal/DecodeResult.h"
#include "varnik/services/codecs/internal/Room.h"
#include "varnik/simd/HexUnescape.h"

namespace {

constexpr s32 kUtf8 = 65001;

struct Word {
  u32 start, end;  // of the whole word
  u32 charset, charsetEnd;
  u32 text, textEnd;
  bool base64;
};

// Finds words in a text. Each search goes on where an earlier one of its kind has ended, so that a text full of
// beginnings without an end takes linear time.
class WordFinder {
 public:
  WordFinder(const char* text, u32 n) : text_(text), n_(n) {}

  /// Finds the first word at or behind `from`; false when there is none.
  bool next(u32 from, Word& word) {
    for (u32 at = find('=', from); at < n_; at = find('=', at + 1))
      if (parse(at, word)) return true;
    return false;
  }

 private:
  static constexpr u32 kMostCharset = 80;

  u32 find(char c, u32 from) const {
    const void* const at = from < n_ ? std::memchr(text_ + from, c, n_ - from) : nullptr;
    return at ? static_cast<u32>(static_cast<const char*>(at) - text_) : n_;
  }

  bool parse(u32 at, Word& word) {
    if (n_ - at < 2 || text_[at + 1] != '?') return false;
    word.start = at;
    word.charset = at + 2;
    const u32 mark = charsetEnd(word.charset);
    if (mark == word.charset || n_ - mark < 3 || text_[mark] != '?' || text_[mark + 2] != '?') return false;
    const char form = static_cast<char>(text_[mark + 1] | 0x20);
    if (form != 'b' && form != 'q') return false;
    word.base64 = form == 'b';
    for (word.charsetEnd = word.charset; word.charsetEnd < mark && text_[word.charsetEnd] != '*';) ++word.charsetEnd;
    word.text = mark + 3;
    word.textEnd = closing(word.text);
    word.end = word.textEnd + 2;
    return word.textEnd < n_ && lineBreak(word.text) > word.textEnd;
  }

  // Where the characters of a charset's name end.
  u32 charsetEnd(u32 at) const {
    const u32 most = n_ - at < kMostCharset ? n_ : at + kMostCharset;
    while (at < most && text_[at] > ' ' && text_[at] != '?') ++at;
    return at;
  }

  u32 closing(u32 from) {
    if (closing_ < from) {
      closing_ = find('?', from);
      while (closing_ < n_ && (n_ - closing_ < 2 || text_[closing_ + 1] != '=')) closing_ = find('?', closing_ + 1);
    }
    return closing_;
  }

  u32 lineBreak(u32 from) {
    while (lineBreak_ < n_ && (lineBreak_ < from || (text_[lineBreak_] != '\r' && text_[lineBreak_] != '\n')))
      ++lineBreak_;
    return lineBreak_;
  }

  const char* text_;
  const u32 n_;
  u32 closing_ = 0, lineBreak_ = 0;
};

class Decoder {
 public:
  Decoder(const char* text, u32 n, DataBuffer& out, LogBase& log) : text_(text), n_(n), out_(out), log_(log) {}

  DecodeResult run() {
    WordFinder finder(text_, n_);
    Word word;
    for (u32 from = 0; finder.next(from, word); from = word.end) {
      StringBuffer charset;
      if (!charset.appendN(text_ + word.charset, word.charsetEnd - word.charset)) return DecodeResult::noMemory();
      if (const s32 page = pageOf(charset); page == 0) {
        fault(word.start);  // stays as it stands
      } else if (!take(word, page)) {
        return DecodeResult::noMemory();
      }
    }
    flush();
    if (!copyUpTo(n_)) return DecodeResult::noMemory();
    return firstBad_ == kNoFault ? DecodeResult::good() : DecodeResult::fault(firstBad_);
  }

 private:
  void fault(u32 at) {
    if (at < firstBad_) firstBad_ = at;
  }

  // The code page of a charset, 0 for one that is not known.
  s32 pageOf(StringBuffer& charset) {
    if (charset.isEmpty()) return 0;
    charset.toLowerCase();
    return CharsetNames::codePageForName(charset, &log_);
  }

  // Words of one charset that stand together are converted together: some mailers split a character.
  bool take(const Word& word, s32 page) {
    const bool adjacent = afterWord_ && isSpace(copied_, word.start);
    if (!adjacent || page != page_ || endsInShift()) flush();
    if (!adjacent && !copyUpTo(word.start)) return false;
    if (bytes_.empty()) bytesStart_ = word.start;
    page_ = page;
    afterWord_ = true;
    copied_ = word.end;
    return decode(word, page == kUtf8 ? out_ : bytes_);
  }

  // ISO 2022 and HZ shift between tables, and their words end with the first one in force again. The converter takes a
  // shift right behind another, as joined words have it, for an attempt to hide something.
  bool endsInShift() const {
    const std::string_view bytes(reinterpret_cast<const char*>(bytes_.getData2()), bytes_.getSize());
    if (page_ == 52936) return bytes.ends_with("~}");
    return page_ >= 50220 && page_ <= 50229 &&
           (bytes.ends_with("\x1B(B") || bytes.ends_with("\x1B(J") || bytes.ends_with('\x0F'));
  }

  bool isSpace(u32 from, u32 to) const {
    while (from < to && vk_codec::isSpace(static_cast<u8>(text_[from]))) ++from;
    return from == to;
  }

  bool copyUpTo(u32 end) {
    const u32 from = copied_;
    copied_ = end;
    return out_.append(text_ + from, end - from);
  }

  // What is UTF-8 already went straight to the output.
  void flush() {
    if (bytes_.empty()) return;
    if (!_vkEncodingConvert().EncConvert(page_, kUtf8, bytes_.getData2(), bytes_.getSize(), out_, log_))
      fault(bytesStart_);
    bytes_.clear();
  }

  bool decode(const Word& word, DataBuffer& to) {
    const u32 n = word.textEnd - word.text;
    if (!word.base64) return n == 0 || decodeQ(vk_codec::asBytes(text_ + word.text), n, to);
    const DecodeResult result = vk_decodeBase64(text_ + word.text, n, to);
    if (result.ok) return true;
    if (result.badAt == kNoFault) return false;
    fault(word.text + result.badAt);
    return true;
  }

  // Section 4.2; a `=` that begins no escape stays.
  static bool decodeQ(const u8* text, u32 n, DataBuffer& out) {
    u8* const to = vk_codec::roomFor(out, n);
    if (!to) return false;
    u8* p = to;
    for (u32 i = 0; i < n; ++i) {
      u8 b = text[i] == '_' ? u8{' '} : text[i];
      if (b == '=' && n - i >= 3) {
        const u8 high = vk_simd::hexValue(text[i + 1]), low = vk_simd::hexValue(text[i + 2]);
        if ((high | low) < 16) {
          b = static_cast<u8>(high << 4 | low);
          i += 2;
        }
      }
      *p++ = b;
    }
    out.addToSize(static_cast<u32>(p - to));
    return true;
  }

  const char* text_;
  const u32 n_;
  DataBuffer& out_;
  LogBase& log_;
  DataBuffer bytes_;  // of adjacent words in the charset `page_`, not yet converted
  s32 page_ = 0;
  u32 bytesStart_ = 0;
  u32 copied_ = 0;  // up to where the text has been dealt with
  bool afterWord_ = false;
  u32 firstBad_ = kNoFault;
};

}  // namespace

DecodeResult vk_decodeWords(const char* text, u32 n, DataBuffer& out) {
  LogNull log;
  return Decoder(text, n, out, log).run();
}

bool ContentEncoder::decodeId26(const StringBuffer& text, DataBuffer& out, LogBase& log) {
  return Decoder(text.getString(), text.getSize(), out, log).run().ok;
}
