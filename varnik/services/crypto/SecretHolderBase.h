#pragma once

#include "varnik/services/memory/VarnikObject.h"

/// The base of the classes that keep secrets encrypted in memory.
class VARNIK_API SecretHolderBase : public VarnikObject {
 public:
  ~SecretHolderBase() override;

 protected:
  SecretHolderBase() = default;
  SecretHolderBase(const SecretHolderBase&) = default;
  SecretHolderBase& operator=(const SecretHolderBase&) = default;
};
