#pragma once

#include "varnik/services/strings/StringBuffer.h"

/// A string of Unicode text, kept as UTF-8 and handed out as UTF-8 or UTF-16.
///
/// The UTF-8 form is authoritative and may be written through `getUtf8Sb_rw`. Where it is not valid, the UTF-16 forms
/// have U+FFFD for each maximal bad part. No byte-order mark is added or dropped.
class VARNIK_API XString {
 public:
  XString() = default;
  XString(const XString& other);
  XString(XString&& other) noexcept;
  XString& operator=(const XString& other);
  XString& operator=(XString&& other) noexcept;
  ~XString();

  /// Replaces the text by a NUL-terminated UTF-8 text, byte for byte; null empties. False when memory runs out: empty.
  bool setFromUtf8(const char* text);
  /// Replaces the text by `n` UTF-16 code units at `units` (any address) in the processor's byte order; a lone
  /// surrogate becomes U+FFFD. Null, 0 or a negative count empties. False when memory runs out: empty.
  bool setFromUtf16N_xe(const u8* units, s32 n);
  /// Appends the text's UTF-16LE bytes to `out`, with a byte-order mark in front when `withMark`; no terminator. False
  /// when memory runs out.
  bool getUtf16_le(bool withMark, DataBuffer& out);
  /// Returns the text's UTF-16 code units in host order, followed by a zero unit, valid until the string changes or the
  /// next call; null when memory runs out.
  const u16* getUtf16_xe();
  /// Returns the count of the text's UTF-16 code units.
  u32 getNumChars() const;

  /// Returns the UTF-8 text, to be read or written in place.
  StringBuffer& getUtf8Sb_rw() { return utf8_; }
  const char* getUtf8() const { return utf8_.getString(); }
  bool isEmpty() const { return utf8_.isEmpty(); }
  /// Empties the string; the memory may be kept.
  void weakClear();
  /// Overwrites all that the string holds with zeros and empties it.
  void secureClear();
  /// Marks the string as one that holds a secret: its storage is wiped whenever it is released or replaced.
  void setSecureX(bool on);
  bool isSecure() const { return secure_; }

 private:
  void releaseUnits();

  StringBuffer utf8_;
  u16* units_ = nullptr;  // what getUtf16_xe last handed out
  u32 numUnits_ = 0;      // its code units, the zero unit included
  bool secure_ = false;
};
