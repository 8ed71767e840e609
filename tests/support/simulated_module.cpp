#include "support/simulated_module.h"

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <utility>
#include <vector>

#include "support/export_names.h"
#include "support/module_loading.h"

namespace support {
namespace {

// Where the build puts a simulator: wdcrwx stands beside the library, the only place where the
// library looks for it.
std::filesystem::path FolderOf(const std::string& vendor) {
  const std::filesystem::path build = u8"" ORVANE_BUILD_FOLDER;
  return vendor == "wdcrwx" ? build : build / "simulators";
}

std::filesystem::path MakeTemporaryFolder() {
  std::random_device random;
  for (;;) {
    const std::string name = "orvane-" + std::to_string(random());
    const auto folder = std::filesystem::temp_directory_path() / name;
    if (std::filesystem::create_directory(folder)) return folder;
  }
}

std::vector<char> ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFile(const std::filesystem::path& path, const std::vector<char>& octets) {
  std::ofstream file(path, std::ios::binary);
  file.write(octets.data(), static_cast<std::streamsize>(octets.size()));
  if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

void RemoveFolder(const std::filesystem::path& folder) {
  std::error_code ignored;
  if (!folder.empty()) std::filesystem::remove_all(folder, ignored);
}

}  // namespace

SimulatedModule::SimulatedModule(const std::string& vendor)
    : SimulatedModule(vendor, FolderOf(vendor)) {}

SimulatedModule::SimulatedModule(const std::string& vendor, const std::filesystem::path& folder) {
  const std::string fileName = ModuleFileName(vendor);
  std::string why;
  module_ = LoadModule(folder / fileName, why);
  if (!module_) throw std::runtime_error(why);
  if (FindLoadedModule(fileName) != module_) {
    UnloadModule(module_);
    throw std::runtime_error("another " + fileName + " is still loaded");
  }
  Restart();
}

SimulatedModule::SimulatedModule(SimulatedModule&& other) noexcept
    : module_(std::exchange(other.module_, nullptr)),
      temporaryFolder_(std::exchange(other.temporaryFolder_, {})) {}

SimulatedModule::~SimulatedModule() {
  if (module_) UnloadModule(module_);
  RemoveFolder(temporaryFolder_);
}

void SimulatedModule::Restart() const { Find<decltype(SimulatorRestart)>("SimulatorRestart")(); }

std::string SimulatedModule::Journal() const {
  return Find<decltype(SimulatorJournal)>("SimulatorJournal")();
}

void SimulatedModule::Answer(const char* function, int64_t result, const char* data,
                             int64_t length) const {
  Find<decltype(SimulatorAnswer)>("SimulatorAnswer")(function, result, data, length);
}

void SimulatedModule::CallBack(void (*function)()) const {
  Find<decltype(SimulatorCallBack)>("SimulatorCallBack")(function);
}

void SimulatedModule::InsertCard(bool present) const {
  Find<decltype(SimulatorInsertCard)>("SimulatorInsertCard")(present);
}

void* SimulatedModule::Export(const char* name) const { return FindExport(module_, name); }

void WriteModuleWithout(const std::string& vendor, const std::string& function,
                        const std::filesystem::path& folder) {
  const std::string fileName = ModuleFileName(vendor);
  std::vector<char> octets = ReadFile(FolderOf(vendor) / fileName);
  if (!HideExport(octets, function)) {
    throw std::runtime_error(fileName + " does not export " + function);
  }
  WriteFile(folder / fileName, octets);
}

SimulatedModule ModuleWithout(const std::string& vendor, const std::string& function) {
  const std::filesystem::path folder = MakeTemporaryFolder();
  try {
    WriteModuleWithout(vendor, function, folder);
    SimulatedModule module(vendor, folder);
    module.temporaryFolder_ = folder;
    return module;
  } catch (...) {
    RemoveFolder(folder);
    throw;
  }
}

bool IsLoaded(const std::string& vendor) {
  return FindLoadedModule(ModuleFileName(vendor)) != nullptr;
}

}  // namespace support
