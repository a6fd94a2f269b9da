#pragma once

#include "varnik/secrets/SecretData.h"

class StringBuffer;
class XString;

/// A `SecretData` for text: hands the secret out as a `StringBuffer`, an `XString` or a `DataBuffer`.
class VARNIK_API SecretString : public SecretHolderBase {
 public:
  /// Replaces the secret by the bytes of a NUL-terminated text, the NUL not included; null is an empty secret.
  bool setSecString(DataBuffer& key, const char* text, LogBase& log);
  /// Replaces `out` by the secret, as in `SecretData::getSecret`. The string's storage is wiped when it goes; the
  /// second form takes the bytes as UTF-8.
  bool getSecString(DataBuffer& key, StringBuffer& out, LogBase& log);
  bool getSecStringX(DataBuffer& key, XString& out, LogBase& log);
  bool getSecData(DataBuffer& key, DataBuffer& out, LogBase& log);
  bool isEmpty() const { return secret_.isEmpty(); }
  u32 getEncryptedSize() const { return secret_.getEncryptedSize(); }
  void secureClear() { secret_.secureClear(); }

 private:
  SecretData secret_;
};
