// Names that several modules share, each a constant NUL-terminated text.
#pragma once

#include "varnik/services/memory/Api.h"

constexpr const char* _vkLit_base64() {
  return "base64";
}
constexpr const char* _vkLit_quotedPrintable() {
  return "quoted-printable";
}
constexpr const char* _vkLit_hex() {
  return "hex";
}
constexpr const char* _vkLit_ansi() {
  return "ansi";
}
constexpr const char* _vkLit_url() {
  return "url";
}
constexpr const char* _vkLit_utf8() {
  return "utf-8";
}
