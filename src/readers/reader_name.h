#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orvane {

// The decimal number right behind the marker, which may stand anywhere in the name; 0 if no digits
// stand there, the largest number if there are too many. Nothing if the marker is not there.
std::optional<std::int32_t> NumberBehind(std::string_view marker, std::string_view name);

}  // namespace orvane
