#include "varnik/services/memory/VarnikCritSec.h"

VarnikCritSec::~VarnikCritSec() = default;
