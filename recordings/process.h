#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace recordings {

uint32_t ProcessNumber();

// A path that the environment has under this name, which is ASCII; none if that is empty.
std::optional<std::filesystem::path> EnvironmentPath(const char* name);

}  // namespace recordings
