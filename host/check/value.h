#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/builtin.h"

namespace host {

// What is known of a text before a script runs.
struct Value {
  static constexpr char kUnknown = '\0';

  std::string begin;       // its first characters, kUnknown for each that is not known
  bool whole = true;       // nothing stands behind them
  size_t most = SIZE_MAX;  // where something may: the most characters in all
  bool digits = true;      // what is not known are upper-case hexadecimal digits
  bool assumed = false;    // by what the default crypto module does, and another one may not

  bool IsExact() const { return whole && begin.find(kUnknown) == begin.npos; }
  // The most characters that it can have.
  size_t Most() const { return whole ? begin.size() : most; }
};

Value Exactly(std::string_view text);
Value DigitsOf(size_t length);          // so many hexadecimal digits
Value DigitsUpTo(size_t most);          // as many or less
Value AnyText(size_t most = SIZE_MAX);  // nothing is known but its longest length

Value Join(const Value& left, const Value& right);

// False if no text is both.
bool CanBeEqual(const Value& left, const Value& right);

// The value of a built-in that is not for the host, by those of its arguments, which are sound.
Value ValueOf(const Builtin& builtin, const std::vector<Value>& arguments);

}  // namespace host
