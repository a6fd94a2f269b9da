#include "varnik/services/memory/RefCountedObject.h"

RefCountedObject::~RefCountedObject() = default;

void RefCountedObject::decRefCount() {
  // The last owner must see what every other owner wrote before it let go.
  if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}
