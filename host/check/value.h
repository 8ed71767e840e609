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

  std::string begin;       // its first characters; kUnknown for each unknown one
  bool whole = true;       // nothing follows them
  size_t most = SIZE_MAX;  // if something may follow: the largest length
  bool digits = true;      // all unknown characters are upper-case hexadecimal digits
  bool assumed = false;    // holds for the default crypto module, perhaps not for another

  bool IsExact() const { return whole && begin.find(kUnknown) == begin.npos; }
  // The largest length that the text can have.
  size_t Most() const { return whole ? begin.size() : most; }
};

Value Exactly(std::string_view text);
Value DigitsOf(size_t length);          // exactly so many hexadecimal digits
Value DigitsUpTo(size_t most);          // at most so many
Value AnyText(size_t most = SIZE_MAX);  // only the largest length is known

Value Join(const Value& left, const Value& right);

// False if no text can be both.
bool CanBeEqual(const Value& left, const Value& right);

// The value of a built-in that is not for the host, from its arguments, which are right.
Value ValueOf(const Builtin& builtin, const std::vector<Value>& arguments);

}  // namespace host
