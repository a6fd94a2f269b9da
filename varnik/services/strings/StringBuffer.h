#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class DataBuffer;

/// A growable string of 8-bit characters: UTF-8 or raw bytes, any value, always followed by a NUL that is not counted.
///
/// Sizes are in bytes and stay below 4 GiB. Operations that add answer false when memory runs out or the size limit
/// would be passed, and then leave the string as it was. Arguments may lie in the string's own storage. Case means
/// ASCII case. Copies are deep; a moved-from string is empty. A copy that finds no memory is empty.
class VARNIK_API StringBuffer {
 public:
  StringBuffer() = default;
  explicit StringBuffer(const char* text) { append(text); }
  StringBuffer(const StringBuffer& other);
  StringBuffer(StringBuffer&& other) noexcept;
  StringBuffer& operator=(const StringBuffer& other);
  StringBuffer& operator=(StringBuffer&& other) noexcept;
  ~StringBuffer();

  /// Returns the content, NUL-terminated, valid until the string changes. Never null.
  const char* getString() const { return data_ ? data_ : ""; }
  /// Returns the length in bytes.
  u32 getSize() const { return size_; }
  bool isEmpty() const { return size_ == 0; }
  /// Returns the last character; 0 for an empty string.
  char lastChar() const { return size_ != 0 ? data_[size_ - 1] : '\0'; }

  // ---- Adding: StringBuffer.cpp ----

  /// Appends a NUL-terminated text; null appends nothing and answers true.
  bool append(const char* text);
  bool append(const StringBuffer& other);
  /// Appends the bytes of a buffer as they are.
  bool append(const DataBuffer& bytes);
  /// Appends exactly `n` bytes, whatever their values; null or 0 appends nothing and answers true.
  bool appendN(const char* bytes, u32 n) {
    // Where there is storage capacity_ > size_: the NUL has its place.
    if (bytes && n != 0 && n < capacity_ - size_) {
      __builtin_memmove(data_ + size_, bytes, n);  // NOLINT(clang-analyzer-unix.cstring.NullArg): room means a block
      setEnd(size_ + n);
      return true;
    }
    return appendSlow(bytes, n);
  }
  /// Appends one character, or `n` copies of it.
  bool appendChar(char c) { return appendN(&c, 1); }
  bool appendCharN(char c, u32 n);

  /// Makes room for `n` more bytes and returns where they go, or null on failure; the size does not change. The
  /// producer writes there and calls `addToSize`. The pointer holds until the string changes.
  char* getAppendPtr(u32 n) { return hasRoom(n) || makeRoom(n) ? data_ + size_ : nullptr; }
  /// True when `n` bytes and a NUL fit behind the content without a larger block.
  bool hasRoom(u32 n) const { return n < capacity_ - size_; }
  /// Counts `n` bytes written behind the content. REQUIRES: `getAppendPtr` gave room for them.
  void addToSize(u32 n) { setEnd(size_ + n); }

  // ---- Removing ----

  /// Empties the string and releases its memory.
  void clear();
  /// Empties the string; the memory is kept.
  void weakClear() {
    if (data_) setEnd(0);
  }
  /// Overwrites the content with zeros, then empties the string; the memory is kept.
  void secureClear();
  /// Drops the last `n` characters, all of them when there are fewer.
  void shorten(u32 n);
  /// Removes blanks, tabs, CR, LF, vertical tabs and form feeds at both ends.
  void trim2();
  /// Removes every occurrence of `c`.
  void removeCharOccurances(char c);

  // ---- Rewriting ----

  /// Lower-cases the letters A to Z in place.
  void toLowerCase();
  /// Replaces every occurrence of `find`, from left to right without overlap; what is inserted is not searched again.
  /// A null or empty `find` changes nothing; a null `with` deletes. False, unchanged, when memory runs out.
  bool replaceAllOccurances(const char* find, const char* with);
  /// Turns `-` into `+` and `_` into `/`: the URL-safe base64 alphabet into the standard one (RFC 4648 sections 4, 5).
  void replaceModBase64Chars();
  /// Escapes the content in place for use between the quotes of a JSON string (RFC 8259 section 7): the quote, the
  /// backslash and the controls below 0x20; all other bytes stay. False, unchanged, when memory runs out.
  bool jsonEscape();
  /// Appends `n` bytes of text with their JSON escapes undone to `out`. Surrogate pairs join; a lone surrogate becomes
  /// U+FFFD; a backslash that begins no escape makes the result false and stays in the text as it is.
  static bool jsonDecode(const char* text, u32 n, StringBuffer& out);

  // ---- Comparing ----

  /// The whole content equals the text, exactly or with case ignored; a null text counts as empty.
  bool equals(const char* text) const;
  bool equalsIgnoreCase(const char* text) const;
  /// The content is exactly `n` characters long and equals the first `n` of the text, case ignored.
  bool equalsIgnoreCase2(const char* text, u32 n) const;
  /// The content begins with the text.
  bool beginsWith(const char* text) const;
  bool beginsWithIgnoreCase(const char* text) const;

  // ---- Handing over ----

  /// Appends the bytes that the content stands for, read as hex digits of either case, to `out`. White space is
  /// skipped; another character or an odd count of digits makes the result false, and the bytes before it stay in
  /// `out`.
  bool hexStringToBinary(DataBuffer& out) const;
  /// Gives up the storage block: the caller releases it with array delete. Sets `size` to the bytes in use and
  /// `capacity` to the block's size; null and 0 for a string without storage. The string is left empty.
  u8* extractString2(u32& size, u32& capacity);

  /// Marks the string as one that holds a secret: its storage is wiped whenever it is released or replaced.
  void setSecure(bool on) { secure_ = on; }

 private:
  bool appendSlow(const char* bytes, u32 n);
  bool makeRoom(u32 n);
  void setEnd(u32 size) {
    size_ = size;
    data_[size] = 0;  // NOLINT(clang-analyzer-core.NullDereference): room means a block
  }
  void release();

  char* data_ = nullptr;  // capacity_ bytes from allocByteArray, or null
  u32 size_ = 0;          // below capacity_ whenever there is storage
  u32 capacity_ = 0;
  bool secure_ = false;
};
