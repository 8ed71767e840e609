// The commands for cryptography over a provider that answers as the input says. A line of the input
// is a statement, the answer to all calls from now on (see answer.h; of a text, data is the text
// itself), or a - and the name of an entry that the provider lacks from now on.
#include <vector>

#include "commands/builtin.h"
#include "commands/crypto_provider_table.h"
#include "engine/engine.h"
#include "engine/tokeniser.h"
#include "fuzz/answer.h"
#include "util/hex.h"

namespace {

using namespace orvane_fuzz;
using orvane::ScriptEngine;

constexpr std::size_t kArea = 256;
constexpr std::size_t kHashArea = 4096;

struct Provider {
  Answer answer;
  int calls = 0;
  std::string expected;  // what the last call makes of its command, if that succeeds
  bool succeeds = false;
};
Provider provider;

bool IsZero(const std::uint8_t* area, std::size_t size) {
  return std::all_of(area, area + size, [](std::uint8_t octet) { return octet == 0; });
}

void ExpectCount(std::int32_t count, std::size_t most) {
  Expect(count >= 0 && static_cast<std::size_t>(count) <= most, "a count");
}

void ExpectParameters(std::int32_t keyBytes, std::int32_t dataBytes, std::int32_t mode,
                      const std::uint8_t* output) {
  Expect(keyBytes == 8 || keyBytes == 16 || keyBytes == 24, "a key's length");
  Expect((mode == 0 || mode == 3) == (keyBytes == 8), "a mode");
  Expect(mode == 0 || mode == 1 || mode == 3 || mode == 4, "a mode");
  ExpectCount(dataBytes, kArea);
  Expect(IsZero(output, kArea), "an output area");
}

// Gives octets as the answer has them.
std::int32_t Give(std::uint8_t* output, std::size_t room, std::int32_t* outputBytes,
                  bool resultCounts) {
  const Answer& answer = provider.answer;
  const std::string digits = answer.data.value_or("A1B2C3D4E5F60718");
  std::string octets((digits.size() + 1) / 2, '\0');
  orvane::DecodeHex(digits, reinterpret_cast<std::uint8_t*>(octets.data()));
  answer.Write(octets, output, room);
  answer.Report(outputBytes, octets.size());
  const auto result = static_cast<std::int32_t>(answer.result.value_or(1));

  ++provider.calls;
  provider.succeeds = *outputBytes >= 0 && static_cast<std::size_t>(*outputBytes) <= room &&
                      (result != 0 || !resultCounts);
  provider.expected = provider.succeeds
                          ? orvane::HexText(output, static_cast<std::size_t>(*outputBytes))
                          : std::string();
  return result;
}

std::int32_t Hash(const std::uint8_t*, std::int32_t dataBytes, std::uint8_t** output,
                  std::int32_t reserved, std::int32_t* outputBytes) {
  ExpectCount(dataBytes, kHashArea);
  Expect(dataBytes > 0 && reserved == 0 && *outputBytes == 0, "what is hashed");
  Expect(IsZero(*output, kHashArea), "a digest's area");
  const std::int32_t result = Give(*output, kHashArea, outputBytes, true);
  if (provider.answer.manner == '!') *output = nullptr;
  return result;
}

std::int32_t Block(const std::uint8_t* iv, std::int32_t ivBytes, const std::uint8_t*,
                   std::int32_t keyBytes, const std::uint8_t*, std::int32_t dataBytes,
                   std::uint8_t* output, std::int32_t* outputBytes, std::int32_t mode) {
  ExpectParameters(keyBytes, dataBytes, mode, output);
  ExpectCount(ivBytes, 16);
  Expect((iv != nullptr) == (mode >= 3) && (iv != nullptr || ivBytes == 0), "a start value");
  return Give(output, kArea, outputBytes, false);
}

std::int32_t SubKey(const std::uint8_t*, std::int32_t keyBytes, const std::uint8_t*,
                    std::int32_t dataBytes, std::uint8_t* output, std::int32_t* outputBytes,
                    std::int32_t mode) {
  ExpectParameters(keyBytes, dataBytes, mode, output);
  return Give(output, kArea, outputBytes, false);
}

std::int32_t Mac(const std::uint8_t*, std::int32_t keyBytes, const std::uint8_t*,
                 std::int32_t dataBytes, const std::uint8_t* iv, std::int32_t ivBytes,
                 std::uint8_t* output, std::int32_t* outputBytes, std::int32_t mode) {
  ExpectParameters(keyBytes, dataBytes, mode, output);
  ExpectCount(ivBytes, 16);
  Expect(iv != nullptr && *outputBytes == 0, "a MAC's parameters");
  return Give(output, kArea, outputBytes, false);
}

std::int32_t RsaPublic(const char* modulus, const char* exponent, const char* data,
                       const char** output, std::int32_t reserved) {
  static std::vector<char> text;  // of just its size
  Expect(*output == nullptr && reserved == 0, "what is to be encrypted");
  for (const char* part : {modulus, exponent, data}) {
    Expect(std::strchr(part, ' ') == nullptr, "a text without blanks");
  }
  const std::string given = provider.answer.data.value_or("00C3");
  text.assign(given.c_str(), given.c_str() + given.size() + 1);
  if (provider.answer.reportsLength) *output = text.data();
  const auto result = static_cast<std::int32_t>(provider.answer.result.value_or(1));

  ++provider.calls;
  provider.succeeds = *output != nullptr && result != 0;
  provider.expected = text.data();
  provider.expected.erase(0, provider.expected.find_first_not_of('0'));
  return result;
}

constexpr CryptoProvider kComplete{.CryptoHash = Hash,
                                   .CryptoBlockFlagged = Block,
                                   .CryptoBlockDefault = Block,
                                   .CryptoSubKey = SubKey,
                                   .CryptoMac = Mac,
                                   .CryptoRsaPublic = RsaPublic};
CryptoProvider bound;

void Lack(std::string_view entry) {
  if (entry == "CryptoHash") bound.CryptoHash = nullptr;
  if (entry == "CryptoBlockFlagged") bound.CryptoBlockFlagged = nullptr;
  if (entry == "CryptoBlockDefault") bound.CryptoBlockDefault = nullptr;
  if (entry == "CryptoSubKey") bound.CryptoSubKey = nullptr;
  if (entry == "CryptoMac") bound.CryptoMac = nullptr;
  if (entry == "CryptoRsaPublic") bound.CryptoRsaPublic = nullptr;
}

void RunStatement(ScriptEngine& engine, std::string_view statement) {
  Room result(512);
  const std::int32_t code = orvane::RunStatement(engine, statement, result.Data());
  Expect((code >= KindAssignment && code <= KindOpenReader) || code == ScriptNothingToRun ||
             code == ScriptException,
         "a code");
  const std::string_view behind = result.Bytes().substr(result.Text().size());
  Expect(!behind.empty() && behind.find_first_not_of('\0') == behind.npos, "a text's end");
}

// The statement's tokens once more, for what the command leaves in its value.
void RunCommand(ScriptEngine& engine) {
  constexpr char kUnchanged[] = "unchanged";
  std::string out = kUnchanged;
  std::size_t position = 0;
  provider.calls = 0;
  const bool done = orvane::RunBuiltin(engine, out, position);
  if (provider.calls == 0) return;
  Expect(provider.calls == 1 && done == provider.succeeds, "whether the command ran to its end");
  if (done) {
    const bool cut = out.size() == 8 && provider.expected.starts_with(out);
    if (!cut) ExpectSame(out, provider.expected, "the command's value");
  } else {
    Expect(out == kUnchanged || out == "RSA加密失败", "the value of a command that failed");
  }
}

}  // namespace

const CryptoProvider& orvane::BoundCryptoProvider() { return bound; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  ScriptEngine engine;
  provider = {};
  bound = kComplete;
  while (!input.Empty()) {
    std::string_view line = input.Line();
    line = line.substr(0, line.find('\0'));
    if (!line.empty() && Answer::Begins(line[0])) {
      provider.answer = Answer::Read(line[0], line.substr(1));
    } else if (line.starts_with('-')) {
      Lack(line.substr(1));
    } else {
      RunStatement(engine, line);
      const bool oneCall = std::count(line.begin(), line.end(), '@') == 1;
      if (oneCall && line.starts_with('@')) RunCommand(engine);
    }
  }
  return 0;
}
