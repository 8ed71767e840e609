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

// What differs between systems. All texts are UTF-8.

// Opens standard input, output and error on the null device where they are closed, so that nothing
// that is opened later takes their numbers: the input for writing, the others for reading, so that
// to use them fails as before. Call it before anything else.
void OpenStandardDescriptors();

// A file for reading; -1, with the reason in errno, if it can't be opened.
int OpenFile(const std::string& name);
void CloseFile(int descriptor);

// Reads what is there, at most size octets, or waits for some. 0 at the end; -1 with the reason in
// errno. The area is at least 4,096 octets.
std::ptrdiff_t ReadSome(int descriptor, char* area, size_t size);

// Writes some of it and gives how much; -1 with the reason in errno.
std::ptrdiff_t WriteSome(int descriptor, std::string_view text);

// True if standard output is a terminal that understands colour sequences, unless the environment
// has NO_COLOR. Makes a terminal ready for them where that takes a call, until the program ends.
bool OutputTakesColour();

// Standard output takes what is written to it octet by octet from now on.
void WriteOctets();

bool InputIsTerminal();
bool OutputIsTerminal();
// The columns of the terminal that standard output is; 80 where they can't be told.
size_t OutputWidth();

// Reads a line from the terminal, without its end; none at the end of input. Ctrl-C drops the line
// and gives an empty one. Once this has been called, the first Ctrl-C between two lines changes
// nothing, and the second one ends the program.
std::optional<std::string> EditLine(const std::string& prompt);

// From the first call on, so many Ctrl-C (on POSIX, also what else asks a program to end) are only
// noted, and the next one ends the program; and a write that can't be done fails, which ends no
// program.
void NoteInterrupts(int count = 1);
int Interrupts();  // that were noted
inline bool Interrupted() { return Interrupts() > 0; }

// Offers a line for recall by the arrow keys, where there is line editing.
void RememberLine(const std::string& line);

// Takes back what was offered, where that can be done.
void ForgetLines();

// Where the line editing takes what Tab completes: the words that may stand in the place of the
// last one of the line up to the cursor, which begins behind a blank, ( ) , or =. None with null.
using Completer = std::function<std::vector<std::string>(std::string_view before)>;
void CompleteWith(Completer words);

// The file of lines that sessions before have offered for recall; none where the line editing takes
// none, or where the environment has no place for it.
std::optional<std::string> HistoryFile();

// Puts a file in the place of another, with its folders, for the eyes of the owner alone. False if
// that can't be done; then the other one stays.
bool WriteForOwner(const std::string& file, const std::string& text);

std::optional<std::string> EnvironmentVariable(const std::string& name);

// Where this program's file stands. Throws Failure (kReaderFault) if the system doesn't tell.
std::filesystem::path ProgramFolder();

// Where the simulators and the recorder of an installation stand.
std::filesystem::path ModulesFolder();

// Loads a module for the rest of the process's life; what is looked for under its bare file name
// later is then this one. Null if it can't be loaded.
void* LoadModule(const std::filesystem::path& file);

// True if a module stands loaded under this vendor's name and exports such a function.
bool LoadedModuleExports(std::string_view vendor, const char* function);

// Names of readers as the library takes and gives them, which on Windows is the ANSI code page.
// ToLibrary throws Failure (kReaderFault) if that lacks one of the characters.
std::string ToLibrary(const std::string& name);
std::string FromLibrary(std::string_view name);

// The file name of a module, which is given without lib and ending.
std::string ModuleFileName(std::string_view name);

struct FoundModule {
  void* module = nullptr;  // null if it can't be had
  std::string message;     // the path of its file, or what is wrong
};

// How Orvane's library looks for a module before it looks beside itself.
enum class Lookup {
  kByName,         // where the system looks for libraries
  kInOwnFolders,   // not in PATH and the current folder: the crypto module
  kBesideLibrary,  // nowhere
};

// A module as Orvane's library finds it. It stays loaded.
FoundModule FindModule(std::string_view name, Lookup lookup);

// The same without the module, which does nothing in this process: not even one that crashes where
// it is loaded.
std::string LocateModule(std::string_view name, Lookup lookup);

// The system's name and release, and the processor's.
std::string SystemName();

// An exported function; null if there is none.
void* ModuleFunction(void* module, const char* name);

// Keeps other processes that make one of these in the same folder waiting, where the file system
// can.
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
