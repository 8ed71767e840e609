#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "src/commands/crypto_provider.h"

namespace orvane_fuzz {

// The script language a second time, as plainly as it can be told: every step makes strings anew.
class PlainScript {
 public:
  explicit PlainScript(const CryptoProvider& provider);

  // The code of RunScript. The text for the host is in Text().
  std::int32_t Run(const std::string& statement);
  const std::string& Text() const { return text_; }

  std::int32_t Set(const std::string& name, const std::string& value);
  std::int32_t Get(const std::string& name, std::string& out) const;

  const std::map<std::string, std::string>& Variables() const { return variables_; }

 private:
  std::int32_t Tokenise(std::string statement);
  void MergeLiteralRuns();
  std::int32_t Execute();
  bool EvaluateStatementOperand(std::string& value, std::size_t& position);
  bool EvaluateOperand(std::string& operand, std::size_t& position);
  bool EvaluateArgument(std::string& argument, std::size_t& position);

  std::string TokenAt(std::size_t position) const;
  char ClassAt(std::size_t position) const;

  bool RunCall(std::string& out, std::size_t& position);
  bool RunCommand(const std::string& name, std::string& out, std::size_t& position);
  bool ReadArguments(std::size_t count, std::string& out, std::size_t& position);
  bool Mark(std::int32_t kind, std::string& out, std::size_t& position);
  bool Block(const std::string& name, std::string& out, std::size_t& position);
  bool RsaPublic(std::string& out, std::size_t& position);
  bool Hash(std::string& out, std::size_t& position);

  const CryptoProvider& provider_;
  std::map<std::string, std::string> variables_;
  std::vector<std::string> tokens_;
  std::vector<std::string> arguments_;  // of the call that has read its own
  std::string text_;
  std::int32_t kind_ = 0;
  int depth_ = 0;
};

}  // namespace orvane_fuzz
