#include "varnik/services/charset/internal/SingleByteTable.h"

#include <atomic>
#include <cstring>

#include "varnik/services/charset/internal/IcuConverter.h"
#include "varnik/simd/internal/UtfForms.h"

namespace vk_charset {
namespace {

// ISO-8859-16 from 0xA0 on (ISO/IEC 8859-16:2001), which ICU does not have; below it is ISO-8859-1.
constexpr u16 kLatin10[96] = {
    0x00A0, 0x0104, 0x0105, 0x0141, 0x20AC, 0x201E, 0x0160, 0x00A7, 0x0161, 0x00A9, 0x0218, 0x00AB, 0x0179, 0x00AD,
    0x017A, 0x017B, 0x00B0, 0x00B1, 0x010C, 0x0142, 0x017D, 0x201D, 0x00B6, 0x00B7, 0x017E, 0x010D, 0x0219, 0x00BB,
    0x0152, 0x0153, 0x0178, 0x017C, 0x00C0, 0x00C1, 0x00C2, 0x0102, 0x00C4, 0x0106, 0x00C6, 0x00C7, 0x00C8, 0x00C9,
    0x00CA, 0x00CB, 0x00CC, 0x00CD, 0x00CE, 0x00CF, 0x0110, 0x0143, 0x00D2, 0x00D3, 0x00D4, 0x0150, 0x00D6, 0x015A,
    0x0170, 0x00D9, 0x00DA, 0x00DB, 0x00DC, 0x0118, 0x021A, 0x00DF, 0x00E0, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x0107,
    0x00E6, 0x00E7, 0x00E8, 0x00E9, 0x00EA, 0x00EB, 0x00EC, 0x00ED, 0x00EE, 0x00EF, 0x0111, 0x0144, 0x00F2, 0x00F3,
    0x00F4, 0x0151, 0x00F6, 0x015B, 0x0171, 0x00F9, 0x00FA, 0x00FB, 0x00FC, 0x0119, 0x021B, 0x00FF,
};

void setByte(SingleByteTable& table, u32 byte, u32 unit) {
  using vk_simd::Utf8;
  u8 text[4] = {};
  Utf8::encode(unit, text);
  table.unit[byte] = static_cast<u16>(unit);
  table.utf8[byte] = static_cast<u32>(text[0] | text[1] << 8 | text[2] << 16) | Utf8::size(unit) << 24;
}

// Makes a byte the form of a unit; false when there are more blocks of units than a charset can have.
bool setUnit(SingleByteTable& table, u32 unit, u32 byte) {
  u8& block = table.blockOf[unit >> 6];
  if (block == 0) {
    if (table.numBlocks == SingleByteTable::kMaxBlocks) return false;
    block = table.numBlocks++;
  }
  table.bytes[block][unit & 63] = static_cast<u8>(byte);
  return true;
}

// Where ICU's table for a DOS code page departs from the code page as Windows and all others have it.
constexpr struct {
  s32 id;
  u8 byte;
  u16 unit;
} kCorrections[] = {{437, 0xE6, 0x00B5}, {852, 0xAA, 0x00AC}, {860, 0xE6, 0x00B5}, {861, 0xE6, 0x00B5},
                    {862, 0xE6, 0x00B5}, {863, 0xE6, 0x00B5}, {865, 0xE6, 0x00B5}, {869, 0xEF, 0x0384}};

// Many of ICU's tables for the DOS code pages move three controls: 0x1A to U+001C, 0x1C to U+007F, 0x7F to U+001A. In
// the code pages themselves, and for all other converters, they are the ASCII controls.
u32 withoutMovedControls(u32 byte, u32 unit) {
  const bool moved = (byte == 0x1A && unit == 0x1C) || (byte == 0x1C && unit == 0x7F) || (byte == 0x7F && unit == 0x1A);
  return moved ? byte : unit;
}

bool fromIcu(const char* name, SingleByteTable& table) {
  IcuConverter icu(name);
  for (u32 i = 0; i < 256; ++i) {
    const u8 byte = static_cast<u8>(i);
    u16 units[8];
    icu.forgetBad();
    const auto to = icu.toUnits(&byte, 1, units, 8, true);
    if (to.result != IcuConverter::Result::kDone || to.written != 1) return false;
    if (icu.bad()) {
      setByte(table, i, vk_simd::kReplacement);
      table.utf8[i] |= vk_simd::kNoCharacter;
      continue;
    }
    u8 back[8];
    const auto from = icu.fromUnits(units, 1, back, 8, true);
    if (from.result != IcuConverter::Result::kDone) return false;
    const u32 unit = withoutMovedControls(i, units[0]);
    setByte(table, i, unit);
    // A second byte for a character reads as it, but is not what it is written as.
    const bool isForm = !icu.bad() && from.written == 1 && back[0] == byte;
    if (isForm && !setUnit(table, unit, i)) return false;
  }
  return true;
}

void correct(SingleByteTable& table, u32 byte, u32 unit) {
  const u32 before = table.unit[byte];
  if (table.blockOf[before >> 6] != 0) table.bytes[table.blockOf[before >> 6]][before & 63] = 0;
  setByte(table, byte, unit);
  setUnit(table, unit, byte);
}

bool latin10(SingleByteTable& table) {
  for (u32 i = 0; i < 256; ++i) {
    const u32 unit = i < 0xA0 ? i : kLatin10[i - 0xA0];
    setByte(table, i, unit);
    if (!setUnit(table, unit, i)) return false;
  }
  return true;
}

bool build(const CharsetInfo& charset, SingleByteTable& table) {
  std::memset(&table, 0, sizeof table);
  table.numBlocks = 1;
  if (!(charset.converter ? fromIcu(charset.converter, table) : latin10(table))) return false;
  for (const auto& right : kCorrections)
    if (right.id == charset.id) correct(table, right.byte, right.unit);
  const auto made = table.charset();
  table.substitute = made.byteOf(kSubstitute);
  const auto isItself = [&](u32 i) { return table.unit[i] == i && made.byteOf(i) == i; };
  u32 first = 0x100;
  while (first > 0x80 && isItself(first - 1)) --first;
  table.latinFrom = first == 0x80 ? 0x80 : first <= 0xA0 ? 0xA0 : 0x100;
  table.ascii = true;
  for (u32 i = 0; i < 0x80; ++i) table.ascii &= isItself(i);
  return true;
}

// The tables that are kept. A slot is free (0), being filled (kFilling) or holds the charset with that id. Two threads
// may fill a slot each for one charset, which costs a slot and nothing else.
constexpr s32 kFilling = -1;
constexpr u32 kNumSlots = 24;
struct Slot {
  std::atomic<s32> id;
  SingleByteTable table;
};
Slot slots[kNumSlots];

}  // namespace

const SingleByteTable* singleByteTable(const CharsetInfo& charset, SingleByteTable& scratch) {
  for (Slot& slot : slots) {
    s32 id = slot.id.load(std::memory_order_acquire);
    if (id == charset.id) return &slot.table;
    if (id != 0 || !slot.id.compare_exchange_strong(id, kFilling, std::memory_order_relaxed)) continue;
    const bool built = build(charset, slot.table);
    slot.id.store(built ? charset.id : 0, std::memory_order_release);
    return built ? &slot.table : nullptr;
  }
  return build(charset, scratch) ? &scratch : nullptr;
}

}  // namespace vk_charset
