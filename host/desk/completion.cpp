#include "host/desk/completion.h"

#include <orvane.h>

#include <set>

#include "host/readers.h"
#include "host/text.h"

namespace host {
namespace {

constexpr std::string_view kOpensReader = "@OPENREADER(";

std::vector<Proposal> ProposeReaders(std::string_view word, const std::vector<std::string>& names) {
  std::vector<Proposal> proposals;
  for (const std::string& name : names) {
    const std::string text = WithoutBlanks(name);
    const bool writable = text.find_first_of("(),") == text.npos;
    if (writable && Begins(text, word)) proposals.push_back({text, nullptr});
  }
  return proposals;
}

// A call with its opening parenthesis, or with both if it takes no arguments.
std::string Typed(const Entry& entry) {
  if (entry.name[0] != '@') return std::string(entry.name);
  const bool bare = entry.usage.ends_with("()");
  return std::string(entry.name) + (bare ? "()" : "(");
}

}  // namespace

bool Begins(std::string_view text, std::string_view word) {
  return UpperCase(text).starts_with(UpperCase(word));
}

size_t WordBegin(std::string_view before) {
  const size_t last = before.find_last_of(kWordBreaks);
  return last == before.npos ? 0 : last + 1;
}

std::vector<Proposal> ProposeWords(std::string_view before,
                                   const std::vector<std::string>& variables,
                                   const std::function<std::vector<std::string>()>& readers) {
  const size_t begin = WordBegin(before);
  const std::string_view word = before.substr(begin);
  if (UpperCase(before.substr(0, begin)).ends_with(kOpensReader) && !word.starts_with('%')) {
    return ProposeReaders(word, readers());
  }
  std::vector<Proposal> proposals;
  std::set<std::string> known;
  for (const Entry& entry : ScriptWords()) {
    const bool opensLine = entry.name[0] == ';' || entry.name[0] == '$';
    const std::string_view typed = opensLine ? before : word;
    if (opensLine && (begin > entry.name.size() || before.empty())) continue;
    if (!Begins(entry.name, typed)) continue;
    // The line up to the word's beginning is typed already.
    proposals.push_back({Typed(entry).substr(opensLine ? begin : 0), &entry});
    known.insert(UpperCase(entry.name));
  }
  for (const std::string& name : variables) {
    if (Begins(name, word) && known.insert(UpperCase(name)).second) {
      proposals.push_back({name, nullptr});
    }
  }
  return proposals;
}

std::vector<std::string> ReaderProposals() {
  std::vector<std::string> addresses;
  for (const int32_t kind : {ReaderKindPcsc, ReaderKindBsit}) {
    for (const std::string& name : ListReaders(kind, 0)) {
      addresses.push_back(std::to_string(kind) + ":" + name);
    }
  }
  return addresses;
}

}  // namespace host
