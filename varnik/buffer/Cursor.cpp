// Binary fields read back at a cursor that the caller holds.
#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/strings/StringBuffer.h"

namespace {

// The value of `sizeof(Unsigned)` bytes, by arithmetic and so the same on any processor.
template <class Unsigned>
Unsigned valueOf(const u8* bytes, bool littleEndian) {
  u64 value = 0;
  for (u32 i = 0; i < sizeof(Unsigned); ++i)
    value |= u64{bytes[littleEndian ? i : sizeof(Unsigned) - 1 - i]} << (8 * i);
  return static_cast<Unsigned>(value);
}

// Sets `out` to the field at the cursor and moves the cursor past it; 0 and false where the content ends before.
template <class Unsigned, class Integer>
bool parseField(const DataBuffer& in, u32& cursor, bool littleEndian, Integer& out) {
  out = 0;
  const u8* field = in.getDataAt2(cursor);
  if (!field || in.size() - cursor < sizeof(Unsigned)) return false;
  out = static_cast<Integer>(valueOf<Unsigned>(field, littleEndian));
  cursor += static_cast<u32>(sizeof(Unsigned));
  return true;
}

}  // namespace

bool DataBuffer::parseByte(u32& cursor, u8& out) const {
  if (!data_ || cursor >= size_) return false;
  out = data_[cursor++];
  return true;
}

bool DataBuffer::expectByte(u32& cursor, u8 expected) const {
  if (!data_ || cursor >= size_ || data_[cursor] != expected) return false;
  ++cursor;
  return true;
}

bool DataBuffer::parseUint16(u32& cursor, bool littleEndian, u16& out) const {
  return parseField<u16>(*this, cursor, littleEndian, out);
}
bool DataBuffer::parseUint32(u32& cursor, bool littleEndian, u32& out) const {
  return parseField<u32>(*this, cursor, littleEndian, out);
}
bool DataBuffer::parseInt64(u32& cursor, bool littleEndian, s64& out) const {
  return parseField<u64>(*this, cursor, littleEndian, out);
}

bool DataBuffer::parseData(u32& cursor, u32 n, DataBuffer& out) const {
  if (n == 0) return true;
  const u8* field = getDataAt2(cursor);
  if (!field || n > size_ - cursor || !out.append(field, n)) return false;
  cursor += n;
  return true;
}

bool DataBuffer::parseString(u32& cursor, u32 n, StringBuffer& out) const {
  if (n == 0) return true;
  const u8* field = getDataAt2(cursor);
  if (!field || n > size_ - cursor || !out.appendN(reinterpret_cast<const char*>(field), n)) return false;
  cursor += n;
  return true;
}
