// A line of the input is a statement, or what a host does between statements:
//   <NAME=VALUE   stores a variable
//   >NAME         asks whether it exists
// Each answer is that of PlainScript. The script exports and what stands behind them are compiled
// in, so that every input finds a fresh engine and a provider of its own.
#include <cstdint>
#include <string>
#include <string_view>

#include "commands/crypto_provider_table.h"
#include "engine/engine.h"
#include "fuzz/input.h"
#include "fuzz/plain_script.h"
#include "orvane.h"

namespace orvane_fuzz {
namespace {

// What a variable can grow to: a statement joins many of them.
constexpr std::size_t kMostText = 16384;

// Takes in all that crosses, and says how long the answer is to be.
class Sum {
 public:
  explicit Sum(std::uint32_t entry) : sum_(entry) {}

  Sum& Add(const void* octets, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) Add(static_cast<const std::uint8_t*>(octets)[i]);
    return Add(static_cast<std::uint32_t>(count));
  }
  Sum& Add(const char* text) { return Add(text, static_cast<std::int32_t>(std::strlen(text))); }
  Sum& Add(std::uint32_t number) {
    sum_ = (sum_ ^ number) * 16777619;
    return *this;
  }
  std::int32_t Fill(std::uint8_t* area, std::int32_t room) const {
    constexpr std::int32_t kShort = 8;
    const std::int32_t lengths[] = {kShort, kShort, kShort, kShort, room, room + 1, -1, 0};
    const std::int32_t length = lengths[sum_ >> 20 & 7];
    for (std::int32_t i = 0; i < length && i < room; ++i) {
      area[i] = static_cast<std::uint8_t>(sum_ >> i % 4 * 8);
    }
    return length;
  }
  std::uint32_t Number() const { return sum_; }

 private:
  std::uint32_t sum_;
};

std::int32_t HashEntry(const std::uint8_t* data, std::int32_t count, std::uint8_t** output,
                       std::int32_t, std::int32_t* bytes) {
  const Sum sum = Sum(1).Add(data, count);
  *bytes = sum.Fill(*output, 4096);
  return sum.Number() % 8 != 0;
}

template <std::uint32_t kEntry>
std::int32_t BlockEntry(const std::uint8_t* iv, std::int32_t iv_count, const std::uint8_t* key,
                        std::int32_t key_count, const std::uint8_t* data, std::int32_t count,
                        std::uint8_t* output, std::int32_t* bytes, std::int32_t mode) {
  const Sum sum = Sum(kEntry + (iv == nullptr ? 100 : 0))
                      .Add(iv, iv_count)
                      .Add(key, key_count)
                      .Add(data, count)
                      .Add(static_cast<std::uint32_t>(mode));
  // An entry that sets no length must be noticed.
  if (sum.Number() % 16 != 0) *bytes = sum.Fill(output, 256);
  return 0;
}

std::int32_t SubKeyEntry(const std::uint8_t* key, std::int32_t key_count, const std::uint8_t* data,
                         std::int32_t count, std::uint8_t* output, std::int32_t* bytes,
                         std::int32_t mode) {
  return BlockEntry<4>(nullptr, 0, key, key_count, data, count, output, bytes, mode);
}

std::int32_t MacEntry(const std::uint8_t* key, std::int32_t key_count, const std::uint8_t* data,
                      std::int32_t count, const std::uint8_t* iv, std::int32_t iv_count,
                      std::uint8_t* output, std::int32_t* bytes, std::int32_t mode) {
  return BlockEntry<5>(iv, iv_count, key, key_count, data, count, output, bytes, mode);
}

std::int32_t RsaEntry(const char* modulus, const char* exponent, const char* data,
                      const char** output, std::int32_t) {
  static std::string text;
  const std::uint32_t sum = Sum(6).Add(modulus).Add(exponent).Add(data).Number();
  text = std::string(sum >> 8 & 3, '0') + (sum % 16 == 1 ? "" : std::to_string(sum));
  *output = text.c_str();
  return sum % 8 != 0;
}

constexpr CryptoProvider kProvider = {HashEntry,   BlockEntry<2>, BlockEntry<3>,
                                      SubKeyEntry, MacEntry,      RsaEntry};

void CheckStatement(PlainScript& plain, std::string_view statement) {
  const std::string script(statement);
  const std::int32_t code = plain.Run(script);
  std::string text = plain.Text();
  text.resize(512, '\0');
  ExpectWritten(text, script.c_str(), [&](char* result) {
    Expect(RunScript(Text(script), result) == code, script.c_str());
  });
}

void CheckLine(PlainScript& plain, std::string_view line) {
  const auto end = std::min(line.find('='), line.size());
  if (line.starts_with('<')) {
    const std::string name(line.substr(1, end - 1));
    const std::string value(line.substr(std::min(end + 1, line.size())));
    Expect(SetVarValue(Text(name), Text(value)) == plain.Set(name, value), "SetVarValue");
  } else if (line.starts_with('>')) {
    const std::string name(line.substr(1));
    std::string value;
    Expect(GetVarValue(Text(name)) == plain.Get(name, value), "GetVarValue");
  } else {
    CheckStatement(plain, line);
  }
}

bool IsSmall(const PlainScript& plain) {
  std::size_t size = 0;
  for (const auto& [name, value] : plain.Variables()) size += value.size();
  return size <= kMostText;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orvane::ScriptEngine& engine = *orvane::EnsureEngine();
  engine = orvane::ScriptEngine();
  PlainScript plain(kProvider);
  Input input(data, size);
  while (!input.Empty() && IsSmall(plain)) {
    const std::string_view line = input.Line();
    CheckLine(plain, line.substr(0, line.find('\0')));
  }
  Expect(std::equal(engine.variables.begin(), engine.variables.end(), plain.Variables().begin(),
                    plain.Variables().end()),
         "the variables");
  return 0;
}

}  // namespace orvane_fuzz

const CryptoProvider& orvane::BoundCryptoProvider() { return orvane_fuzz::kProvider; }
