#include "host/reader_address.h"

#include <orvane.h>

#include <algorithm>
#include <charconv>
#include <map>

#include "host/failure.h"
#include "host/text.h"

namespace host {
namespace {

const std::map<int32_t, std::string_view>& KindNames() {
  static const std::map<int32_t, std::string_view> names = {
      {ReaderKindTyUsb, "TY USB key"},
      {ReaderKindTyCom, "TY serial reader"},
      {ReaderKindPcsc, "PC/SC"},
      {ReaderKindWd, "WD"},
      {ReaderKindD8, "D8"},
      {ReaderKindFm8201, "FM8201"},
      {ReaderKindS5009, "S5009"},
      {ReaderKindS5009Ats, "S5009, reset gives the ATS"},
      {ReaderKindTcp, "encryption machine on TCP"},
      {ReaderKindIcr, "ICR identity card reader"},
      {ReaderKindBsit, "BSIT"},
  };
  return names;
}

int32_t ReadNumber(std::string_view digits, const std::string& meaning) {
  int32_t number = 0;
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc()) {
    throw Failure(kReaderFault, "there is no " + meaning + " " + std::string(digits));
  }
  return number;
}

int32_t ReadKind(std::string_view digits) {
  const int32_t kind = ReadNumber(digits, "reader kind");
  if (KindName(kind).empty()) {
    throw Failure(kReaderFault, "there is no reader kind " + std::string(digits));
  }
  return kind;
}

}  // namespace

const std::vector<int32_t>& ReaderKinds() {
  static const std::vector<int32_t> kinds = [] {
    std::vector<int32_t> all;
    for (const auto& [kind, name] : KindNames()) all.push_back(kind);
    return all;
  }();
  return kinds;
}

std::string_view KindName(int32_t kind) {
  const auto found = KindNames().find(kind);
  return found != KindNames().end() ? found->second : std::string_view();
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
  if (text.empty()) throw Failure(kReaderFault, "no reader is named");
  if (IsDecimal(text)) {
    address.port = ReadNumber(text, "port");
  } else {
    address.name = text;
  }
  return address;
}

std::string MatchReaderName(const std::string& name, const std::vector<std::string>& listed) {
  if (std::find(listed.begin(), listed.end(), name) != listed.end()) return name;
  const std::string wanted = WithoutBlanks(name);
  const auto same = [&](const std::string& other) { return WithoutBlanks(other) == wanted; };
  if (std::count_if(listed.begin(), listed.end(), same) != 1) return name;
  return *std::find_if(listed.begin(), listed.end(), same);
}

}  // namespace host
