#include "host/platform.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <vector>

#include "host/failure.h"

namespace host {

bool OutputTakesColour() {
  const char* terminal = std::getenv("TERM");
  const char* refusal = std::getenv("NO_COLOR");
  if (refusal != nullptr && *refusal != '\0') return false;
  return OutputIsTerminal() && terminal != nullptr && std::string_view(terminal) != "dumb";
}

void WriteOctets() {}  // it always does

bool InputIsTerminal() { return isatty(STDIN_FILENO) != 0; }
bool OutputIsTerminal() { return isatty(STDOUT_FILENO) != 0; }
size_t OutputWidth() {
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
  const char* const value = std::getenv(name.c_str());
  return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

std::filesystem::path ProgramFolder() {
  std::error_code error;
  auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  if (folder.is_absolute()) return folder;
  throw Failure(kReaderFault,
                "the system does not tell where this program stands, so that its simulators can't "
                "be found: /proc/self/exe: " +
                    error.message());
}

void* LoadModule(const std::filesystem::path& file) {
  return dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

std::string ModuleFileName(std::string_view name) { return "lib" + std::string(name) + ".so"; }

// The folder of the library as the process has loaded it, or with links followed.
static std::filesystem::path LibraryFolder(bool followLinks) {
  Dl_info library{};
  dladdr(dlsym(RTLD_DEFAULT, "RunScript"), &library);
  const std::filesystem::path file = library.dli_fname;
  std::error_code error;
  const auto target = followLinks ? std::filesystem::canonical(file, error) : file;
  return (error ? file : target).parent_path();
}

std::filesystem::path ModulesFolder() { return LibraryFolder(true) / "orvane"; }

FoundModule FindModule(std::string_view name, Lookup lookup) {
  const std::string file = ModuleFileName(name);
  const auto folder = LibraryFolder(false), target = LibraryFolder(true);
  std::vector<std::string> places = {folder / file, target / file};
  if (lookup != Lookup::kBesideLibrary) {
    places.insert(places.begin(), file);
    places.insert(places.end(), {folder / "orvane" / file, target / "orvane" / file});
  }
  std::string message = "not found";
  for (const std::string& place : places) {
    if (void* const module = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL)) {
      link_map* found = nullptr;
      dlinfo(module, RTLD_DI_LINKMAP, &found);
      return {module, found->l_name};
    }
    const std::string said = dlerror();
    if (!said.starts_with(place + ": cannot open shared object file")) message = said;
  }
  return {nullptr, message};
}

// Loads the module in a process of its own.
std::string LocateModule(std::string_view name, Lookup lookup) {
  constexpr unsigned kPatience = 5;  // seconds
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) return std::generic_category().message(errno);
  const pid_t child = fork();
  if (child == 0) {
    alarm(kPatience);
    const std::string message = FindModule(name, lookup).message;
    _exit(write(ends[1], message.data(), message.size()) < 0 ? 1 : 0);
  }
  close(ends[1]);
  int status = 0;
  while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
  std::string message(PIPE_BUF, '\0');
  message.resize(
      static_cast<size_t>(std::max<ssize_t>(0, read(ends[0], message.data(), PIPE_BUF))));
  close(ends[0]);
  if (!message.empty()) return message;
  return WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM ? "can't be loaded: it takes too long"
                                                            : "can't be loaded: it crashes";
}

std::string SystemName() {
  utsname system{};
  uname(&system);
  return std::string(system.sysname) + ' ' + system.release + ' ' + system.machine;
}

void* ModuleFunction(void* module, const char* name) { return dlsym(module, name); }

bool LoadedModuleExports(std::string_view vendor, const char* function) {
  const std::string fileName = ModuleFileName(vendor);
  void* const module = dlopen(fileName.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
  if (module == nullptr) return false;
  const bool found = dlsym(module, function) != nullptr;
  dlclose(module);
  return found;
}

std::string ToLibrary(const std::string& name) { return name; }
std::string FromLibrary(std::string_view name) { return std::string(name); }

void OpenStandardDescriptors() {
  for (int descriptor = 0; descriptor < 3; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) >= 0) continue;
    // open takes the lowest free number, which is this one.
    open("/dev/null", descriptor == 0 ? O_WRONLY : O_RDONLY);
  }
}

int OpenFile(const std::string& name) { return open(name.c_str(), O_RDONLY | O_CLOEXEC); }

void CloseFile(int descriptor) { close(descriptor); }

std::ptrdiff_t ReadSome(int descriptor, char* area, size_t size) {
  std::ptrdiff_t count = 0;
  do {
    count = read(descriptor, area, size);
  } while (count < 0 && errno == EINTR);
  return count;
}

std::ptrdiff_t WriteSome(int descriptor, std::string_view text) {
  std::ptrdiff_t count = 0;
  do {
    count = write(descriptor, text.data(), text.size());
  } while (count < 0 && errno == EINTR);
  return count;
}

FolderLock::FolderLock() : handle_(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  while (flock(static_cast<int>(handle_), LOCK_EX) != 0 && errno == EINTR) continue;
}

FolderLock::~FolderLock() { close(static_cast<int>(handle_)); }

}  // namespace host
