// Composition of decomposed Western European letters in UTF-8.
#include "varnik/simd/CombiningMarks.h"

#include "varnik/buffer/DataBuffer.h"

void DataBuffer::consumeUtf8CombiningMarks() {
  if (isValid() && data_) size_ = vk_simd::composeMarks(data_, size_);
}
