// Binary fields of fixed width appended, and the byte order of whole contents changed.
#include <bit>
#include <cstring>
#include <utility>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/simd/Reverse.h"
#include "varnik/simd/SwapBytes.h"

namespace {

// The bytes of a value, by arithmetic and so the same on any processor.
template <class Unsigned>
struct FieldBytes {
  FieldBytes(Unsigned value, bool littleEndian) {
    for (u32 i = 0; i < sizeof value; ++i)
      bytes[littleEndian ? i : sizeof value - 1 - i] = static_cast<u8>(u64{value} >> (8 * i));
  }
  u8 bytes[sizeof(Unsigned)];
};

template <class Unsigned>
bool appendField(DataBuffer& out, Unsigned value, bool littleEndian) {
  const FieldBytes<Unsigned> field(value, littleEndian);
  return out.append(field.bytes, sizeof field.bytes);
}

}  // namespace

bool DataBuffer::append_u16(u16 value) {
  return append(&value, sizeof value);
}
bool DataBuffer::append_u32(u32 value) {
  return append(&value, sizeof value);
}
bool DataBuffer::append_u64(u64 value) {
  return append(&value, sizeof value);
}

bool DataBuffer::appendUint16_le(u16 value) {
  return appendField(*this, value, true);
}
bool DataBuffer::appendUint16_be(u16 value) {
  return appendField(*this, value, false);
}
bool DataBuffer::appendUint32_le(u32 value) {
  return appendField(*this, value, true);
}
bool DataBuffer::appendUint32_be(u32 value) {
  return appendField(*this, value, false);
}
bool DataBuffer::appendInt64_le(s64 value) {
  return appendField(*this, static_cast<u64>(value), true);
}
bool DataBuffer::appendInt64_be(s64 value) {
  return appendField(*this, static_cast<u64>(value), false);
}
bool DataBuffer::appendDouble_le(double value) {
  return appendField(*this, std::bit_cast<u64>(value), true);
}

void DataBuffer::byteSwap21() {
  if (data_) vk_simd::swapPairs(data_, size_ / 2 * 2);
}

void DataBuffer::byteSwap4321() {
  if (!data_) return;
  const u32 whole = size_ / 4 * 4;
  vk_simd::swapFours(data_, whole);
  if (whole != size_) vk_simd::reverseInPlace(data_ + whole, size_ - whole);
}

bool DataBuffer::getLittleEndian40(bool sameOrder, u32 offset, u32 n, u8* out) const {
  constexpr u32 kMost = 40;
  if (n > kMost || !out || !data_ || offset >= size_ || n > size_ - offset) return false;
  if (sameOrder) {
    std::memmove(out, data_ + offset, n);
  } else {
    u8 field[kMost];  // `out` may lie in the buffer itself
    vk_memcpy(field, data_ + offset, n);
    vk_simd::reverseCopy(out, field, n);
  }
  return true;
}
