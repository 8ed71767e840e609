#include "tests/crypto/recording_provider.h"

#include <algorithm>

#include "common/call.h"
#include "src/commands/crypto_provider.h"

namespace {

using simulator::Answer;
using simulator::Call;
using simulator::Octets;
using simulator::ToHex;

constexpr std::size_t kKeyArea = 32;
constexpr std::size_t kDataArea = 256;
constexpr std::size_t kIvArea = 16;
constexpr std::size_t kResultArea = 256;
constexpr std::size_t kHashArea = 4096;

// A text of the journal without quotes.
std::string Show(const std::uint8_t* area, std::int32_t count, std::size_t size) {
  if (area == nullptr) return "null/" + std::to_string(count);
  const std::span<const std::uint8_t> whole(area, size);
  const auto counted = std::min(size, static_cast<std::size_t>(std::max(count, 0)));
  auto beyond = whole.subspan(counted);
  while (!beyond.empty() && beyond.back() == 0) beyond = beyond.first(beyond.size() - 1);
  std::string text = ToHex(whole.first(counted));
  if (!beyond.empty()) text.append("+").append(ToHex(beyond));
  return text.append("/").append(std::to_string(count));
}

bool IsDirty(const std::uint8_t* area, std::size_t size) {
  return std::any_of(area, area + size, [](std::uint8_t octet) { return octet != 0; });
}

Answer TwoOctets() { return {1, Octets{0xA1, 0xB2}}; }

void SetLength(const Answer& answer, std::int64_t written, std::int32_t* length) {
  if (answer.length != RECORDING_SETS_NO_LENGTH) *length = static_cast<std::int32_t>(written);
}

// What the entries with a key have in common. The arguments are in the order of the entry.
std::int32_t Record(const char* entry, std::initializer_list<std::string> areas,
                    std::uint8_t* output, std::int32_t* outputBytes, std::int32_t mode) {
  Call call(entry, {});
  for (const std::string& area : areas) call.With(area.c_str());
  call.With(mode);
  if (IsDirty(output, kResultArea)) call.With("dirty");
  const Answer answer = call.Ask(TwoOctets);
  SetLength(answer, call.Write(answer, output, kResultArea), outputBytes);
  return call.Return<std::int32_t>(answer);
}

}  // namespace

extern "C" {

SIMULATOR_API void SimulatorRestart(void) { simulator::ForgetCalls(); }

SIMULATOR_API std::int32_t CryptoHash(const std::uint8_t* data, std::int32_t dataBytes,
                                      std::uint8_t** output, std::int32_t reserved,
                                      std::int32_t* outputBytes) {
  static std::uint8_t elsewhere[kHashArea];
  Call call("CryptoHash", {Show(data, dataBytes, kHashArea).c_str(), reserved, *outputBytes});
  const Answer answer = call.Ask(TwoOctets);
  if (answer.length == RECORDING_POINTS_ELSEWHERE) {
    *output = elsewhere;
    *outputBytes = static_cast<std::int32_t>(answer.data->size());
    std::copy(answer.data->begin(), answer.data->end(), elsewhere);
  } else {
    SetLength(answer, call.Write(answer, *output, kHashArea), outputBytes);
  }
  return call.Return<std::int32_t>(answer);
}

#define BLOCK_ENTRY(name)                                                      \
  SIMULATOR_API std::int32_t name(                                             \
      const std::uint8_t* iv, std::int32_t ivBytes, const std::uint8_t* key,   \
      std::int32_t keyBytes, const std::uint8_t* data, std::int32_t dataBytes, \
      std::uint8_t* output, std::int32_t* outputBytes, std::int32_t mode) {    \
    return Record(#name,                                                       \
                  {Show(iv, ivBytes, kIvArea), Show(key, keyBytes, kKeyArea),  \
                   Show(data, dataBytes, kDataArea)},                          \
                  output, outputBytes, mode);                                  \
  }

BLOCK_ENTRY(CryptoBlockFlagged)
BLOCK_ENTRY(CryptoBlockDefault)

SIMULATOR_API std::int32_t CryptoSubKey(const std::uint8_t* key, std::int32_t keyBytes,
                                        const std::uint8_t* data, std::int32_t dataBytes,
                                        std::uint8_t* output, std::int32_t* outputBytes,
                                        std::int32_t mode) {
  return Record("CryptoSubKey", {Show(key, keyBytes, kKeyArea), Show(data, dataBytes, kDataArea)},
                output, outputBytes, mode);
}

SIMULATOR_API std::int32_t CryptoMac(const std::uint8_t* key, std::int32_t keyBytes,
                                     const std::uint8_t* data, std::int32_t dataBytes,
                                     const std::uint8_t* iv, std::int32_t ivBytes,
                                     std::uint8_t* output, std::int32_t* outputBytes,
                                     std::int32_t mode) {
  return Record("CryptoMac",
                {Show(key, keyBytes, kKeyArea), Show(data, dataBytes, kDataArea),
                 Show(iv, ivBytes, kIvArea), std::to_string(*outputBytes)},
                output, outputBytes, mode);
}

SIMULATOR_API std::int32_t CryptoRsaPublic(const char* modulus, const char* exponent,
                                           const char* data, const char** output,
                                           std::int32_t reserved) {
  static std::string text;
  Call call("CryptoRsaPublic", {modulus, exponent, data, *output, reserved});
  const Answer answer = call.Ask([] { return Answer{1, simulator::FromText("0C3")}; });
  if (answer.length != RECORDING_NULL_TEXT) {
    text.assign(answer.data->begin(), answer.data->end());
    *output = text.c_str();
  }
  return call.Return<std::int32_t>(answer);
}

}  // extern "C"
