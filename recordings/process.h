#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace recordings {

uint32_t ProcessNumber();

// The path in the environment's variable of this name, which is ASCII; none if it is empty.
std::optional<std::filesystem::path> EnvironmentPath(const char* name);

}  // namespace recordings
