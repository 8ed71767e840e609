#pragma once

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "readers/reader_host.h"
#include "support/simulated_module.h"

namespace orvane_test {

// A reader that a simulated library offers.
struct SimulatedReader {
  const char* vendor;
  int kind;
  const char* name;
  const char* closing;  // the call that closes it
};

inline const SimulatedReader kTyUsb{"tykeyint", ReaderKindTyUsb, "USB1", "TYKey_CloseTYKey(-1000)"},
    kTyCom{"tyreader", ReaderKindTyCom, "COM1", "TY_Close(0)"},
    kPcsc{"winscard", ReaderKindPcsc, "Simulated Reader 0",
          "SCardDisconnect(0xFFFFFFFFEA010001, 0)"},
    kWd{"wdcrwx", ReaderKindWd, "WDUSB1", "CT_close(1)"},
    kD8{"dcrf32", ReaderKindD8, "COM1", "dc_exit(1)"},
    kS5009{"S5009", ReaderKindS5009, "COM1", "CloseCOM(1)"},
    kS5009Ats{"S5009", ReaderKindS5009Ats, "COM1", "CloseCOM(1)"},
    kIcr{"sdtapi", ReaderKindIcr, "ICR-COM1", "SDT_ClosePort(1)"},
    kBsit{"STJZZ_BSIT", ReaderKindBsit, "BSIT:1", "bsit_CloseHID(0)"};

inline int Open(const SimulatedReader& reader) { return OpenReaderA(reader.name, reader.kind); }

constexpr char kCardAtr[] = "3B6A0000803180664F5256414E45";

// How many records there are, with the first and the last of them.
inline std::string Ends(const std::vector<std::string>& lines) {
  std::string ends = std::to_string(lines.size());
  if (!lines.empty()) ends += ": " + lines.front();
  return lines.size() > 1 ? ends + " .. " + lines.back() : ends;
}

// "FUNCTION RESULT DATA LENGTH", of which - stands for no data.
inline void PrepareAnswer(const support::SimulatedModule& module, const std::string& answer) {
  std::istringstream words(answer);
  std::string function, result, data = "-", length = std::to_string(SIMULATOR_TRUE_LENGTH);
  words >> function >> result >> data >> length;
  module.Answer(function.c_str(), static_cast<std::int64_t>(std::stoull(result, nullptr, 0)),
                data == "-" ? nullptr : data.c_str(),
                length == "throw" ? SIMULATOR_THROW
                                  : static_cast<std::int64_t>(std::stoull(length, nullptr, 0)));
}

// The result and, behind a blank, the text that is not what a failure leaves.
inline std::string Shown(const Reply& reply, const char* atFailure) {
  const bool empty = reply.text.empty() || reply == Reply{0, atFailure};
  const std::string text = reply.text == kCardAtr ? "ATR" : reply.text;
  return std::to_string(reply.result) + (empty ? "" : ' ' + text);
}

inline std::string TakeStep(const SimulatedReader& reader, const support::SimulatedModule& module,
                            const std::string& what, const std::string& argument) {
  std::istringstream numbers(argument);
  int number = 0, second = 0;
  numbers >> number >> second;
  if (what == "open") return std::to_string(Open(reader));
  if (what == "opened") return Open(reader) == 1 ? "" : "does not open";
  if (what == "port") return std::to_string(OpenReader(number, reader.kind, 9600));
  if (what == "kind") return std::to_string(OpenReader(1, number, 9600));
  if (what == "name") return std::to_string(OpenReaderA(argument.c_str(), reader.kind));
  if (what == "list") return Ends(List(reader.kind, number, second));
  if (what == "reset") return Shown(ResetCard(), kUntouched);
  if (what == "send") return Shown(Send(argument), "");
  if (what == "close") return std::to_string(CloseReader());
  if (what == "slot") return ChangeSlot(argument.c_str()), "-";
  if (what == "card") return module.InsertCard(argument == "in"), "";
  if (what == "answer") return PrepareAnswer(module, argument), "";
  throw std::logic_error("no such step: " + what);
}

enum class Calls { kWhole, kNames };

// What a host's steps, with a ';' between them, come to in an empty slot: the outcome of each that
// calls the library's exports, and the calls that it made. Each of those calls back first.
inline std::string TakeSteps(const SimulatedReader& reader, const support::SimulatedModule& module,
                             const std::string& steps, Calls shown = Calls::kWhole,
                             void (*callBack)() = nullptr) {
  ReaderTest::EmptySlots();
  module.Restart();
  std::string outcomes;
  std::size_t seen = 0;
  std::istringstream rest(steps);
  for (std::string what, argument; std::getline(rest, what, ';');) {
    const std::size_t blank = what.find(' ');
    argument = blank != std::string::npos ? what.substr(blank + 1) : "";
    module.CallBack(callBack);
    const std::string outcome = TakeStep(reader, module, what.substr(0, blank), argument);
    std::istringstream calls(CallsWithoutResults(module.Journal().substr(seen)));
    seen = module.Journal().size();
    if (outcome.empty()) continue;
    outcomes += (outcomes.empty() ? "" : "; ") + outcome;
    for (std::string call; std::getline(calls, call);) {
      outcomes += ' ' + (shown == Calls::kNames ? call.substr(0, call.find('(')) : call);
    }
  }
  // The numbers of contexts count up from test to test.
  for (std::size_t at; (at = outcomes.find("0xCD01")) != std::string::npos;) {
    outcomes.replace(at, 18, "context");
  }
  return outcomes;
}

}  // namespace orvane_test
