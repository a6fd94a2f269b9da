#include "varnik/services/memory/VarnikObject.h"

u32 VarnikObject::heapUsage() const {
  return 0;
}
