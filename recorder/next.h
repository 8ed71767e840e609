#pragma once

#include "recorder/next_module.h"
#include "src/readers/winscard_types.h"

namespace recorder {

constexpr winscard::LONG kWriteFault = 29;  // Windows' ERROR_WRITE_FAULT
constexpr auto kNoService = static_cast<winscard::LONG>(0x8010001D);

void* NextFunction(const char* name);

// A function of the library behind this module; null if that library has none of this name.
template <typename Function>
Function* Next(const char* name) {
  return reinterpret_cast<Function*>(NextFunction(name));
}

using Word = std::uint64_t;
using AnyFunction = Word(Word, Word, Word, Word, Word, Word, Word, Word);

}  // namespace recorder

// Passes a call on unchanged. For functions of at most eight arguments, none of them a
// floating-point number: they all use registers and stack in the same way.
#define PASS_ON(name)                                                                    \
  RECORDER_API recorder::Word name(recorder::Word a, recorder::Word b, recorder::Word c, \
                                   recorder::Word d, recorder::Word e, recorder::Word f, \
                                   recorder::Word g, recorder::Word h) {                 \
    static const auto next = recorder::Next<recorder::AnyFunction>(#name);               \
    if (next == nullptr)                                                                 \
      return static_cast<recorder::Word>(winscard::SCARD_E_UNSUPPORTED_FEATURE);         \
    return next(a, b, c, d, e, f, g, h);                                                 \
  }
