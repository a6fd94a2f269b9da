#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

/// The base of the library's heap objects.
class VARNIK_API VarnikObject {
 public:
  virtual ~VarnikObject() = default;

  /// Returns the bytes of heap memory that the object holds beside its own record; 0 unless a class says otherwise.
  virtual u32 heapUsage() const;

 protected:
  VarnikObject() = default;
  VarnikObject(const VarnikObject&) = default;
  VarnikObject& operator=(const VarnikObject&) = default;
};
