#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/exchange_listener.h"
#include "host/secrets.h"

namespace host {

// A person's statements and the card's answers, kept as a script.
class TypedScript : public ExchangeListener {
 public:
  // Call it before each line.
  void Begin() { exchange_ = {}; }
  // Adds the line's statement, which has run successfully. `hidden` is true if the trace hid it.
  void Add(const Statement& statement, bool hidden);

  // The script, each line with a line feed. Below each command its status word stands as an
  // expectation. The session's initial definitions help to find the secrets: a line that spells one
  // out becomes a comment with ** in its place, unless secrets are shown; so does what it expects.
  std::string Text(const std::vector<std::pair<std::string, std::string>>& definitions,
                   bool showSecrets) const;

  void Opened(size_t, const ReaderAddress&, bool, bool) override {}
  void CardReset(size_t, const std::optional<std::string>&, const Timing&) override {}
  void Exchanged(const CardExchange& exchange) override;

 private:
  struct Exchange {
    std::string statusWord;
    bool hidden = false;
    size_t headDigits = 0;  // of the command, up to its data
  };
  struct Line {
    Statement statement;
    Exchange exchange;
  };

  std::vector<Line> lines_;
  Exchange exchange_;
};

}  // namespace host
