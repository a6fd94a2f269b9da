// DataBuffer: a growable run of bytes, and the operations of the whole library on it.
//
// One contiguous block holds the bytes; nothing terminates them. The block is the buffer's own (allocated as
// `allocByteArray` does, released with array delete) or borrowed from a caller, who keeps it alive and releases it.
// Sizes are in bytes and 32-bit: a buffer holds at most 4,294,967,295. A buffer has no lock: one thread at a time.
//
// Growth is additive and never doubles: the bulk operations take the larger of the request and a step of 20,000 to
// 12,000,000 bytes chosen by the current size; single bytes take 64 to 10,000. `ensureBuffer` reserves exactly. A
// reallocation moves the bytes into a fresh block of the buffer's own, so any append to a borrowed buffer copies it
// first.
//
// Operations answer by result and never throw. Unless its comment says otherwise, one that fails leaves the buffer as
// it was. "Guarded" operations look at the validity byte first: on a destroyed or damaged object they report once
// through `Psdk::badObjectFound` and answer false, null or 0 without touching anything. Arguments may lie inside the
// buffer's own storage wherever a caller could expect it to work; such calls are served.
#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Memory.h"
#include "varnik/services/memory/Types.h"
#include "varnik/services/memory/VarnikObject.h"

class DataBufferView;
class LogBase;
class StringBuffer;
class XString;

class VARNIK_API DataBuffer : public VarnikObject {
 public:
  // ---- Life cycle: buffer/Storage.cpp ----

  /// An empty buffer without storage.
  DataBuffer() = default;
  /// Copies bytes, capacity and the `secure` flag; the copy owns its block also when the source borrows. Where memory
  /// runs out the copy is empty.
  DataBuffer(const DataBuffer& other);
  /// Takes the storage, borrowed or owned, and the flags; `other` is left empty.
  DataBuffer(DataBuffer&& other) noexcept;
  /// As the copy and move constructors, after the storage held so far is released (a secure one wiped).
  DataBuffer& operator=(const DataBuffer& other);
  DataBuffer& operator=(DataBuffer&& other) noexcept;
  /// Releases owned storage; the bytes in use of a secure buffer are zeroed before.
  ~DataBuffer() override {
    if (validity_ != kValid || (data_ && !borrowed_)) release();
    validity_ = 0;
    data_ = nullptr;
    size_ = 0;
    capacity_ = 0;
    // The object's lifetime ends here, so that a compiler may drop every store to it, these and the constructor's. They
    // must be made, as for a reader that it does not see: a later use of the dead object has to fail the check.
    asm volatile("" : : "r"(this) : "memory");
  }

  /// Returns a new empty buffer for the caller to delete, or null when memory is exhausted.
  static DataBuffer* createNewObject();
  /// Guarded. True for a live object.
  bool checkValidityDb() const { return isValid(); }
  /// A hook for diagnostics; does nothing.
  void dumpObject(const char* tag) const;

  // ---- Storage and growth: buffer/Storage.cpp ----

  /// Guarded when `n` > 0. Makes the capacity at least `n`; where it has to grow, exactly `n`.
  bool ensureBuffer(u32 n);
  /// Moves the bytes in use to a fresh owned block of exactly `n` bytes. False, and nothing changed, for `n` = 0, when
  /// memory runs out, and for `n` below the size, which is reported as a caller's error.
  bool reallocate(u32 n);
  /// Makes room for `n` more bytes by the growth policy. Where the block it asks for is not to be had, a second attempt
  /// asks for `n` + 400 beyond the size.
  bool expandBuffer(u32 n);
  /// Guarded. True when `n` more bytes fit into the capacity.
  bool canAppendWithoutRealloc(u32 n) const;
  /// Guarded. Makes room for `n` + 1 more bytes and returns the first free byte, null on failure. The producer writes
  /// there and calls `addToSize`; the pointer holds until the buffer changes.
  u8* getAppendPtr(u32 n);
  /// Counts `n` bytes that were written behind the bytes in use; ignored when that would pass the capacity.
  void addToSize(u32 n) {
    if (n <= capacity_ - size_) size_ += n;
  }
  /// Gives back all but 4 bytes of the spare capacity, where there is more; the second form only when more than `slack`
  /// bytes are spare. False when the smaller block is not to be had.
  bool minimizeMemoryUsage();
  bool minimizeMemoryUsage2(u32 slack);
  /// Returns the capacity; 0 when the storage is borrowed.
  u32 heapUsage() const override;
  /// Returns `heapUsage` and the size of the record itself.
  u32 totalMemoryUsage() const;
  /// Returns the bytes available from `start`, at most `len`; a `len` of 0 means all.
  u32 calcSegmentSize(u32 start, u32 len) const;

  // ---- Accessors ----

  /// True when no byte is in use.
  bool empty() const { return size_ == 0; }
  /// The number of bytes in use.
  u32 size() const { return size_; }
  u32 getSize() const { return size_; }
  /// The capacity: the bytes of the block.
  u32 getBufSize() const { return capacity_; }
  /// The first byte of the block; null without storage.
  u8* getData2() const { return data_; }
  /// The address of byte `i` of the bytes in use, of the block; null out of range.
  u8* getDataAt2(u32 i) const { return data_ && i < size_ ? data_ + i : nullptr; }
  u8* getBufAt(u32 i) const { return data_ && i < capacity_ ? data_ + i : nullptr; }
  /// Byte `i`, the first byte, the last byte; 0 out of range.
  u8 byteAt(u32 i) const { return data_ && i < size_ ? data_[i] : u8{0}; }
  u8 firstByte() const { return byteAt(0); }
  u8 lastByte() const { return data_ && size_ != 0 ? data_[size_ - 1] : u8{0}; }

  // ---- Clearing: buffer/Storage.cpp ----

  /// Empties the buffer. Owned storage is kept for reuse, borrowed storage forgotten.
  void clear() {
    size_ = 0;
    if (borrowed_) install(nullptr, 0, 0, false);
  }
  /// Zeroes the bytes in use, then empties the buffer; the storage stays, a borrowed one too.
  void secureClear();
  /// Zeroes the bytes in use, then lets the storage go.
  void secureClearWithDeallocate();
  /// Guarded. Lets the storage go.
  void clearWithDeallocate();
  /// Guarded. Zeroes the whole block, all bytes of the capacity; the size does not change.
  void clearBuffer();

  // ---- Ownership: buffer/Ownership.cpp ----
  // What a buffer adopts as owned must have been allocated as `allocByteArray` does. Storage that is replaced is freed
  // when owned and forgotten when borrowed. Only the buffer called is guarded, and only its `secure` flag kept.

  /// Guarded. Takes the storage of `source`, which is left empty. An empty one keeps it; this buffer is cleared.
  void takeData(DataBuffer& source);
  void takeBinaryData(DataBuffer& source) { takeData(source); }
  /// `takeData` of the buffer pointed to; null clears this buffer.
  void takeDataPtr(DataBuffer* source);
  /// Guarded. Takes the storage of `source`, also an empty one's, and leaves this buffer's owned block to it for reuse.
  void takeData_kb(DataBuffer& source);
  /// Exchanges storage and `secure` flags.
  void swapData(DataBuffer& other);

  /// Guarded. Adopts a block of `n` bytes, all in use; the second form of `capacity` bytes, the first `size` in use.
  void takeData(void* block, u32 n) { takeData2(block, n, n); }
  void setData(void* block, u32 n) { takeData2(block, n, n); }
  void takeData2(void* block, u32 size, u32 capacity);
  /// Guarded. Refers to `n` bytes that the caller keeps alive and releases. In-place edits write into them.
  void borrowData(void* block, u32 n) {
    if (!isValid()) return;
    releaseStorage();
    install(static_cast<u8*>(block), n, n, true);
  }

  /// Guarded. Returns the block and leaves the buffer empty: a block that was owned is the caller's now.
  u8* removeData();
  /// Forgets the storage without releasing it.
  void dropData();
  /// Guarded. Returns the block; where there is none, installs four zero bytes with size 0. Null when memory runs out.
  u8* getDataSafe4();
  /// Guarded. Takes the string's storage and content; the string is left empty.
  void takeString(StringBuffer& text);
  /// Makes the content end in exactly one zero byte, counted in the size, for a `StringBuffer` to adopt.
  bool prepForSbTake();

  /// Guarded. Replaces content and capacity by a copy of those of `source`; empty where memory runs out.
  void copy(const DataBuffer& source);
  /// Guarded. Replaces the content by a copy of `n` bytes in a block of exactly `n`. Empty where memory runs out.
  void copyData(const void* source, u32 n);
  /// Sets the size, clamped to the capacity, for bytes that were written through a pointer.
  void setDataSize_CAUTION(u32 n) { size_ = n < capacity_ ? n : capacity_; }

  // ---- Appending: buffer/Append.cpp ----
  // All are guarded and false, the buffer unchanged, when memory or the size limit stands in the way. A null source or
  // a count of 0 appends nothing and answers true.

  /// Appends `n` bytes.
  bool append(const void* source, u32 n) {
    const u64 end = u64{size_} + n;
    // An end of 0 goes the slow way: there may be no block to copy into.
    if (end - 1 < writable_ && validity_ == kValid && source) [[likely]] {
      __builtin_memmove(data_ + size_, source, n);
      size_ = static_cast<u32>(end);
      return true;
    }
    return appendSlow(source, n);
  }
  /// Appends the bytes in use of another buffer, the characters of a string, a NUL-terminated text without its NUL.
  bool append(const DataBuffer& other) { return append(other.data_, other.size_); }
  bool append(const StringBuffer& text);
  bool appendStr(const char* text);
  /// Appends up to `n` bytes of `source` from offset `start`, what there is of them; false when `start` is at or past
  /// its end. The second form appends all `n` or fails.
  bool appendRange(const DataBuffer& source, u32 start, u32 n);
  bool appendRange2(const DataBuffer& source, u32 start, u32 n);
  /// Appends `n` bytes, last byte first when `reverse`.
  bool appendReverse(const void* source, u32 n, bool reverse);
  /// Appends one byte.
  bool appendChar(u8 c) {
    const u32 at = size_;
    if (at < writable_ && validity_ == kValid) [[likely]] {
      data_[at] = c;
      size_ = at + 1;
      return true;
    }
    return appendCharSlow(c);
  }
  bool push_back(u8 c) { return appendChar(c); }
  /// Appends two bytes, as one step.
  bool appendChar2(u8 c1, u8 c2);
  /// Appends `n` copies of a byte; an `n` of 0 is true even on a destroyed object.
  bool appendCharN(u8 c, u32 n);
  /// Appends `n` random bytes from the operating system's generator.
  bool appendRandomBytes(u32 n);
  /// Appends the content of a view without consuming it. The caller keeps the view from changing meanwhile.
  bool appendView(DataBufferView& view);

  // ---- Editing: buffer/Edit.cpp ----

  /// Guarded. Inserts `n` bytes at the front, at `pos` (the end when `pos` is past it). A null source or 0 is true.
  bool prepend(const void* source, u32 n);
  bool insertAt(u32 pos, const void* source, u32 n);
  /// Guarded. Removes the first `n` bytes; all of them empties as `clear` does.
  void removeHead(u32 n);
  /// Removes `n` bytes from offset `start`, what there is of them. False only for a negative `start`.
  bool removeChunk(s32 start, s32 n);
  /// Removes the last `n` bytes.
  void shorten(u32 n);
  /// Keeps only the last `n` bytes; nothing happens for 0 and when there are no more. The logger receives nothing.
  void slideTailToFront(u32 n, LogBase& log);
  /// Sets the size to `n`; what is new is zero. False, unchanged, when it cannot grow.
  bool resize(u32 n);
  /// Makes the buffer a XOR b, byte by byte; either may be this one. False when their sizes differ or it cannot grow.
  bool exclusiveOr(const DataBuffer& a, const DataBuffer& b);
  /// ANDs the first bytes with those of the mask, as far as both reach. Null does nothing.
  void applyMask(const void* mask, u32 n);
  /// Compares the bytes in use with another buffer's, with `n` bytes at `p`; null equals only an empty buffer.
  bool equals(const DataBuffer& other) const;
  bool equals2(const void* p, u32 n) const;

  // ---- Binary fields written: buffer/Fields.cpp ----
  // Each appends its value whole or fails as `append` does. `_le` is least significant byte first, `_be` most
  // significant first, on any processor; the first three write the host's own order.

  /// Appends the value in the host's own order.
  bool append_u16(u16 value);
  bool append_u32(u32 value);
  bool append_u64(u64 value);
  /// Appends the value in the order of the name.
  bool appendUint16_le(u16 value);
  bool appendUint16_be(u16 value);
  bool appendUint32_le(u32 value);
  bool appendUint32_be(u32 value);
  bool appendInt64_le(s64 value);
  bool appendInt64_be(s64 value);
  /// The bits of IEEE 754 binary64.
  bool appendDouble_le(double value);
  /// Appends `n` bytes of UTF-16LE text unchanged; null or 0 appends nothing and answers true.
  bool appendUtf16_le(const void* text, u32 n) { return !text || n == 0 || append(text, n); }

  /// Exchanges the bytes of every complete pair. Reverses every complete group of 4, and the 2 or 3 bytes left over.
  void byteSwap21();
  void byteSwap4321();
  /// Copies `n` (at most 40) bytes from `offset` to `out`, reversed unless `sameOrder`. False, `out` untouched, when
  /// they do not all lie in the bytes in use, or `out` is null.
  bool getLittleEndian40(bool sameOrder, u32 offset, u32 n, u8* out) const;

  // ---- Binary fields read back: buffer/Cursor.cpp ----
  // A cursor is a byte index that the caller holds. A read that succeeds moves it past the field; a read that fails
  // leaves it where it was and sets an integer result to 0. Reads go by the size, never by the capacity.

  /// Reads one byte; `out` is untouched on failure.
  bool parseByte(u32& cursor, u8& out) const;
  /// Moves past one byte when it is the one expected.
  bool expectByte(u32& cursor, u8 expected) const;
  bool parseUint16(u32& cursor, bool littleEndian, u16& out) const;
  bool parseUint32(u32& cursor, bool littleEndian, u32& out) const;
  bool parseInt64(u32& cursor, bool littleEndian, s64& out) const;
  /// Appends the next `n` bytes to `out`, unchanged on failure. An `n` of 0 is true wherever the cursor stands.
  bool parseData(u32& cursor, u32 n, DataBuffer& out) const;
  bool parseString(u32& cursor, u32 n, StringBuffer& out) const;

  // ---- Text encodings by name: encoding/ ----
  // See `vkbuf names` for the names. White space around a name and its letter case do not count.

  /// Appends `numBytes` bytes at `data` to `out`, encoded under a name. False when the encoder fails (what it appended
  /// stays), and for a name that is none: `out` is emptied then. `data` may be null when `numBytes` is 0.
  static bool encodeDB2(const char* encoding, const u8* data, u32 numBytes, StringBuffer& out);
  /// The same over the whole buffer.
  bool encodeDB(const char* encoding, StringBuffer& out) const;
  /// The same over up to `count` bytes from `start`; false, `out` untouched, when `start` is at or past the end.
  bool getEncodedRange(const char* encoding, u32 start, u32 count, StringBuffer& out) const;
  /// Renders the `numBytes` bytes at a cursor and moves it past them, whatever the encoder answers. False, the cursor
  /// unmoved, when they do not all lie in the bytes in use or memory runs out.
  bool parseDataEnc(u32& index, u32 numBytes, const char* encoding, StringBuffer& out) const;

  /// Appends the bytes that a NUL-terminated text stands for under the name of an encoding; under the name of a
  /// charset, the UTF-8 text converted into it. What was decoded before a fault stays. A null or empty text is true;
  /// null `name` false.
  bool appendEncoded(const char* text, const char* name);
  /// The same by number: 0 to 37 are encodings (see `_clsEncode`), all others code pages.
  bool appendEncodedById(const char* text, s32 id);
  /// Appends the bytes of a list of decimal values; separators and what is no number are skipped. False at a value
  /// above 255: the bytes before it stay.
  bool appendDecList(const char* text);

  /// Appends two upper-case hex digits a byte, with `:` between bytes when `colons`.
  static void toHexString2(const u8* data, u32 numBytes, bool colons, StringBuffer& out);
  /// Guarded. The same over the whole buffer, without colons.
  void toHexString(StringBuffer& out) const;
  /// Guarded. Appends hex in lines of `bytesPerLine` bytes ended by CR LF, and a CR LF at the end; one line for 0 or
  /// less.
  void toHexLines(StringBuffer& out, s32 bytesPerLine) const;

  // ---- XML charset: text/XmlCharset.cpp ----

  /// Turns an XML document in any charset into UTF-8, in place: by its byte-order mark, by the zero bytes of its head,
  /// or by the `encoding` of its declaration, which is left as written. Where no sign is found nothing changes. False
  /// only without storage or when memory runs out for the search.
  bool convertXmlToUtf8(LogBase& log);
  /// Replaces `charset` by the value of the first `encoding=` of the text, as written. False when there is none.
  bool getXmlCharset(StringBuffer& charset);
  static bool getXmlCharset2(const char* xml, StringBuffer& charset);

  // ---- Charset detection and Unicode: text/Unicode.cpp ----

  /// Guarded (-1). Returns the code page that a byte-order mark or a pattern of zero bytes makes obvious (1200, 1201,
  /// 12000, 12001, 65001), or -1.
  s32 detectObviousCodePage() const;
  /// Guarded. True when the first `maxBytes` bytes (all for 0) are below 0x80.
  bool is7bit(u32 maxBytes) const;
  /// True when the content holds the UTF-8 form of a character from U+0080 to U+00FF and does not convert from
  /// `codePage`.
  bool isReallyUtf8(s32 codePage);
  /// Returns how many bytes (0 to 3) at the end begin a UTF-8 character that is not complete.
  u32 numPartialTrailingUtf8Bytes() const;
  /// Replaces `out` by the content decoded from a named charset; what does not decode becomes U+FFFD.
  void toXString(const char* charsetName, XString& out);
  /// Replaces `out` by the UTF-16LE content in UTF-8; the second form's `out` is another buffer.
  void cvUnicodeToUtf8(StringBuffer& out) const;
  void cvUnicodeToUtf8_db(DataBuffer& out) const;
  /// Guarded. Appends a text of UTF-16 (UTF-32) units with its zero unit; null appends the zero unit alone.
  bool appendNullTerminatedUtf16_xe(const u8* text);
  bool appendNullTerminatedUtf32_xe(const u8* text);

  // ---- Text clean-up: text/CleanUp.cpp, text/Scans.cpp ----
  // Each is one pass in place. What stays keeps its order, and the capacity is kept. All are guarded but
  // `removeByteValue` and `reverseBytes`.

  /// Undoes the dot-stuffing of POP3 (RFC 1939 section 3): of two dots after a line feed one stays.
  void processRawPopMime();
  /// Removes colour sequences (ESC [ ... m of at most 16 bytes, ECMA-48) and the probe of a terminal's size.
  void stripTerminalColorCodes();
  /// True when a CR or LF stands outside a CR LF pair.
  bool containsBareCRLF() const;
  /// True when a line, its CR and LF not counted, is longer than `maxLen` bytes.
  bool hasLineLonger(u32 maxLen) const { return isValid() && size_ > maxLen && findLongLine(maxLen); }
  /// Returns the first byte equal to `b`, or null.
  u8* findByte(u8 b);
  bool containsChar(char c) const;
  /// Turns every byte `from` into `to`, all 256 values.
  void replaceChar(char from, char to);
  void removeByteValue(u8 b);
  /// Keeps the bytes 0x01 to 0x7F.
  void drop_non_usascii();
  void reverseBytes();
  /// Appends the bytes that are not zero among `n` at `bytes`; room for all `n` is made. False, unchanged, without
  /// memory.
  bool appendSkipNulls(const u8* bytes, u32 n);
  /// Keeps the bytes at even indexes.
  void dropNullBytes();
  /// True when there are two bytes at least and each one at an odd index is zero.
  bool altBytesNull() const;

  // ---- UTF-16 clean-up: text/CleanUpW.cpp ----
  // The content is taken as code units in host order, at any address; a last odd byte is none. A unit argument of 0
  // does nothing. None is guarded.

  /// Removes every unit equal to `ch`, and a last odd byte.
  void removeCharOccurancesW(u16 ch);
  void replaceCharW(u16 from, u16 to);
  /// Turns the first (last) unit equal to `ch` into 0 and cuts behind it. False when there is none: only a last odd
  /// byte goes.
  bool chopAtFirstCharW(u16 ch);
  bool chopAtLastCharW(u16 ch);
  /// Maps each unit by `Utf16Case`.
  void toUppercaseW();
  void toLowercaseW();

  // ---- Combining marks: text/CombiningMarks.cpp ----

  /// Guarded. Composes ASCII letters with the combining marks U+0300 to U+0303, U+0308, U+030A and U+0326 behind them,
  /// in UTF-8, where a precomposed letter of Western Europe exists. One byte shorter for each.
  void consumeUtf8CombiningMarks();

  // ---- Search: search/Find.cpp ----
  // Bytes are compared exactly; the first occurrence is found. A pattern may be null only when its length is 0.

  /// Returns the first occurrence of a pattern in a range, null for none. A pattern of length 0 is found at the start.
  static const u8* findBytes2(const u8* haystack, u32 haystackLen, const u8* pattern, u32 patternLen);
  /// The same over the buffer; a negative length finds nothing.
  const u8* findBytes(const u8* pattern, s32 patternLen) const;
  /// Searches from `startIndex` on; returns the index of the occurrence, counted from the buffer's start, and sets
  /// `found`. 0 and not found when there is none.
  u32 findBytesIdx(const u8* pattern, s32 patternLen, bool& found, u32 startIndex) const;
  /// True when the buffer has storage and begins with `n` bytes at `prefix`.
  bool beginsWith(const u8* prefix, s32 n) const;
  /// True when the buffer ends with the text; an empty text ends every buffer.
  bool endsWithStr(const char* text) const;
  /// True when the text lies whole in the `maxLen` bytes from `startIndex` (to the end for 0). `index` receives where,
  /// or the index past the last one tried.
  bool containsSubstring2(const char* text, u32 startIndex, u32 maxLen, u32& index) const;
  bool containsSubstring(const char* text, u32 maxLen) const;

  // ---- Replace: search/Replace.cpp ----

  /// Replaces every occurrence of a pattern, left to right without overlap, and returns their count; what is inserted
  /// is not searched again. A null or empty replacement deletes. 0, the buffer unchanged, where nothing is found or
  /// memory runs out at the start; where it runs out later the result is shortened.
  u32 replaceAllOccurances(const u8* find, u32 findLen, const u8* replacement, u32 replacementLen);
  /// The same for the UTF-16LE bytes of two texts, at any byte offset.
  u32 replaceUnicodeString(XString& find, XString& replacement);
  /// The same on UTF-16 units in host order, letter case ignored (`vk_findUtf16NoCase`); a last odd byte goes.
  u32 replaceAllOccurancesUtf16NoCase(XString& find, XString& replacement);

  // ---- Whole files: files/WholeFile.cpp ----

  /// Replaces the content by the whole file, with 32 zero bytes behind it inside the capacity. False when the file
  /// cannot be read (the buffer is empty then), is too large (4,294,967,264 bytes and more), or ends early (the size is
  /// the file's length then, what was not read is zero). Refused permission leaves the buffer as it was.
  bool loadFileX(XString& path, LogBase& log);
  /// Guarded. The same by a UTF-8 path; `log` may be null.
  bool loadFileUtf8(const char* path, LogBase* log);
  /// Guarded. Writes the bytes in use to a file, whole or not at all; see `_vkFileSys::writeFileUtf8`.
  bool db_saveToFileUtf8(const char* path, LogBase* log) const;

  // ---- Parts of files: files/PartialFile.cpp ----
  // A header-prefixed file begins with the length of its header, 4 bytes little-endian that count themselves; the body
  // follows the header. All are guarded and leave the buffer empty on failures past the permission check.

  /// Replaces `header` by the header's bytes and the content by the body, with 4 zero bytes behind it inside the
  /// capacity. A file shorter than 4 bytes is true, with an error logged and the buffer empty. After a short read of
  /// the body the size is the body's length, what was not read is zero, and the answer false.
  bool loadFileWithHeaderUtf8(const char* path, DataBuffer& header, u32 maxHeaderLen, LogBase& log);
  /// Replaces the content by the header's bytes; the body is not read. Asks for the permission to write.
  bool loadCacheHeaderUtf8(const char* path, u32 maxHeaderLen, LogBase& log);
  /// Replaces the content by up to `maxLen` bytes of the file from `offset`, in a block of exactly their number. A null
  /// path, negative offset or `maxLen` of 0 is false with the buffer as it was.
  bool loadFileChunk(const char* path, s64 offset, u32 maxLen, LogBase& log);

  // ---- Block-cipher padding: padding/Pad.cpp, padding/Unpad.cpp ----
  // Schemes: 0 PKCS #7 (RFC 5652 section 6.3), 1 FIPS 81 (random bytes, then the length), 2 random, 3 zeros, 4 spaces.
  // Padding tells nothing about the origin of the data: authenticate first, then unpad.

  /// Guarded. Pads to a multiple of `blockSize` (8 when it is 8, else 16) and returns the pad's length, 0 for no
  /// scheme.
  u32 padForEncryption(s32 scheme, s32 blockSize, LogBase& log);
  /// Guarded. Becomes a copy of `src` with a pad of scheme 0, 1 or 2 for blocks of 1 to 16 bytes, without spare
  /// capacity; unchanged for other schemes and sizes, empty where memory runs out. `src` is another buffer.
  void copyAndPadForEncryption(const DataBuffer& src, s32 scheme, s32 blockSize, LogBase& log);
  /// Guarded. Removes a pad of scheme 0 or 1; true also when there is none or a malformed one, which stays.
  bool unpadAfterDecryption(s32 scheme, s32 blockSize, LogBase& log);
  /// Guarded. True when the buffer ends in TLS padding (RFC 5246 section 6.2.3.2); each failure is one error in the
  /// log.
  bool verifyTlsPadding(LogBase& log);

 private:
  static constexpr u8 kValid = 219;

  bool isValid() const {
    if (validity_ != kValid) return reportDamage();
    return true;
  }
  bool reportDamage() const;
  void release();
  bool appendSlow(const void* source, u32 n);
  bool appendCharSlow(u8 c);
  bool makeRoomForChars(u32 k);
  bool findLongLine(u32 maxLen) const;
  bool makeRoom(u32 n);
  bool fits(u64 n) const { return !vk64::TooBigForUnsigned32(static_cast<s64>(size_ + n)); }
  bool ownsAddress(const void* p) const { return data_ && p >= data_ && p < data_ + capacity_; }
  bool stage(const void* source, u32 n, DataBuffer& staged) const;
  void insertInto(u32 pos, const void* source, u32 n);
  void replaceBy(const u8* from, u32 n, u32 capacity);
  void releaseStorage() {
    if (data_ && !borrowed_) delete[] data_;
  }
  void deallocate();
  void install(u8* block, u32 size, u32 capacity, bool borrowed) {
    data_ = block;
    size_ = size;
    capacity_ = capacity;
    borrowed_ = borrowed;
    writable_ = block ? capacity : 0;
  }

  u32 size_ = 0;          // bytes in use; never above capacity_
  u32 capacity_ = 0;      // bytes of the block
  u8 validity_ = kValid;  // kValid until the destructor runs, 0 from then on
  u8 borrowed_ = 0;       // the block is a caller's: never released here
  u32 writable_ = 0;      // capacity_ where there is a block, else 0: what the inline appends compare with
  u8* data_ = nullptr;

 public:
  /// When set, the destructor zeroes the bytes in use before it releases the block. No operation sets it: the owner of
  /// a secret does. Growth abandons the old block as it is, so reserve before the secret goes in.
  u8 secure = 0;
};
