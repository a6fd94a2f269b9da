// Names that several modules share, each a constant NUL-terminated text.
#pragma once

#include "varnik/services/memory/Api.h"

inline const char* _vkLit_base64() {
  return "base64";
}
inline const char* _vkLit_quotedPrintable() {
  return "quoted-printable";
}
inline const char* _vkLit_hex() {
  return "hex";
}
inline const char* _vkLit_ansi() {
  return "ansi";
}
inline const char* _vkLit_url() {
  return "url";
}
inline const char* _vkLit_utf8() {
  return "utf-8";
}
