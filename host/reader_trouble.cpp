#include "host/reader_trouble.h"

#include <orvane.h>

#include <algorithm>
#include <charconv>

#include "host/failure.h"
#include "host/pcsc_service.h"
#include "host/platform.h"
#include "host/readers.h"
#include "host/text.h"

namespace host {
namespace {

// True for a decimal number from low to high, without a sign.
bool IsNumber(std::string_view text, unsigned low, unsigned high) {
  unsigned number = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return IsDecimal(text) && error == std::errc() && number >= low && number <= high;
}

bool IsIpv4Address(std::string_view text) {
  for (int part = 0; part < 3; ++part) {
    const size_t dot = text.find('.');
    if (dot == text.npos || !IsNumber(text.substr(0, dot), 0, 255)) return false;
    text.remove_prefix(dot + 1);
  }
  return IsNumber(text, 0, 255);
}

std::string WhyNotConnected(const ReaderAddress& address) {
  const std::vector<std::string> names = ListReaders(ReaderKindPcsc, 0);
  const std::string name = PcscName(address);
  if (names.empty()) return PcscReaders();
  if (std::find(names.begin(), names.end(), name) == names.end()) {
    return "there is none; " + PcscReaders();
  }
  const std::string trouble = PcscTrouble(name);
  return trouble.empty() ? "it did not open, but would now: try again" : trouble;
}

}  // namespace

std::string PcscName(const ReaderAddress& address) {
  if (!address.port) return address.name;
  const std::vector<std::string> names = ListReaders(ReaderKindPcsc, 0);
  const bool listed = *address.port > 0 && static_cast<size_t>(*address.port) <= names.size();
  return listed ? names[static_cast<size_t>(*address.port - 1)] : "";
}

void CheckMachine(const ReaderAddress& address) {
  if (address.kind != ReaderKindTcp) return;
  const size_t colon = address.name.find(':');
  const std::string machine = address.name.substr(0, colon);
  const auto refuse = [](const std::string& fault) {
    throw Failure(kReaderFault, fault + ": a payment HSM is named as in 10:10.0.0.5:8000");
  };
  if (address.port) refuse("a port has no address");
  if (!IsIpv4Address(machine)) refuse("\"" + Printable(machine) + "\" is no IPv4 address");
  if (colon == std::string::npos) refuse("an address has no port");
  const std::string port = address.name.substr(colon + 1);
  if (!IsNumber(port, 1, 65535)) refuse("\"" + Printable(port) + "\" is no port from 1 to 65535");
}

std::string PcscReaders() {
  std::string names;
  size_t port = 0;
  for (const std::string& name : ListReaders(ReaderKindPcsc, 0)) {
    names +=
        (names.empty() ? "" : ", ") + ("port " + std::to_string(++port)) + ' ' + Printable(name);
  }
  if (!names.empty()) return "there is: " + names;
  const std::string trouble = PcscTrouble("");
  return trouble.empty() ? "no PC/SC reader is there" : trouble;
}

std::string WhyNotOpened(const ReaderAddress& address) {
  const int32_t kind = address.kind;
  if (kind == ReaderKindPcsc) return WhyNotConnected(address);
  if (kind == ReaderKindTcp) return "nothing takes a connection there";
  if (kind == ReaderKindFm8201) return "readers of this kind never open";
  const FoundModule library = FindModule(KindLibrary(kind), KindLookup(kind));
  if (library.module == nullptr) {
    return "the library " + ModuleFileName(KindLibrary(kind)) + " can't be loaded (" +
           library.message + ")";
  }
  const bool byNameAlone = kind == ReaderKindWd || kind == ReaderKindIcr;
  if (address.port ? byNameAlone : !FitsKind(address)) {
    return "readers of this kind are named as in " + std::string(KindExample(kind));
  }
  return "its maker's library finds no reader there";
}

std::string CardTrouble(const ReaderAddress& address) {
  return address.kind == ReaderKindPcsc ? PcscTrouble(PcscName(address)) : "";
}

}  // namespace host
