// The general road from charset to charset: through UTF-16 in host order, a block at a time.
#pragma once

#include "varnik/services/charset/internal/DoubleByteTable.h"
#include "varnik/services/charset/internal/IcuConverter.h"
#include "varnik/services/charset/internal/SingleByteTable.h"
#include "varnik/services/charset/internal/UtfAppend.h"

namespace vk_charset {

/// True when units[0, n) begin with a character of two units.
inline bool beginsSurrogatePair(const u16* units, u32 n) {
  return n > 1 && (units[0] & 0xFC00) == 0xD800 && (units[1] & 0xFC00) == 0xDC00;
}

/// Turns a text into UTF-16 units, block after block.
class UnitReader {
 public:
  UnitReader(const u8* data, u32 n) : data_(data), n_(n) {}
  virtual ~UnitReader() = default;
  UnitReader(const UnitReader&) = delete;
  UnitReader& operator=(const UnitReader&) = delete;

  /// Writes up to `room` (at least 16) units and returns their count. False when the charset's converter fails.
  virtual bool read(u16* units, u32 room, u32& count) = 0;
  /// True when all units of the text have been written.
  virtual bool atEnd() const { return at_ == n_; }
  /// True once a part of the text was bad.
  bool bad() const { return bad_; }

 protected:
  const u8* data_;
  u32 n_;
  u32 at_ = 0;
  bool bad_ = false;
};

class UtfReader : public UnitReader {
 public:
  UtfReader(vk_simd::Utf form, const u8* data, u32 n) : UnitReader(data, n), form_(form) {}
  bool read(u16* units, u32 room, u32& count) override;

 private:
  vk_simd::Utf form_;
};

class SingleByteReader : public UnitReader {
 public:
  SingleByteReader(const SingleByteTable& table, const u8* data, u32 n) : UnitReader(data, n), table_(table) {}
  bool read(u16* units, u32 room, u32& count) override;

 private:
  const SingleByteTable& table_;
};

class DoubleByteReader : public UnitReader {
 public:
  DoubleByteReader(DoubleByteTable& table, const char* converter, const u8* data, u32 n)
      : UnitReader(data, n), table_(table), icu_(converter) {}
  bool read(u16* units, u32 room, u32& count) override;

 private:
  u32 readAscii(u16* units, u32 room);
  u32 readBlock(u16* units, u32 room);
  u16 readPair(u32& at);

  DoubleByteTable& table_;
  IcuConverter icu_;  // opened only where the table lacks a row
};

/// ICU's charsets. Runs of ASCII go past ICU where `asciiBytes` says that a byte below 0x80 at the start of a character
/// is ASCII.
class IcuReader : public UnitReader {
 public:
  IcuReader(const char* name, bool asciiBytes, const u8* data, u32 n)
      : UnitReader(data, n), icu_(name), asciiBytes_(asciiBytes), ended_(n == 0) {}
  bool read(u16* units, u32 room, u32& count) override;
  bool atEnd() const override { return ended_; }

 private:
  u32 readAscii(u16* units, u32 room);

  IcuConverter icu_;
  bool asciiBytes_;
  bool icuHasMore_ = false;  // ICU still holds units that it had no room for
  bool ended_;
};

/// Appends UTF-16 units to a buffer in some charset. A pair of surrogates never comes in two calls.
class UnitWriter {
 public:
  explicit UnitWriter(DataBuffer& out) : out_(out) {}
  virtual ~UnitWriter() = default;
  UnitWriter(const UnitWriter&) = delete;
  UnitWriter& operator=(const UnitWriter&) = delete;

  /// False when memory runs out or the charset's converter fails. `last` closes the text.
  virtual bool write(const u16* units, u32 n, bool last) = 0;
  /// True once a unit was ill-formed or had no form in the charset.
  bool bad() const { return bad_; }

 protected:
  DataBuffer& out_;
  bool bad_ = false;
};

class UtfWriter : public UnitWriter {
 public:
  UtfWriter(vk_simd::Utf form, DataBuffer& out) : UnitWriter(out), form_(form) {}
  bool write(const u16* units, u32 n, bool last) override;

 private:
  vk_simd::Utf form_;
};

class SingleByteWriter : public UnitWriter {
 public:
  SingleByteWriter(const SingleByteTable& table, DataBuffer& out) : UnitWriter(out), table_(table) {}
  bool write(const u16* units, u32 n, bool last) override;

 private:
  const SingleByteTable& table_;
};

class DoubleByteWriter : public UnitWriter {
 public:
  DoubleByteWriter(DoubleByteTable& table, const char* converter, DataBuffer& out)
      : UnitWriter(out), table_(table), icu_(converter) {}
  bool write(const u16* units, u32 n, bool last) override;

 private:
  bool findCode(u16 unit, u16& code);

  DoubleByteTable& table_;
  IcuConverter icu_;  // opened only where the table lacks a row
};

class IcuWriter : public UnitWriter {
 public:
  IcuWriter(const char* name, bool asciiBytes, DataBuffer& out)
      : UnitWriter(out), icu_(name), asciiBytes_(asciiBytes) {}
  bool write(const u16* units, u32 n, bool last) override;

 private:
  bool writeAscii(const u16* units, u32 n);
  bool writeOthers(const u16* units, u32 n, bool last);

  IcuConverter icu_;
  bool asciiBytes_;
};

/// Sends the whole text from reader to writer. True when memory sufficed and no part was bad.
bool pump(UnitReader& reader, UnitWriter& writer);

}  // namespace vk_charset
