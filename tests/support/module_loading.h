// Loads, finds and unloads modules.
#pragma once

#include <filesystem>
#include <string>

namespace support {

// The file of a module asked for by this name: libwinscard.so or winscard.dll for "winscard".
std::string ModuleFileName(const std::string& name);

// Throws std::runtime_error if the file can't be loaded.
void* LoadModule(const std::filesystem::path& file);

// The module that stands loaded under this bare file name, or null. It is not kept loaded by this.
void* FindLoadedModule(const std::string& fileName);

// Null if the module exports no such name.
void* FindExport(void* module, const char* name);

void UnloadModule(void* module);

}  // namespace support
