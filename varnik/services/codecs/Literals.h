// Names that several modules share, each a constant NUL-terminated text.
#pragma once

#include "varnik/services/memory/Api.h"

/// The name of base64 without line breaks.
constexpr const char* _vkLit_base64() {
  return "base64";
}
/// The name of quoted-printable.
constexpr const char* _vkLit_quotedPrintable() {
  return "quoted-printable";
}
/// The name of hex in upper case.
constexpr const char* _vkLit_hex() {
  return "hex";
}
/// A name of the plain copy.
constexpr const char* _vkLit_ansi() {
  return "ansi";
}
/// The name of percent-encoding.
constexpr const char* _vkLit_url() {
  return "url";
}
/// The name of the charset UTF-8.
constexpr const char* _vkLit_utf8() {
  return "utf-8";
}
