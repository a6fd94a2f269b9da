#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class StringBuffer;
class XString;

/// Receives what operations have to tell beside their result: errors, named values, and the context they arose in.
///
/// The base class discards everything. A logger of one's own overrides the virtual operations it cares for; each
/// operation below that is not virtual ends in one that is. Texts and bytes are only valid during the call.
class VARNIK_API LogBase {
 public:
  LogBase() = default;
  LogBase(const LogBase&) = default;
  LogBase& operator=(const LogBase&) = default;
  virtual ~LogBase();

  /// Records one error entry whose text is taken word for word.
  virtual void LogError(const char* text);
  /// Records one error entry; ends in `LogError`.
  void LogError_lcr(const char* text) { LogError(text); }

  /// Records a NUL-terminated text under a tag.
  virtual void LogDataStr(const char* tag, const char* text);
  /// Records `n` bytes of text under a tag.
  virtual void LogTextN(const char* tag, const char* text, u32 n);
  /// Records `n` bytes under a tag, to be shown as hex.
  virtual void LogDataHex(const char* tag, const u8* data, u32 n);

  /// Records one named value; each of these ends in `LogDataStr` or `LogTextN`.
  void LogDataLong(const char* tag, long value);
  void LogDataInt64(const char* tag, s64 value);
  void LogDataUint32(const char* tag, u32 value);
  void LogDataX(const char* tag, XString& text);
  void LogDataSb(const char* tag, const StringBuffer& text);

  /// Opens and closes a named context around the entries in between; see `LogContextExitor`.
  virtual void enterContext(const char* name);
  virtual void leaveContext();

  /// The verbose flag, clear at first: callers test it before they record optional detail.
  bool verbose() const { return verbose_; }
  void setVerbose(bool on) { verbose_ = on; }

 private:
  bool verbose_ = false;
};

/// A logger that discards everything, for services that demand one where nothing is to be recorded.
class LogNull : public LogBase {};

/// Enters a named context of a logger, and leaves it when the scope ends.
class LogContextExitor {
 public:
  LogContextExitor(LogBase& log, const char* name) : log_(log) { log_.enterContext(name); }
  ~LogContextExitor() { log_.leaveContext(); }
  LogContextExitor(const LogContextExitor&) = delete;
  LogContextExitor& operator=(const LogContextExitor&) = delete;

 private:
  LogBase& log_;
};
