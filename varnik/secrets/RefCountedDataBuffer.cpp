#include "varnik/secrets/RefCountedDataBuffer.h"

RefCountedDataBuffer::RefCountedDataBuffer() = default;
RefCountedDataBuffer::~RefCountedDataBuffer() = default;
