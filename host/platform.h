#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// The functions that differ between systems. All texts are UTF-8.

// Opens standard input, output and error on the null device if they are closed, so that no file
// opened later gets their numbers. The input is opened for writing and the others for reading, so
// that using them still fails. Call it before anything else.
void OpenStandardDescriptors();

// Opens a file for reading. -1 if that fails, with the reason in errno.
int OpenFile(const std::string& name);
void CloseFile(int descriptor);

// Reads what is there, at most size octets; waits if there is nothing. 0 at the end; -1 with the
// reason in errno. The area must have at least 4,096 octets.
std::ptrdiff_t ReadSome(int descriptor, char* area, size_t size);

// Writes a part of the text and gives its length; -1 with the reason in errno.
std::ptrdiff_t WriteSome(int descriptor, std::string_view text);

// True if standard output is a terminal that understands colour sequences and the environment has
// no NO_COLOR. If the terminal must be switched for them, it stays so until the program ends.
bool OutputTakesColour();

// From now on, standard output takes octets unchanged.
void WriteOctets();

bool InputIsTerminal();
bool OutputIsTerminal();
// The columns of the terminal at standard output; 80 if they are not known.
size_t OutputWidth();

// Reads a line from the terminal, without its line end; none at the end of input. Ctrl-C drops the
// line and gives an empty one. After the first call, a first Ctrl-C between two lines does nothing
// and a second one ends the program.
std::optional<std::string> EditLine(const std::string& prompt);

// From the first call on, the first `count` Ctrl-C are only noted, and the next one ends the
// program. On POSIX this also holds for the other signals that ask a program to end. From then on a
// failing write only fails: no signal ends the program for it.
void NoteInterrupts(int count = 1);
int Interrupts();  // the number noted so far
inline bool Interrupted() { return Interrupts() > 0; }

// Offers a line for recall by the arrow keys, if there is line editing.
void RememberLine(const std::string& line);

// Takes the offered lines back, if the system can.
void ForgetLines();

// Sets the words for the Tab key, if the line editing supports it: those that may replace the last
// word of the line up to the cursor. That word begins behind a blank, ( ) , or =. Null removes
// them.
using Completer = std::function<std::vector<std::string>(std::string_view before)>;
void CompleteWith(Completer words);

// The file with the lines of earlier sessions. None if the line editing cannot take them, or the
// environment has no place for the file.
std::optional<std::string> HistoryFile();

// Writes a file that only its owner can read, in the place of an earlier one; creates its folders.
// On failure the result is false and the earlier file stays.
bool WriteForOwner(const std::string& file, const std::string& text);

std::optional<std::string> EnvironmentVariable(const std::string& name);

// The folder of this program's file. Throws Failure (kReaderFault) if the system does not say.
std::filesystem::path ProgramFolder();

// The folder of an installation's simulators and recorder.
std::filesystem::path ModulesFolder();

// Loads a module for the rest of the process's life. A later search for its bare file name finds
// this one. Null if it cannot be loaded.
void* LoadModule(const std::filesystem::path& file);

// True if a module of this vendor's name is loaded and exports this function.
bool LoadedModuleExports(std::string_view vendor, const char* function);

// Convert the names of readers to and from the library's form, on Windows the ANSI code page.
// ToLibrary throws Failure (kReaderFault) if the code page lacks one of the characters.
std::string ToLibrary(const std::string& name);
std::string FromLibrary(std::string_view name);

// The file name of a module. `name` has neither "lib" nor an ending.
std::string ModuleFileName(std::string_view name);

struct FoundModule {
  void* module = nullptr;  // null on failure
  std::string message;     // the path of its file, or what is wrong
};

// Where Orvane's library looks for a module before its own folder.
enum class Lookup {
  kByName,         // in the system's search path
  kInOwnFolders,   // the same without PATH and current folder: the crypto module
  kBesideLibrary,  // nowhere else
};

// Finds and loads a module as Orvane's library does. It stays loaded.
FoundModule FindModule(std::string_view name, Lookup lookup);

// The message of FindModule, without loading the module into this process: even one that crashes on
// loading does no harm.
std::string LocateModule(std::string_view name, Lookup lookup);

// The system's name and release, and the processor's name.
std::string SystemName();

// An exported function of a module; null if there is none.
void* ModuleFunction(void* module, const char* name);

// Locks the current folder: other processes that make such an object there wait, if the file system
// supports it.
class FolderLock {
 public:
  FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;
  ~FolderLock();

 private:
  std::intptr_t handle_;
};

}  // namespace host
