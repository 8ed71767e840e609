#pragma once

// One call of a vendor function: what it is answered, what it writes, its line in the journal.

#include <concepts>
#include <functional>
#include <initializer_list>
#include <optional>

#include "common/octets.h"
#include "simulator.h"

namespace simulator {

// What a function gives back.
struct Answer {
  int64_t result = 0;
  std::optional<Octets> data = std::nullopt;  // for the output area; nothing is written without it
  int64_t length = SIMULATOR_TRUE_LENGTH;

  // What to report where trueLength would be right.
  int64_t Reported(int64_t trueLength) const {
    return length == SIMULATOR_TRUE_LENGTH ? trueLength : length;
  }
};

// An argument as the journal shows it: numbers in decimal, texts in double quotes, octets in
// hexadecimal, and null for a null pointer.
class Argument {
 public:
  template <std::integral Number>
  Argument(Number number) : text_(std::to_string(number)) {}
  Argument(const char* text);
  // Octets that the caller counts; a negative count stands for none.
  Argument(const uint8_t* octets, int64_t count);

  const std::string& Text() const { return text_; }

 private:
  friend Argument Hex(uint64_t number);
  std::string text_;
};

// A number of which the vendor's interface speaks in hexadecimal: 0xFF; 0 stays 0.
Argument Hex(uint64_t number);

// A vendor function makes one Call, asks for the answer, hands over what it has to and returns the
// result:
//
//   int16_t dc_cpuapdu(int32_t handle, uint8_t length, const uint8_t* command,
//                      uint32_t* replyLength, uint8_t* reply) {
//     Call call("dc_cpuapdu", {handle, {command, length}});
//     const Answer answer = call.Ask(
//         [&] { return Answer{0, Card().Transmit({command, length})}; });
//     *replyLength = static_cast<uint32_t>(call.Write(answer, reply, 256));
//     return call.Return<int16_t>(answer);
//   }
class Call {
 public:
  Call(const char* function, std::initializer_list<Argument> arguments);
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;
  ~Call();  // writes the line

  // One more argument.
  Call& With(const Argument& argument);

  // The next prepared answer for this function, else what the simulated device says.
  Answer Ask(const std::function<Answer()>& device);

  // Whether Ask found a prepared answer.
  bool Prepared() const { return prepared_; }

  // Copies the answer's data to area, at most size octets, and notes them. The result is the length
  // to report.
  int64_t Write(const Answer& answer, void* area, size_t size);

  // Notes what was written to an area by other means.
  void Wrote(const Argument& value);

  // The answer's result in the function's own type. The journal shows it in decimal, or with
  // ReturnHex in hexadecimal.
  template <std::integral Result>
  Result Return(const Answer& answer) {
    const auto result = static_cast<Result>(answer.result);
    result_ = Argument(result).Text();
    return result;
  }
  template <std::integral Result>
  Result ReturnHex(const Answer& answer) {
    const auto result = static_cast<Result>(answer.result);
    result_ = Hex(static_cast<std::make_unsigned_t<Result>>(result)).Text();
    return result;
  }

 private:
  const char* function_;
  bool prepared_ = false;
  std::string arguments_;
  std::string result_;
  std::string written_;
};

// Forgets the journal, the prepared answers and whom to call back.
void ForgetCalls();

}  // namespace simulator
