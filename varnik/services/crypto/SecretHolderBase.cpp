#include "varnik/services/crypto/SecretHolderBase.h"

SecretHolderBase::~SecretHolderBase() = default;
