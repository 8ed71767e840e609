#include "host/check/known_variables.h"

#include "host/text.h"

namespace host {

void KnownVariables::Define(std::string_view name, const Value& value) {
  Variable& variable = variables_[UpperCase(name)];
  Drop(variable);
  variable.value = value;
}

void KnownVariables::DefineAnswer() {
  constexpr size_t kStatusWordDigits = 4;
  Define("%RESP", DigitsUpTo(SIZE_MAX));
  Define("%SW", DigitsUpTo(kStatusWordDigits));
}

void KnownVariables::Assign(std::string_view name, const Value& value, size_t begin, size_t end) {
  Variable& variable = variables_[UpperCase(name)];
  Drop(variable);
  variable.value = value;
  if (!findings_.Warns()) return;
  variable.unused = Diagnostic{findings_.Line(),
                               ColumnOf(findings_.Text(), begin),
                               begin,
                               end,
                               Severity::kWarning,
                               "nothing reads this value of " + Printable(name)};
}

Value KnownVariables::Read(const std::string& name, size_t begin, size_t end) {
  const auto [found, missing] = variables_.try_emplace(UpperCase(name), Variable{AnyText(), {}});
  found->second.unused.reset();
  if (missing) {
    const bool glued = name.find('%', 1) != name.npos;
    findings_.Report(Severity::kError, begin, end,
                     "undefined variable " + name + std::string(glued ? HintAt('%') : ""));
  }
  return found->second.value;
}

void KnownVariables::End() {
  for (auto& [name, variable] : variables_) Drop(variable);
}

// Reports a value that nothing has read.
void KnownVariables::Drop(Variable& variable) {
  if (variable.unused) findings_.Add(*variable.unused);
  variable.unused.reset();
}

}  // namespace host
