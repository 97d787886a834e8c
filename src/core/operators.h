#pragma once
// The names of those who measure and process.

#include "core/global_block.h"

#include <string>
#include <string_view>
#include <vector>

namespace nmr {

inline constexpr std::size_t kMaxOperators = 101;

/// False for an empty name, one that is listed already, or when the list is full.
bool AddOperator(std::vector<std::string>& names, std::string_view name);
/// False when the name is not listed.
bool DeleteOperator(std::vector<std::string>& names, std::string_view name);

/// FFTUser of slot 0, when it is empty, takes the operator of the measurement if that one is listed.
void OfferOperator(GlobalBlock& g);

} // namespace nmr
