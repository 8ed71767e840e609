#include "host/reader_list.h"

#include <orvane.h>

#include <iomanip>

#include "host/reader_address.h"
#include "host/readers.h"
#include "host/text.h"

namespace host {
namespace {

constexpr int kNameWidth = 28;

bool KnowsItsReaders(int32_t kind) {
  return kind == ReaderKindTyUsb || kind == ReaderKindPcsc || kind == ReaderKindBsit;
}

size_t PrintKind(std::ostream& out, int32_t kind, int32_t ports) {
  // The names that the library lists for encryption machines open nothing.
  const std::vector<std::string> names =
      kind == ReaderKindTcp ? std::vector<std::string>{"ADDRESS:PORT"} : ListReaders(kind, ports);
  for (const std::string& name : names) {
    out << std::left << std::setw(kNameWidth) << KindName(kind) << kind << ':' << Printable(name)
        << '\n';
  }
  return names.size();
}

}  // namespace

void PrintReaders(std::ostream& out, int32_t kind, int32_t ports) {
  size_t printed = 0;
  for (const int32_t each : ReaderKinds()) {
    const bool wanted = kind != 0 ? each == kind : ports > 0 || KnowsItsReaders(each);
    if (wanted) printed += PrintKind(out, each, ports);
  }
  if (printed == 0) out << "no readers found; --ports N offers ports, --simulate simulators\n";
}

}  // namespace host
