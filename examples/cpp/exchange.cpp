// A script host in C++: runs a script on the simulated card and prints what goes to and fro.
//
//   exchange ../exchange.orv
#include <fstream>
#include <iostream>
#include <orvane.hpp>

#ifdef _WIN32
#include <windows.h>
// A wide name: the folder's may have letters that the ANSI code page lacks.
static bool LoadSimulator() { return LoadLibraryW(L"" SIMULATOR) != nullptr; }
#else
#include <dlfcn.h>
static bool LoadSimulator() { return dlopen(SIMULATOR, RTLD_NOW) != nullptr; }
#endif

namespace {

// What a statement asks of its host; each gives false at the end of the script.
struct Host {
  orvane::Reader& reader;
  const std::string& statement;

  bool operator()(const orvane::Nothing&) const { return true; }
  bool operator()(const orvane::Assignment&) const { return true; }
  bool operator()(const orvane::Stop&) const { return false; }
  bool operator()(const orvane::Note&) const {
    std::cout << statement << '\n';
    return true;
  }
  bool operator()(const orvane::ResetRequest&) const {
    const auto atr = reader.Reset();
    std::cout << "ATR " << atr.View() << '\n';
    orvane::Script::Set("%ATR", atr);
    return true;
  }
  bool operator()(const orvane::Command& command) const {
    std::cout << ">>  " << command.hex.View() << '\n';
    const orvane::Response response = reader.Send(command.hex);
    std::cout << "<<  " << response.Data().View() << (response.Data() == "" ? "" : " ")
              << response.StatusWord().View() << '\n';
    orvane::Script::Set("%RESP", response.Data());
    orvane::Script::Set("%SW", response.StatusWord());
    return true;
  }
  bool operator()(const orvane::Comparison& comparison) const {
    if (!comparison.met) throw orvane::Error("not as expected: " + statement);
    std::cout << "ok  " << statement << '\n';
    return true;
  }
  // A value for nobody, or a reader or slot that this host has no other of.
  template <class Other>
  bool operator()(const Other&) const {
    throw orvane::Error("can't run " + statement);
  }
};

void RunScript(const char* path) {
  for (const ReaderInfo& each : orvane::Reader::List(ReaderKindPcsc)) {
    std::cout << "reader " << each.name << '\n';
  }
  orvane::Reader reader = orvane::Reader::Open(ReaderKindPcsc, "Simulated Reader 0");
  std::ifstream script(path);
  if (!script) throw orvane::Error(std::string("can't read ") + path);
  for (std::string statement; std::getline(script, statement);) {
    if (statement.ends_with('\r')) statement.pop_back();
    if (!std::visit(Host{reader, statement}, orvane::Script::Run(statement))) break;
  }
}

}  // namespace

int main(int count, char** arguments) try {
  // The library looks for the PC/SC module when a reader is opened, and takes what is loaded under
  // its name by then.
  if (!LoadSimulator()) throw orvane::Error("can't load " SIMULATOR);
  if (count != 2) throw orvane::Error("usage: exchange SCRIPT");
  RunScript(arguments[1]);
  orvane::TagDictionary::Replace(orvane::MakeTagEntry("5F20", "Cardholder Name"));
  const auto entry = orvane::TagDictionary::Find("5F20");
  std::cout << "tag " << entry->tag << ' ' << entry->shortText << '\n';
} catch (const std::exception& failure) {
  std::cerr << failure.what() << '\n';
  return 1;
}
