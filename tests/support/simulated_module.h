// A simulated vendor module, loaded before the library looks for the vendor's name. wdcrwx is the
// exception: the library looks for that one beside itself and finds no other, so that a test
// without one of its functions needs the library's file in a folder of its own.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "simulators/simulator.h"

namespace support {

// Loads the module, of the build or of another folder, at its start state and unloads it at the end
// of its own life. The functions are those of simulators/simulator.h.
//
// A reader of the library that is bound to the module keeps it loaded as well, until a reader of
// another kind is opened in its place; so does the reader that lists, until another kind is listed.
// Loading throws std::runtime_error if another file of the vendor's name is still loaded, since the
// library would find that one.
class SimulatedModule {
 public:
  explicit SimulatedModule(const std::string& vendor);
  SimulatedModule(const std::string& vendor, const std::filesystem::path& folder);
  SimulatedModule(SimulatedModule&& other) noexcept;
  SimulatedModule& operator=(SimulatedModule&&) = delete;
  ~SimulatedModule();

  void Restart() const;
  std::string Journal() const;
  void Answer(const char* function, int64_t result, const char* data = nullptr,
              int64_t length = SIMULATOR_TRUE_LENGTH) const;
  void CallBack(void (*function)()) const;
  void InsertCard(bool present) const;

  // An exported function or data object of the module; null if there is none.
  void* Export(const char* name) const;

 private:
  friend SimulatedModule ModuleWithout(const std::string& vendor, const std::string& function);

  template <typename Function>
  Function* Find(const char* name) const {
    return reinterpret_cast<Function*>(Export(name));
  }

  void* module_ = nullptr;
  std::filesystem::path temporaryFolder_;  // removed at the end unless empty
};

// Copies the vendor's module into a folder so that nobody finds this exported name in it. Throws
// std::runtime_error if there is none.
void WriteModuleWithout(const std::string& vendor, const std::string& function,
                        const std::filesystem::path& folder);

// The vendor's module as it would be without one of its functions.
SimulatedModule ModuleWithout(const std::string& vendor, const std::string& function);

// Whether any module of this vendor is loaded in this process.
bool IsLoaded(const std::string& vendor);

}  // namespace support
