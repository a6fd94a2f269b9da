#include "varnik/services/logging/LogText.h"

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/memory/Text.h"

namespace {
const char* orEmpty(const char* text) {
  return text ? text : "";
}
}  // namespace

void LogText::clear() {
  text_.weakClear();
  numErrors_ = 0;
}

void LogText::indent() {
  text_.appendCharN(' ', 2 * depth_);
}

void LogText::LogError(const char* text) {
  ++numErrors_;
  LogDataStr("error", text);
}

void LogText::LogDataStr(const char* tag, const char* text) {
  LogTextN(tag, orEmpty(text), vk_strlen(text));
}

void LogText::LogTextN(const char* tag, const char* text, u32 n) {
  indent();
  text_.append(orEmpty(tag));
  text_.append(": ");
  text_.appendN(text, n);
  text_.appendChar('\n');
}

void LogText::LogDataHex(const char* tag, const u8* data, u32 n) {
  StringBuffer hex;
  DataBuffer::toHexString2(data, n, false, hex);
  LogDataSb(tag, hex);
}

void LogText::enterContext(const char* name) {
  indent();
  text_.append(orEmpty(name));
  text_.append(":\n");
  ++depth_;
}

void LogText::leaveContext() {
  if (depth_ != 0) --depth_;
}
