#include "common/call.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <deque>
#include <map>
#include <stdexcept>
#include <utility>

namespace simulator {
namespace {

std::string journal;
std::map<std::string, std::deque<Answer>, std::less<>> preparedAnswers;
void (*callBack)() = nullptr;

std::optional<Answer> TakePrepared(const char* function) {
  const auto found = preparedAnswers.find(function);
  if (found == preparedAnswers.end() || found->second.empty()) return std::nullopt;
  Answer answer = std::move(found->second.front());
  found->second.pop_front();
  return answer;
}

}  // namespace

Argument::Argument(const char* text) : text_("null") {
  if (!text) return;
  text_ = '"';
  text_ += text;
  text_ += '"';
}

Argument::Argument(const uint8_t* octets, int64_t count)
    : text_(octets ? ToHex({octets, static_cast<size_t>(std::max<int64_t>(count, 0))}) : "null") {}

Argument Hex(uint64_t number) {
  Argument argument(0);
  if (number == 0) return argument;
  char digits[17];
  std::snprintf(digits, sizeof digits, "%" PRIX64, number);
  argument.text_ = "0x";
  argument.text_ += digits;
  return argument;
}

Call::Call(const char* function, std::initializer_list<Argument> arguments) : function_(function) {
  for (const Argument& argument : arguments) With(argument);
}

Call& Call::With(const Argument& argument) {
  if (!arguments_.empty()) arguments_ += ", ";
  arguments_ += argument.Text();
  return *this;
}

Answer Call::Ask(const std::function<Answer()>& device) {
  if (callBack != nullptr) std::exchange(callBack, nullptr)();
  if (std::optional<Answer> answer = TakePrepared(function_)) {
    prepared_ = true;
    if (answer->length == SIMULATOR_THROW) {
      result_ = "throws";
      throw std::runtime_error("a prepared exception");
    }
    return *std::move(answer);
  }
  return device();
}

int64_t Call::Write(const Answer& answer, void* area, size_t size) {
  if (!answer.data) return answer.Reported(0);
  const size_t count = area ? std::min(size, answer.data->size()) : 0;
  if (count > 0) {
    std::memcpy(area, answer.data->data(), count);
    Wrote({answer.data->data(), static_cast<int64_t>(count)});
  }
  return answer.Reported(static_cast<int64_t>(answer.data->size()));
}

void Call::Wrote(const Argument& value) {
  written_ += ' ';
  written_ += value.Text();
}

Call::~Call() {
  for (const char* part :
       {function_, "(", arguments_.c_str(), ") = ", result_.c_str(), written_.c_str(), "\n"}) {
    journal += part;
  }
}

void ForgetCalls() {
  journal.clear();
  preparedAnswers.clear();
  callBack = nullptr;
}

}  // namespace simulator

const char* SimulatorJournal(void) { return simulator::journal.c_str(); }

void SimulatorCallBack(void (*function)(void)) { simulator::callBack = function; }

void SimulatorAnswer(const char* function, int64_t result, const char* data, int64_t length) {
  simulator::Answer answer{result, std::nullopt, length};
  if (data) answer.data = simulator::FromHex(data);
  simulator::preparedAnswers[function].push_back(std::move(answer));
}
