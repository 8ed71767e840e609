#pragma once

// One call of a vendor function: its arguments, answer and output, and its line in the journal.

#include <concepts>
#include <functional>
#include <initializer_list>
#include <optional>

#include "common/octets.h"
#include "simulator.h"

namespace simulator {

// The result and output of a function.
struct Answer {
  int64_t result = 0;
  std::optional<Octets> data = std::nullopt;  // for the output area; without it nothing is written
  int64_t length = SIMULATOR_TRUE_LENGTH;

  // The length to report, given the true one.
  int64_t Reported(int64_t trueLength) const {
    return length == SIMULATOR_TRUE_LENGTH ? trueLength : length;
  }
};

// An argument in the journal's form: numbers in decimal, texts in double quotes, octets in
// hexadecimal, null for a null pointer.
class Argument {
 public:
  template <std::integral Number>
  Argument(Number number) : text_(std::to_string(number)) {}
  Argument(const char* text);
  // Octets with a length from the caller; a negative length counts as 0.
  Argument(const uint8_t* octets, int64_t count);

  const std::string& Text() const { return text_; }

 private:
  friend Argument Hex(uint64_t number);
  std::string text_;
};

// A number that the vendor's interface writes in hexadecimal: 0xFF; 0 stays 0.
Argument Hex(uint64_t number);

// A vendor function makes one Call, asks for the answer, writes its output and returns the result:
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
  ~Call();  // writes the line into the journal

  // Adds an argument.
  Call& With(const Argument& argument);

  // The next prepared answer for this function; without one, the result of `device`.
  Answer Ask(const std::function<Answer()>& device);

  // Whether Ask found a prepared answer.
  bool Prepared() const { return prepared_; }

  // Copies at most size octets of the answer's data to area, and notes them in the journal. Gives
  // the length to report.
  int64_t Write(const Answer& answer, void* area, size_t size);

  // Notes in the journal what was written to an area by other means.
  void Wrote(const Argument& value);

  // The answer's result in the function's own type. The journal shows it in decimal; ReturnHex
  // shows it in hexadecimal.
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

// Clears the journal, the prepared answers and the function to call back.
void ForgetCalls();

}  // namespace simulator
