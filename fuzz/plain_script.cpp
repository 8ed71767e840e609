#include "fuzz/plain_script.h"

#include <algorithm>

#include "fuzz/plain_hex.h"
#include "orvane.h"

namespace orvane_fuzz {
namespace {

// The classes of tokens, named after their first characters; a literal's is 'L', of no token 0.
constexpr std::string_view kMarks = "%@,()=$";
constexpr int kMostCalls = 128;

char ClassOf(const std::string& token) {
  if (token.empty()) return '\0';
  return kMarks.find(token[0]) != std::string_view::npos ? token[0] : 'L';
}

bool IsOperand(char token_class) {
  return token_class == '%' || token_class == 'L' || token_class == '@';
}

std::string Upper(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  }
  return text;
}

std::string UpToZero(const std::string& text) { return text.substr(0, text.find('\0')); }

std::string WithoutBlanks(std::string text) {
  std::erase(text, ' ');
  return text;
}

// The octets of hexadecimal text, cut or filled with zeros to a count.
std::string Converted(const std::string& text, std::size_t count) {
  std::string octets = Decode(text).octets;
  octets.resize(count, '\0');
  return octets;
}

// A number beyond what any text has characters stays as high.
std::int64_t Decimal(const std::string& text) {
  std::size_t at = 0;
  while (at < text.size() && (text[at] == ' ' || (text[at] >= '\t' && text[at] <= '\r'))) ++at;
  const bool negative = at < text.size() && text[at] == '-';
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
  std::int64_t number = 0;
  for (; at < text.size() && IsDecimal(text[at]); ++at) {
    number = std::min<std::int64_t>(number * 10 + (text[at] - '0'), 1 << 30);
  }
  return negative ? -number : number;
}

std::string Middle(const std::string& text, std::int64_t start, std::int64_t count) {
  start = std::max<std::int64_t>(start, 0);
  std::string middle;
  for (std::int64_t i = start; i < static_cast<std::int64_t>(text.size()) && i - start < count;
       ++i) {
    middle += text[static_cast<std::size_t>(i)];
  }
  return middle;
}

std::string Xor(std::string data, const std::string& mask) {
  const std::size_t mask_bytes = mask.size() / 2;
  std::size_t data_bytes = data.size() / 2;
  if (data_bytes % mask_bytes != 0) {
    const std::size_t more = mask_bytes - data_bytes % mask_bytes;
    data.append(2 * more, '0');
    data_bytes += more;
  }
  const std::string blocks = Converted(data, data_bytes);
  std::string result = Converted(mask, mask_bytes);
  for (std::size_t i = 0; i < data_bytes; ++i) {
    char& octet = result[i % mask_bytes];
    octet = static_cast<char>(octet ^ blocks[i]);
  }
  return HexOf(result);
}

// Of the commands on text and data.
std::string ValueOf(const std::string& name, const std::vector<std::string>& arguments) {
  const std::string& first = arguments[0];
  if (name == "@STRMID" || name == "@STRMIDH") {
    const std::int64_t unit = name == "@STRMIDH" ? 2 : 1;
    return Middle(first, unit * Decimal(arguments[1]), unit * Decimal(arguments[2]));
  }
  if (name == "@COMPARE") return arguments[2] == (first == arguments[1] ? "1" : "0") ? "1" : "0";
  if (name == "@STRLEN") return std::to_string(first.size());
  if (name == "@STRLENH") return std::to_string(first.size() / 2);
  if (name == "@XOR") return Xor(first, arguments[1]);
  if (name == "@ASC2HEX") return HexOf(first);
  return UpToZero(Decode(first).octets);
}

struct Command {
  std::string_view name;
  std::size_t arguments;
};
constexpr Command kCommands[] = {
    {"@RESET", 0},     {"@STOP", 0},       {"@STRMID", 3},    {"@STRMIDH", 3}, {"@COMPARE", 3},
    {"@SETREADER", 1}, {"@SETSLOT", 1},    {"@STRLEN", 1},    {"@STRLENH", 1}, {"@DES", 3},
    {"@DESCBC", 4},    {"@MAC", 4},        {"@XOR", 2},       {"@ASC2HEX", 1}, {"@HEX2ASC", 1},
    {"@SUBKEY", 2},    {"@OPENREADER", 1}, {"@RSAPUBENC", 3}, {"@HASH", 1},
};

const std::uint8_t* Octets(const std::string& text) {
  return reinterpret_cast<const std::uint8_t*>(text.data());
}

}  // namespace

PlainScript::PlainScript(const CryptoProvider& provider) : provider_(provider) {
  for (const char* name : {"SYS_RESP", "SYS_SW", "SYS_FUNCRTN", "SYS_STATE"}) Set(name, "");
}

std::int32_t PlainScript::Set(const std::string& name, const std::string& value) {
  if (name.empty()) return ScriptEmptyName;
  variables_[Upper(name)] = value;
  return ScriptDone;
}

std::int32_t PlainScript::Get(const std::string& name, std::string& out) const {
  if (name.empty()) return ScriptEmptyName;
  const auto entry = variables_.find(Upper(name));
  if (entry == variables_.end()) {
    out = std::string("var \"").append(Upper(name)).append("\" not define ");
    return ScriptUndefinedVariable;
  }
  out = entry->second;
  return ScriptDone;
}

std::int32_t PlainScript::Run(const std::string& statement) {
  text_.clear();
  kind_ = KindAssignment;
  depth_ = 0;
  std::int32_t code = Tokenise(statement);
  if (code == 0) code = kind_;
  if (text_.size() > 511) {
    const bool stored = code == KindAssignment;
    text_ = stored ? text_.substr(0, 511) : "";
    if (!stored) code = ScriptException;
  }
  return code;
}

std::int32_t PlainScript::Tokenise(std::string statement) {
  std::replace(statement.begin(), statement.end(), '\t', ' ');
  tokens_.clear();
  if (statement.empty()) return ScriptNothingToRun;
  std::string word;
  const auto flush = [&] {
    if (!word.empty()) tokens_.push_back(word);
    word.clear();
  };
  for (std::size_t i = 0; i < statement.size(); ++i) {
    const char c = statement[i];
    const std::size_t count = tokens_.size();
    const bool first = count == 0 && word.empty();
    if (c == ' ') {
      flush();
    } else if (c == '=' && count <= 1) {
      flush();
      tokens_.push_back("=");
    } else if (c == '(' || c == ')' || c == ',') {
      if (first) return 1;
      flush();
      tokens_.push_back(std::string(1, c));
    } else if ((c == '/' || c == ';') && first) {
      return ScriptNothingToRun;
    } else {
      word += c;
      if (i + 1 == statement.size()) flush();
    }
  }
  MergeLiteralRuns();
  return Execute();
}

void PlainScript::MergeLiteralRuns() {
  std::vector<std::string> merged;
  for (const std::string& token : tokens_) {
    if (!merged.empty() && ClassOf(merged.back()) == 'L' && ClassOf(token) == 'L') {
      merged.back() += token;
    } else {
      merged.push_back(token);
    }
  }
  tokens_ = merged;
}

std::string PlainScript::TokenAt(std::size_t position) const {
  return position < tokens_.size() ? tokens_[position] : "";
}

char PlainScript::ClassAt(std::size_t position) const { return ClassOf(TokenAt(position)); }

std::int32_t PlainScript::Execute() {
  std::string target;
  std::string assigned;
  std::size_t position = 0;
  if (tokens_.size() > 2 && (ClassAt(0) == '%' || ClassAt(0) == 'L') && ClassAt(1) == '=') {
    kind_ = KindAssignment;
    target = TokenAt(0);
    position = 2;
  } else if (!tokens_.empty()) {
    kind_ = ClassAt(0) == '$' ? KindDollar : KindExpression;
  }
  for (; position < tokens_.size(); ++position) {
    if (kind_ != KindAssignment && kind_ != KindExpression) continue;
    std::string& collected = kind_ == KindAssignment ? assigned : text_;
    std::string value;
    if (!EvaluateStatementOperand(value, position)) {
      text_ = value;
      return 1;
    }
    collected += value;
  }
  if (kind_ == KindAssignment) {
    Set(target, assigned);
    text_ = assigned;
  }
  if (kind_ == KindExpression) text_ = Upper(text_);
  return 0;
}

// A token that is no operand leaves no value, and so does a call that gives none.
bool PlainScript::EvaluateStatementOperand(std::string& value, std::size_t& position) {
  if (ClassAt(position) == '%') return Get(TokenAt(position), value) == ScriptDone;
  if (ClassAt(position) == 'L') value = TokenAt(position);
  if (ClassAt(position) == '@') RunCall(value, position);
  return true;
}

bool PlainScript::EvaluateOperand(std::string& operand, std::size_t& position) {
  switch (ClassAt(position)) {
    case '%':
      return Get(TokenAt(position), operand) == ScriptDone;
    case 'L':
      operand = TokenAt(position);
      return true;
    case '@':
      return RunCall(operand, position);
    default:
      return false;
  }
}

bool PlainScript::EvaluateArgument(std::string& argument, std::size_t& position) {
  argument.clear();
  std::string part;
  for (;;) {
    const bool done = EvaluateOperand(part, position);
    argument += part;
    if (!done) return false;
    if (!IsOperand(ClassAt(position + 1))) return true;
    ++position;
  }
}

bool PlainScript::RunCall(std::string& out, std::size_t& position) {
  if (ClassAt(position + 1) != '(') return false;
  if (depth_ == kMostCalls) {
    out.clear();
    return false;
  }
  ++depth_;
  const bool done = RunCommand(Upper(TokenAt(position)), out, position);
  --depth_;
  return done;
}

// Leaves the arguments in arguments_ and the position on the last one's last token.
bool PlainScript::ReadArguments(std::size_t count, std::string& out, std::size_t& position) {
  std::vector<std::string> read;
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) position += 2;
    std::string argument;
    if (!EvaluateArgument(argument, position)) {
      out = argument;
      return false;
    }
    read.push_back(argument);
  }
  arguments_ = read;
  return true;
}

bool PlainScript::Mark(std::int32_t kind, std::string& out, std::size_t& position) {
  kind_ = kind;
  if (!ReadArguments(1, out, position)) return false;
  ++position;
  out = arguments_[0];
  return true;
}

bool PlainScript::RunCommand(const std::string& name, std::string& out, std::size_t& position) {
  const auto* const command = std::find_if(std::begin(kCommands), std::end(kCommands),
                                           [&](const Command& c) { return c.name == name; });
  if (command == std::end(kCommands)) return false;
  position += 2;
  if (name == "@RESET" || name == "@STOP") {
    kind_ = name == "@RESET" ? KindReset : KindStop;
    return true;
  }
  if (name == "@SETREADER") return Mark(KindSetReader, out, position);
  if (name == "@SETSLOT") return Mark(KindSetSlot, out, position);
  if (name == "@OPENREADER") return Mark(KindOpenReader, out, position);
  if (name == "@DES" || name == "@DESCBC" || name == "@MAC" || name == "@SUBKEY") {
    return Block(name, out, position);
  }
  if (name == "@RSAPUBENC") return RsaPublic(out, position);
  if (name == "@HASH") return Hash(out, position);
  if (name == "@COMPARE") kind_ = KindCompare;
  if (!ReadArguments(command->arguments, out, position)) return false;
  if (name == "@XOR" && arguments_[1].size() < 2) return false;
  ++position;
  out = ValueOf(name, arguments_);
  return true;
}

bool PlainScript::Block(const std::string& name, std::string& out, std::size_t& position) {
  if (!ReadArguments(1, out, position)) return false;
  const std::size_t key_bytes = arguments_[0].size() / 2;
  if (key_bytes != 8 && key_bytes != 16 && key_bytes != 24) return false;
  const std::string key = Converted(arguments_[0], 32);
  std::int32_t mode = key_bytes == 8 ? 0 : 1;
  if (name == "@DESCBC") mode += 3;
  const bool has_iv = name == "@DESCBC" || name == "@MAC";
  position += 2;
  if (!ReadArguments(1, out, position)) return false;
  const std::string data_text = arguments_[0];
  const std::size_t data_bytes = data_text.size() / 2;
  if (data_bytes > 256) return false;
  std::string iv_text;
  if (has_iv) {
    position += 2;
    if (!ReadArguments(1, out, position)) return false;
    iv_text = arguments_[0];
  }
  const std::size_t iv_bytes = iv_text.size() / 2;
  if (iv_bytes > 16) return false;
  std::string flag;
  if (name != "@SUBKEY") {
    position += 2;
    if (!ReadArguments(1, out, position)) return false;
    flag = arguments_[0];
  }
  const std::string data = Converted(data_text, 256);
  const std::string iv = Converted(iv_text, 16);

  std::uint8_t area[256] = {};
  std::int32_t bytes = name == "@MAC" ? 0 : -1;
  const auto count = [](std::size_t size) { return static_cast<std::int32_t>(size); };
  if (name == "@SUBKEY") {
    provider_.CryptoSubKey(Octets(key), count(key_bytes), Octets(data), count(data_bytes), area,
                           &bytes, mode);
  } else if (name == "@MAC") {
    provider_.CryptoMac(Octets(key), count(key_bytes), Octets(data), count(data_bytes), Octets(iv),
                        count(iv_bytes), area, &bytes, mode);
  } else {
    (flag == "1" ? provider_.CryptoBlockFlagged : provider_.CryptoBlockDefault)(
        has_iv ? Octets(iv) : nullptr, count(iv_bytes), Octets(key), count(key_bytes), Octets(data),
        count(data_bytes), area, &bytes, mode);
  }
  if (name != "@MAC") ++position;
  if (bytes < 0 || bytes > 256) return false;
  out = HexOf({reinterpret_cast<const char*>(area), static_cast<std::size_t>(bytes)});
  if (name == "@MAC" && flag == "1") out.resize(std::min<size_t>(out.size(), 8));
  if (name == "@MAC") ++position;
  return true;
}

bool PlainScript::RsaPublic(std::string& out, std::size_t& position) {
  if (!ReadArguments(3, out, position)) return false;
  if (arguments_[2].size() > arguments_[0].size()) {
    out = "Data too long for public key";
    return false;
  }
  ++position;
  const char* text = nullptr;
  if (!provider_.CryptoRsaPublic(WithoutBlanks(arguments_[0]).c_str(),
                                 WithoutBlanks(arguments_[1]).c_str(),
                                 WithoutBlanks(arguments_[2]).c_str(), &text, 0)) {
    out = "RSA加密失败";
    return false;
  }
  out = text;
  out.erase(0, std::min(out.find_first_not_of('0'), out.size()));
  return true;
}

bool PlainScript::Hash(std::string& out, std::size_t& position) {
  if (!ReadArguments(1, out, position)) return false;
  ++position;
  std::string hex = Upper(WithoutBlanks(arguments_[0]));
  if (hex.empty()) {
    out = "HEX串为空，请检查！";
    return false;
  }
  const std::size_t bad = hex.find_first_not_of("0123456789ABCDEF");
  if (bad != std::string::npos) {
    out =
        std::string("第").append(std::to_string(bad + 1)).append("个字符不是16进制字符，请检查！");
    return false;
  }
  if (hex.size() % 2 == 1) hex += '0';
  if (hex.size() > 8192) return false;
  std::string data = Converted(hex, 4096);
  std::string area(4096, '\0');
  auto* output = reinterpret_cast<std::uint8_t*>(area.data());
  std::int32_t bytes = 0;
  const auto count = static_cast<std::int32_t>(hex.size() / 2);
  if (!provider_.CryptoHash(Octets(data), count, &output, 0, &bytes)) return false;
  if (bytes < 0 || bytes > 4096) return false;
  out = HexOf(std::string_view(area).substr(0, static_cast<std::size_t>(bytes)));
  return true;
}

}  // namespace orvane_fuzz
