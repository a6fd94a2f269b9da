// A block of 8, d = data, r = random, under each scheme:
//
//   0 (PKCS #7, RFC 5652 section 6.3)  d d d d d 3 3 3    data that fills its block:  8 8 8 8 8 8 8 8 more
//   1 (FIPS 81)                        d d d d d r r 3                                r r r r r r r 8 more
//   2 (random)                         d d d d d r r r                                nothing
//   3 (zeros), 4 (spaces)              d d d d d 0 0 0                                nothing
#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/crypto/RandomSource.h"

namespace {

constexpr u32 kLargestBlock = 16;

/// The bytes to add; no more than `length` of the area are in use.
struct Pad {
  u8 bytes[kLargestBlock];
  u32 length = 0;
};

// To the next boundary, 1 to `block`; to the boundary at or behind the end, 0 to `block` - 1.
u32 padToNext(u32 dataLen, u32 block) {
  return block - dataLen % block;
}
u32 padToFill(u32 dataLen, u32 block) {
  return (block - dataLen % block) % block;
}

void fillRandom(u8* to, u32 n, LogBase& log) {
  if (n == 0) return;
  DataBuffer drawn;
  if (RandomSource::generateBytes(n, drawn)) {
    vk_memcpy(to, drawn.getData2(), n);
    return;
  }
  for (u32 i = 0; i < n; ++i) to[i] = RandomSource::generateByte(log);
}

void makePadFips81(u8* pad, u32 dataLen, u32& padLen, u32 blockSize, LogBase& log) {
  padLen = padToNext(dataLen, blockSize);
  fillRandom(pad, padLen - 1, log);
  pad[padLen - 1] = static_cast<u8>(padLen);
}

void makeRandomPad(u8* pad, u32 dataLen, u32& padLen, u32 blockSize, LogBase& log) {
  padLen = padToFill(dataLen, blockSize);
  fillRandom(pad, padLen, log);
}

void makeUniformPad(Pad& pad, u32 length, u8 value) {
  pad.length = length;
  vk_memset(pad.bytes, value, length);
}

// REQUIRES: 1 <= blockSize <= kLargestBlock. Another scheme than 0 to 4 makes an empty pad.
void makePad(Pad& pad, s32 scheme, u32 dataLen, u32 blockSize, LogBase& log) {
  const u32 next = padToNext(dataLen, blockSize), fill = padToFill(dataLen, blockSize);
  switch (scheme) {
    case 0:
      return makeUniformPad(pad, next, static_cast<u8>(next));
    case 1:
      return makePadFips81(pad.bytes, dataLen, pad.length, blockSize, log);
    case 2:
      return makeRandomPad(pad.bytes, dataLen, pad.length, blockSize, log);
    case 3:
      return makeUniformPad(pad, fill, 0x00);
    case 4:
      return makeUniformPad(pad, fill, 0x20);
    default:
      return;
  }
}

}  // namespace

u32 DataBuffer::padForEncryption(s32 scheme, s32 blockSize, LogBase& log) {
  if (!isValid()) return 0;
  Pad pad;
  makePad(pad, scheme, size_, blockSize == 8 ? 8 : kLargestBlock, log);
  append(pad.bytes, pad.length);
  return pad.length;
}

void DataBuffer::copyAndPadForEncryption(const DataBuffer& src, s32 scheme, s32 blockSize, LogBase& log) {
  if (!isValid() || scheme < 0 || scheme > 2 || blockSize < 1 || static_cast<u32>(blockSize) > kLargestBlock) return;
  const u32 length = src.data_ ? src.size_ : 0;
  Pad pad;
  makePad(pad, scheme, length, static_cast<u32>(blockSize), log);
  const s64 total = s64{length} + pad.length;
  if (vk64::TooBigForUnsigned32(total)) return;
  replaceBy(src.data_ ? src.data_ : pad.bytes, length, static_cast<u32>(total));
  if (data_) append(pad.bytes, pad.length);
}
