#include "varnik/services/memory/VarnikObject.h"

VarnikObject::~VarnikObject() = default;

u32 VarnikObject::heapUsage() const {
  return 0;
}
