#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/exchange_listener.h"
#include "host/secrets.h"

namespace host {

// What a person has typed and what the card has answered, kept as a script.
class TypedScript : public ExchangeListener {
 public:
  // Before a line is run.
  void Begin() { exchange_ = {}; }
  // The statement of the line, which has been run and has done what it should; hidden if the trace
  // hid it.
  void Add(const Statement& statement, bool hidden);

  // The script, its lines with line feeds. Each command has the status word that it brought as an
  // expectation below it. With the values that the session began with it is known what is secret:
  // a line that spells out a secret is a comment, with ** for it, unless they are shown.
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
