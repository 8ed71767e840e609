#include "support/simulated_module.h"

#include <stdexcept>
#include <utility>

#include "support/module_loading.h"
#include "tags/working_folder.h"

namespace support {
namespace {

// Where the build puts a simulator: wdcrwx stands beside the library, the only place where the
// library looks for it.
std::filesystem::path FolderOf(const std::string& vendor) {
  const std::filesystem::path build = u8"" ORVANE_BUILD_FOLDER;
  return vendor == "wdcrwx" ? build : build / "simulators";
}

}  // namespace

SimulatedModule::SimulatedModule(const std::string& vendor)
    : SimulatedModule(vendor, FolderOf(vendor)) {}

SimulatedModule::SimulatedModule(const std::string& vendor, const std::filesystem::path& folder) {
  const std::string fileName = ModuleFileName(vendor);
  module_ = LoadModule(folder / fileName);
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
  std::error_code ignored;
  if (!temporaryFolder_.empty()) std::filesystem::remove_all(temporaryFolder_, ignored);
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
  const std::string fileName = ModuleFileName(vendor), name = '\0' + function + '\0';
  std::string octets = orvane_test::ReadFile(FolderOf(vendor) / fileName).value_or("");
  auto at = octets.find(name);
  if (at == octets.npos) throw std::runtime_error(fileName + " has no " + function);
  // The last character, and to a lower one: the names of a DLL stand in their order.
  for (; at != octets.npos; at = octets.find(name, at)) octets[at + function.size()] = '!';
  orvane_test::WriteFile(folder / fileName, octets);
}

SimulatedModule ModuleWithout(const std::string& vendor, const std::string& function) {
  const std::filesystem::path folder = orvane_test::MakeTemporaryFolder();
  WriteModuleWithout(vendor, function, folder);
  SimulatedModule module(vendor, folder);
  module.temporaryFolder_ = folder;
  return module;
}

bool IsLoaded(const std::string& vendor) {
  return FindLoadedModule(ModuleFileName(vendor)) != nullptr;
}

}  // namespace support
