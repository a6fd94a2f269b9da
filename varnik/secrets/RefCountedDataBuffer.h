#pragma once

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/memory/RefCountedObject.h"

/// A `DataBuffer` that several owners share by counting references. The count is safe from any thread, the bytes are
/// not.
class VARNIK_API RefCountedDataBuffer : public RefCountedObject {
 public:
  RefCountedDataBuffer();
  ~RefCountedDataBuffer() override;

  DataBuffer buffer;  ///< The shared bytes; lives as long as the object.
};
