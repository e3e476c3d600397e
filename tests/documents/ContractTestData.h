#pragma once
// A contract's data with every field filled: an estimate of 35271,43 roubles (advance 12500 at 35 %),
// a contractor and a customer with all their requisites.

#include "documents/ContractFill.h"

ContractFill::Data fullData();
