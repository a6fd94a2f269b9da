// The tables of a charset in which a byte is a character, made from ICU's converter.
#pragma once

#include "varnik/services/charset/internal/CharsetTable.h"
#include "varnik/simd/SingleByte.h"

namespace vk_charset {

struct SingleByteTable {
  static constexpr u32 kMaxBlocks = 40;  // blocks of 64 units with a byte in them: no charset needs more than 30

  vk_simd::Utf8Entry utf8[256];
  u16 unit[256];     // the UTF-16 unit of a byte, U+FFFD where it stands for nothing
  u8 blockOf[1024];  // see vk_simd::SingleByteCharset
  u8 bytes[kMaxBlocks][64];
  u8 numBlocks;  // block 0, which stays empty, included
  vk_simd::SingleByteCharset charset() const { return {utf8, blockOf, bytes, substitute, ascii, latinFrom}; }

  u8 substitute;  // the byte of '?'
  bool ascii;     // see vk_simd::SingleByteCharset
  u32 latinFrom;
};

/// Returns the tables of a charset of Kind::kSingleByte; null when ICU cannot supply them. Those of the first charsets
/// that a process uses are kept for its lifetime, those of further ones are made in `scratch` call for call. Any thread
/// may call.
const SingleByteTable* singleByteTable(const CharsetInfo& charset, SingleByteTable& scratch);

}  // namespace vk_charset
