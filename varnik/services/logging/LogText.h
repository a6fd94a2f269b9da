#pragma once

#include "varnik/services/logging/LogBase.h"
#include "varnik/services/strings/StringBuffer.h"

/// A logger that keeps its entries as a text for people to read: a line an entry, indented by two blanks a context.
///
///   loadFileX:
///     error: the file cannot be opened
///     path: /home/ann/letter.xml
///
/// Where memory runs out, an entry is cut; the errors are still counted.
class VARNIK_API LogText : public LogBase {
 public:
  /// Returns the entries so far, NUL-terminated, valid until the next entry.
  const char* getText() const { return text_.getString(); }
  /// Returns the number of error entries since the start or the last `clear`.
  u32 numErrors() const { return numErrors_; }
  /// Forgets the entries and the count; the open contexts stay open.
  void clear();

  void LogError(const char* text) override;
  void LogDataStr(const char* tag, const char* text) override;
  void LogTextN(const char* tag, const char* text, u32 n) override;
  void LogDataHex(const char* tag, const u8* data, u32 n) override;
  void enterContext(const char* name) override;
  void leaveContext() override;

 private:
  void indent();

  StringBuffer text_;
  u32 numErrors_ = 0;
  u32 depth_ = 0;
};
