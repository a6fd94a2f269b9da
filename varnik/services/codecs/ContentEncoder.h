#pragma once

#include "varnik/services/logging/LogBase.h"
#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class DataBuffer;
class StringBuffer;

/// Bytes as text and back. Encoders append to a `StringBuffer`, decoders to a `DataBuffer`; what was there stays.
/// Encoders are false only when memory runs out or the text would pass 4 GiB.
///
/// Decoders skip white space (base45 only CR, LF and tab: the blank is one of its digits) and accept missing padding.
/// They answer false for a character outside the alphabet, anything but white space behind the padding, an impossible
/// length, and leftover bits that are not zero; the bytes decoded before the fault stay in the output. `text` may be
/// null when its length is 0.
class VARNIK_API ContentEncoder {
 public:
  /// Sets the most characters that an encoded line holds, its line end not counted; 76 at first. Values below 4 and
  /// values from 2^31 - 1 up (a negative number, or one that was too large) mean 76.
  void setLineLength(u32 length);

  // ---- base64 (RFC 4648 sections 4 and 5, RFC 2045 section 6.8): Base64.cpp ----

  /// Standard alphabet, `=` padding, no line breaks.
  static bool encodeBase64(const u8* data, u32 n, StringBuffer& out);
  /// The same in lines of the object's length, each ended by CR LF, the last one too. The length is taken down to a
  /// multiple of 4.
  bool encodeBase64Mime(const u8* data, u32 n, StringBuffer& out) const;
  /// The URL-safe alphabet (`-` and `_`), `=` padding, no line breaks.
  static bool encodeModBase64(const u8* data, u32 n, StringBuffer& out);
  /// Lines as in `encodeBase64Mime`, each ended by the characters "&#xD;" and LF.
  bool encodeBase64CrEntity(const u8* data, u32 n, StringBuffer& out) const;
  /// Standard alphabet; the references `&#xD;` and `&#13;` are skipped like white space, any other `&` is an error.
  static bool decodeBase64(const char* text, u32 n, DataBuffer& out);

  // ---- base32 (RFC 4648 section 6): Base32.cpp ----
  /// Writes, reads base32.
  static bool encodeBase32(const u8* data, u32 n, StringBuffer& out);
  static bool decodeId30(const char* text, DataBuffer& out, LogBase& log);

  // ---- base58 (Bitcoin alphabet): Base58.cpp ----
  /// Writes, reads base58.
  static bool encodeBase58(const u8* data, u32 n, StringBuffer& out, LogBase& log);
  static bool decodeId7(const char* text, DataBuffer& out, LogBase& log);

  // ---- Ascii85, `z` for four zero bytes, no frame; the decoder accepts a frame `<~ ~>`: Ascii85.cpp ----
  /// Writes, reads Ascii85.
  static bool encodeAscii85(const u8* data, u32 n, StringBuffer& out, LogBase& log);
  static bool decodeId17(const char* text, DataBuffer& out, LogBase& log);

  // ---- base45 (RFC 9285): Base45.cpp ----
  /// Writes, reads base45.
  static bool encodeBase45(const u8* data, u32 n, StringBuffer& out, LogBase& log);
  static bool decodeId21(const char* text, u32 n, DataBuffer& out);

  // ---- quoted-printable (RFC 2045 section 6.7): QuotedPrintable.cpp ----

  /// CR LF pairs stay as line breaks, a lone CR or LF is escaped; soft line breaks keep every line within the object's
  /// length.
  bool encodeQuotedPrintable(const u8* data, u32 n, StringBuffer& out) const;
  /// Decodes what mail really holds: soft breaks with blanks behind the `=`, lower-case digits, bare LF. Blanks before
  /// a line end and at the end of the text are dropped, as the standard advises; a `=` that begins no escape stays as
  /// it is. True unless memory runs out.
  bool decodeQuotedPrintable(const char* text, u32 n, DataBuffer& out) const;

  // ---- encoded words (RFC 2047): EncodedWord.cpp ----

  /// Appends the bytes as encoded words of the B or Q form labelled with `charset`. No word passes 75 characters or
  /// splits a UTF-8 character; words are parted by CR LF and a blank.
  static bool encodeWordB(const u8* data, u32 n, const char* charset, StringBuffer& out);
  static bool encodeWordQ(const u8* data, u32 n, const char* charset, StringBuffer& out);
  /// Appends the UTF-8 text of a header value: encoded words of either form in any known charset, adjacent words of one
  /// charset joined before conversion and the white space between words dropped; other text is copied, and so are words
  /// labelled UTF-8, whatever their bytes. False when a word is in a charset that is not known (it stays as it stands)
  /// or its content is bad (decoded as far as that goes); all the rest is decoded in either case.
  static bool decodeId26(const StringBuffer& text, DataBuffer& out, LogBase& log);

  // ---- eda, hex to be read aloud: Eda.cpp ----

  /// Lower-case hex, a blank after every four digits, 16 groups a line (LF between lines); hex decoding reads it back.
  static bool encodeEda(const u8* data, u32 n, StringBuffer& out);

  // ---- uuencoded text: Uu.cpp ----

  /// Text before the `begin` line and behind the `end` line is passed over, and the name in the former never used.
  /// Lines may end in LF or CR LF and may have lost blanks at their end; a blank and a grave accent both mean zero.
  /// False without either of the two lines, too. Reads what `Uu` writes.
  static bool decodeId37(const char* text, DataBuffer& out, LogBase& log);

 private:
  u32 lineLength_ = 76;
};
