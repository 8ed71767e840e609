#include "host/reader_list.h"

#include <orvane.h>

#include <iomanip>

#include "host/platform.h"
#include "host/reader_address.h"
#include "host/reader_trouble.h"
#include "host/readers.h"
#include "host/text.h"

namespace host {
namespace {

constexpr int kNameWidth = 28;
constexpr int kFileWidth = 22;

bool KnowsItsReaders(int32_t kind) {
  return kind == ReaderKindTyUsb || kind == ReaderKindPcsc || kind == ReaderKindBsit;
}

// The library lists a TY key by its index, but Orvane's open passes it one less than the number.
std::string Address(int32_t kind, const std::string& listed) {
  if (kind != ReaderKindTyUsb) return Printable(listed);
  return "USB" + std::to_string(std::stoi(listed.substr(3)) + 1) + "  listed as " + listed;
}

size_t PrintKind(std::ostream& out, int32_t kind, int32_t ports) {
  // The names that the library lists for payment HSMs cannot be opened.
  const std::vector<std::string> names =
      kind == ReaderKindTcp ? std::vector<std::string>{"ADDRESS:PORT"} : ListReaders(kind, ports);
  for (const std::string& name : names) {
    out << std::left << std::setw(kNameWidth) << KindName(kind) << kind << ':'
        << Address(kind, name) << '\n';
  }
  return names.size();
}

void PrintModule(std::ostream& out, std::string_view what, std::string_view name,
                 const std::string& message) {
  out << std::left << std::setw(kNameWidth) << what << std::setw(kFileWidth) << ModuleFileName(name)
      << Printable(message) << '\n';
}

}  // namespace

void PrintReaders(std::ostream& out, int32_t kind, int32_t ports) {
  size_t printed = 0;
  for (const int32_t each : ReaderKinds()) {
    const bool wanted = kind != 0 ? each == kind : ports > 0 || KnowsItsReaders(each);
    if (wanted) printed += PrintKind(out, each, ports);
  }
  if (printed == 0) {
    const bool pcsc = kind == 0 || kind == ReaderKindPcsc;
    out << "no readers found" << (pcsc ? " (" + PcscReaders() + ")" : "")
        << "; --ports N offers ports, --simulate simulators\n";
  }
  out << "\nlibraries\n";
  for (const int32_t each : ReaderKinds()) {
    const std::string_view library = KindLibrary(each);
    if ((kind != 0 && each != kind) || library.empty()) continue;
    PrintModule(out, KindName(each), library, FindModule(library, KindLookup(each)).message);
  }
}

void PrintModules(std::ostream& out) {
  constexpr std::string_view kCrypto = "orvane_crypto";
  PrintModule(out, "cryptography", kCrypto, LocateModule(kCrypto, Lookup::kInOwnFolders));
  for (const int32_t each : ReaderKinds()) {
    const std::string_view library = KindLibrary(each);
    if (library.empty() || each == ReaderKindS5009Ats) continue;  // has S5009's library
    PrintModule(out, KindName(each), library, LocateModule(library, KindLookup(each)));
  }
}

}  // namespace host
