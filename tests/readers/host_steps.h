#pragma once

#include <stdexcept>

#include "readers/driver_test.h"

namespace orvane_test {

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
