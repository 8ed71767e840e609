#include "host/check/findings.h"

#include <algorithm>

#include "host/text.h"

namespace host {

void Findings::BeginLine(std::string_view line) {
  ++line_;
  text_ = line;
}

void Findings::Report(Severity severity, size_t begin, size_t end, const std::string& text) {
  if (severity == Severity::kWarning && !warns_) return;
  found_.push_back({line_, ColumnOf(text_, begin), begin, end, severity, Printable(text)});
}

void Findings::Report(Severity severity, const Statement& statement, Words words,
                      const std::string& text) {
  Report(severity, statement.words[words.first].begin, statement.words[words.last].end, text);
}

std::vector<Diagnostic> Findings::Sorted() {
  std::stable_sort(found_.begin(), found_.end(), [](const Diagnostic& l, const Diagnostic& r) {
    return std::pair(l.line, l.begin) < std::pair(r.line, r.begin);
  });
  return std::move(found_);
}

}  // namespace host
