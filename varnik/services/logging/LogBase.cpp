#include "varnik/services/logging/LogBase.h"

#include <charconv>

#include "varnik/services/memory/Text.h"
#include "varnik/services/strings/StringBuffer.h"
#include "varnik/services/strings/XString.h"

LogBase::~LogBase() = default;

void LogBase::LogError(const char*) {}
void LogBase::LogDataStr(const char*, const char*) {}
void LogBase::LogTextN(const char*, const char*, u32) {}
void LogBase::LogDataHex(const char*, const u8*, u32) {}
void LogBase::enterContext(const char*) {}
void LogBase::leaveContext() {}

void LogBase::LogDataLong(const char* tag, long value) {
  LogDataInt64(tag, value);
}
void LogBase::LogDataUint32(const char* tag, u32 value) {
  LogDataInt64(tag, value);
}

void LogBase::LogDataInt64(const char* tag, s64 value) {
  char digits[24];
  *std::to_chars(digits, digits + sizeof digits - 1, value).ptr = 0;
  LogDataStr(tag, digits);
}

void LogBase::LogDataX(const char* tag, XString& text) {
  LogDataSb(tag, text.getUtf8Sb_rw());
}
void LogBase::LogDataSb(const char* tag, const StringBuffer& text) {
  LogTextN(tag, text.getString(), text.getSize());
}
