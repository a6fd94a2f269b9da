// Pads taken off or checked after decryption. Neither operation runs in constant time, and both tell a good pad from a
// bad one: whoever decides what is decrypted learns from that, unless the data was authenticated first.
#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/logging/LogBase.h"

namespace {

// Whether the last `n` bytes before data[end) all hold `value`. REQUIRES: n <= end.
bool endsInRun(const u8* data, u32 end, u32 n, u8 value) {
  for (u32 i = 0; i < n; ++i)
    if (data[end - 1 - i] != value) return false;
  return true;
}

}  // namespace

bool DataBuffer::unpadAfterDecryption(s32 scheme, s32 blockSize, LogBase&) {
  if (!isValid()) return false;
  if (size_ == 0 || !data_ || (scheme != 0 && scheme != 1)) return true;
  const u8 padLen = lastByte();
  if (padLen == 0 || padLen > static_cast<u32>(blockSize)) return true;
  if (scheme == 0 && (size_ < padLen || !endsInRun(data_, size_, padLen, padLen))) return true;
  size_ = size_ < padLen ? 0 : size_ - padLen;
  return true;
}

bool DataBuffer::verifyTlsPadding(LogBase& log) {
  if (!isValid()) return false;
  if (size_ == 0) {
    log.LogError("size is 0");
    return false;
  }
  if (!data_) {
    log.LogError("data is null");
    return false;
  }
  const u8 padLen = lastByte();
  if (size_ <= padLen) {
    log.LogError_lcr("the padding is longer than the data");
    return false;
  }
  if (endsInRun(data_, size_ - 1, padLen, padLen)) return true;
  log.LogError("incorrect padding byte value.");
  return false;
}
