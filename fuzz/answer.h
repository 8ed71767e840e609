#pragma once

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

#include "fuzz/input.h"

namespace orvane_fuzz {

// What a played function gives back, as a line of the input says it:
//
//   =RESULT LENGTH DATA
//
// A dot, or nothing, stands for what a working library would give. LENGTH is what is reported as
// the length of the data, however wrong; a - reports none at all. DATA is hexadecimal text, or the
// text itself for a function that gives text. With ~ for the = the rest of the area is written to
// as well, with the digit 5; with ! an exception is thrown.
struct Answer {
  char manner = '=';
  std::optional<std::int64_t> result;
  std::optional<std::int64_t> length;
  bool reportsLength = true;
  std::optional<std::string> data;

  static bool Begins(char first) { return first == '=' || first == '~' || first == '!'; }

  // Behind the first character, which `manner` is.
  static Answer Read(char manner, std::string_view rest) {
    Input line(reinterpret_cast<const std::uint8_t*>(rest.data()), rest.size());
    Answer answer;
    answer.manner = manner;
    answer.result = Number(line.Until(' '));
    const std::string_view length = line.Until(' ');
    answer.reportsLength = length != "-";
    answer.length = Number(length);
    const std::string_view data = line.Rest();
    if (!IsUsual(data)) answer.data = data;
    return answer;
  }

  template <typename Number>
  void Report(Number* length, std::size_t trueLength) const {
    if (reportsLength) {
      *length = static_cast<Number>(this->length.value_or(static_cast<std::int64_t>(trueLength)));
    }
  }

  // Fills an area as far as it goes.
  template <typename Byte>
  void Write(std::string_view bytes, Byte* area, std::size_t room) const {
    if (manner == '~') std::memset(area, '5', room);
    std::memcpy(area, bytes.data(), std::min(bytes.size(), room));
  }

 private:
  static bool IsUsual(std::string_view word) { return word.empty() || word == "."; }
  static std::optional<std::int64_t> Number(std::string_view word) {
    if (IsUsual(word)) return std::nullopt;
    return std::strtoll(std::string(word).c_str(), nullptr, 0);
  }
};

}  // namespace orvane_fuzz
