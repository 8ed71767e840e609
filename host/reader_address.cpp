#include "host/reader_address.h"

#include <orvane.h>

#include <algorithm>
#include <charconv>
#include <map>

#include "host/text.h"

namespace host {
namespace {

struct Kind {
  std::string_view name, shortName, library;
  std::string_view example, marker;  // a reader's name, and the part that all names have
};

const std::map<int32_t, Kind>& Kinds() {
  static const std::map<int32_t, Kind> kinds = {
      {ReaderKindTyUsb, {"TY USB token", "tyusb", "tykeyint", "USB1", "USB"}},
      {ReaderKindTyCom, {"TY serial reader", "tycom", "tyreader", "COM1", "COM"}},
      {ReaderKindPcsc, {"PC/SC", "pcsc", "winscard", "", ""}},
      {ReaderKindWd, {"WD", "wd", "wdcrwx", "WDUSB1", ""}},
      {ReaderKindD8, {"D8", "d8", "dcrf32", "COM1 or COM100(D8USB)", "COM"}},
      {ReaderKindFm8201, {"FM8201", "fm8201", "", "", ""}},
      {ReaderKindS5009, {"S5009", "s5009", "S5009", "COM1", "COM"}},
      {ReaderKindS5009Ats, {"S5009, reset gives the ATS", "s5009ats", "S5009", "COM1", "COM"}},
      {ReaderKindTcp, {"payment HSM on TCP", "tcp", "", "10.0.0.5:8000", ":"}},
      {ReaderKindIcr,
       {"ICR identity card reader", "icr", "sdtapi", "ICR-COM1 or ICR-COM1001(ICRUSB)", "COM"}},
      {ReaderKindBsit, {"BSIT", "bsit", "STJZZ_BSIT", "BSIT:1", "BSIT:"}},
  };
  return kinds;
}

const Kind& KindAt(int32_t kind) {
  static const Kind none;
  const auto found = Kinds().find(kind);
  return found != Kinds().end() ? found->second : none;
}

// None for a number that is too large.
std::optional<int32_t> ReadNumber(std::string_view digits) {
  int32_t number = 0;
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

int32_t ReadKind(std::string_view digits) {
  const int32_t kind = ReadNumber(digits).value_or(0);
  if (KindName(kind).empty()) throw NoSuchKind(digits);
  return kind;
}

}  // namespace

const std::vector<int32_t>& ReaderKinds() {
  static const std::vector<int32_t> kinds = [] {
    std::vector<int32_t> all;
    for (const auto& [kind, names] : Kinds()) all.push_back(kind);
    return all;
  }();
  return kinds;
}

std::string_view KindName(int32_t kind) { return KindAt(kind).name; }
std::string_view KindLibrary(int32_t kind) { return KindAt(kind).library; }
Lookup KindLookup(int32_t kind) {
  return kind == ReaderKindWd ? Lookup::kBesideLibrary : Lookup::kByName;
}
std::string_view KindExample(int32_t kind) { return KindAt(kind).example; }

std::optional<int32_t> FindKind(std::string_view text) {
  for (const auto& [number, kind] : Kinds()) {
    if (text == std::to_string(number) || UpperCase(text) == UpperCase(kind.shortName)) {
      return number;
    }
  }
  return std::nullopt;
}

Failure NoSuchKind(std::string_view text) {
  std::string kinds;
  for (const auto& [number, kind] : Kinds()) {
    kinds +=
        (kinds.empty() ? "" : ", ") + std::to_string(number) + ' ' + std::string(kind.shortName);
  }
  return Failure(kReaderFault,
                 "there is no reader kind " + std::string(text) + "; there are: " + kinds);
}

bool FitsKind(const ReaderAddress& address) {
  return address.name.find(KindAt(address.kind).marker) != std::string::npos;
}

std::optional<int32_t> OpenedPort(const ReaderAddress& address) {
  constexpr int32_t kD8Usb = 100;
  const std::string_view marker = KindAt(address.kind).marker;
  const size_t at = address.name.find(marker);
  std::optional<int32_t> port = address.port;
  if (!port && !marker.empty() && address.kind != ReaderKindTcp && at != std::string::npos) {
    const std::string digits = address.name.substr(at + marker.size());
    port = ReadNumber(digits.substr(0, digits.find_first_not_of("0123456789"))).value_or(0);
  }
  // The driver takes one from all ports but this one.
  return address.kind == ReaderKindD8 && port == kD8Usb + 1 ? kD8Usb : port;
}

std::string ReaderAddress::Shown() const {
  const std::string what = port ? "port " + std::to_string(*port) : Printable(name);
  return what + " (" + std::string(KindName(kind)) + ")";
}

ReaderAddress ReadReaderAddress(std::string_view text, int32_t defaultKind) {
  ReaderAddress address{defaultKind, std::nullopt, ""};
  const size_t colon = text.find(':');
  if (colon != text.npos && IsDecimal(text.substr(0, colon))) {
    address.kind = ReadKind(text.substr(0, colon));
    text = text.substr(colon + 1);
  }
  if (text.empty()) throw Failure(kReaderFault, "the reader's name is empty");
  if (IsDecimal(text)) {
    address.port = ReadNumber(text);
    if (!address.port) throw Failure(kReaderFault, "there is no port " + std::string(text));
  } else {
    address.name = text;
  }
  return address;
}

size_t ReadReaderNumber(std::string_view text) {
  size_t number = kReaders;
  if (IsDecimal(text)) std::from_chars(text.data(), text.data() + text.size(), number);
  if (number < kReaders) return number;
  throw Failure(kReaderFault,
                "there is no reader number \"" + Printable(text) + "\": they run from 0 to 15");
}

std::string MatchReaderName(const std::string& name, const std::vector<std::string>& listed) {
  if (std::find(listed.begin(), listed.end(), name) != listed.end()) return name;
  const std::string wanted = WithoutBlanks(name);
  const auto same = [&](const std::string& other) { return WithoutBlanks(other) == wanted; };
  if (std::count_if(listed.begin(), listed.end(), same) != 1) return name;
  return *std::find_if(listed.begin(), listed.end(), same);
}

}  // namespace host
