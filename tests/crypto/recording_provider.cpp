// A provider that computes nothing: it journals each call with all that crosses, and answers what a
// test has prepared, with the functions of simulators/simulator.h.
//
// A journal line shows an area to be read as its octets, its count behind a slash, and behind a
// plus sign what lies beyond the count up to the area's end, less the zeros there: 11+22/1. It
// shows the value that a length has at the start in the hash and MAC entries. An output area is
// journaled, as "dirty", only if it isn't all zero.
//
// A prepared answer's data goes to the output area, or is the text of CryptoRsaPublic, and its
// length is the length to set; without data neither is touched. What is not prepared gives the
// octets A1 B2, and from CryptoRsaPublic the text "0C3".
#include <algorithm>
#include <utility>

#include "common/call.h"
#include "src/commands/crypto_provider.h"

namespace {

using simulator::Answer;
using simulator::Argument;
using simulator::Call;
using simulator::Octets;
using simulator::ToHex;

template <std::size_t size>
Argument Area(const std::uint8_t* area, std::int32_t count) {
  std::string text = "null";
  if (area != nullptr) {
    const std::span<const std::uint8_t> whole(area, size);
    const auto counted = std::min(size, static_cast<std::size_t>(std::max(count, 0)));
    auto beyond = whole.subspan(counted);
    while (!beyond.empty() && beyond.back() == 0) beyond = beyond.first(beyond.size() - 1);
    text = ToHex(whole.first(counted));
    if (!beyond.empty()) text.append("+").append(ToHex(beyond));
  }
  return text.append("/").append(std::to_string(count)).c_str();
}
constexpr auto Iv = Area<16>, Key = Area<32>, Data = Area<256>, Hashed = Area<4096>;

std::int32_t Record(const char* entry, std::initializer_list<Argument> arguments,
                    std::uint8_t* output, std::size_t room, std::int32_t* length) {
  Call call(entry, arguments);
  if (std::any_of(output, output + room, [](int octet) { return octet != 0; })) call.With("dirty");
  const Answer answer = call.Ask([] { return Answer{1, Octets{0xA1, 0xB2}}; });
  if (answer.data) *length = static_cast<std::int32_t>(call.Write(answer, output, room));
  return call.Return<std::int32_t>(answer);
}

}  // namespace

extern "C" {

SIMULATOR_API void SimulatorRestart(void) { simulator::ForgetCalls(); }

SIMULATOR_API std::int32_t CryptoHash(const std::uint8_t* data, std::int32_t dataBytes,
                                      std::uint8_t** output, std::int32_t reserved,
                                      std::int32_t* length) {
  static std::uint8_t elsewhere[4096] = {0xEE, 0xEE};  // of which nothing is ever read
  std::uint8_t* const area = std::exchange(*output, elsewhere);
  return Record("CryptoHash", {Hashed(data, dataBytes), reserved, *length}, area, 4096, length);
}

#define BLOCK_ENTRY(name)                                                                          \
  SIMULATOR_API std::int32_t name(const std::uint8_t* iv, std::int32_t ivBytes,                    \
                                  const std::uint8_t* key, std::int32_t keyBytes,                  \
                                  const std::uint8_t* data, std::int32_t dataBytes,                \
                                  std::uint8_t* output, std::int32_t* length, std::int32_t mode) { \
    return Record(#name, {Iv(iv, ivBytes), Key(key, keyBytes), Data(data, dataBytes), mode},       \
                  output, 256, length);                                                            \
  }
BLOCK_ENTRY(CryptoBlockFlagged)
BLOCK_ENTRY(CryptoBlockDefault)

SIMULATOR_API std::int32_t CryptoSubKey(const std::uint8_t* key, std::int32_t keyBytes,
                                        const std::uint8_t* data, std::int32_t dataBytes,
                                        std::uint8_t* output, std::int32_t* length,
                                        std::int32_t mode) {
  return Record("CryptoSubKey", {Key(key, keyBytes), Data(data, dataBytes), mode}, output, 256,
                length);
}

SIMULATOR_API std::int32_t CryptoMac(const std::uint8_t* key, std::int32_t keyBytes,
                                     const std::uint8_t* data, std::int32_t dataBytes,
                                     const std::uint8_t* iv, std::int32_t ivBytes,
                                     std::uint8_t* output, std::int32_t* length,
                                     std::int32_t mode) {
  return Record("CryptoMac",
                {Key(key, keyBytes), Data(data, dataBytes), Iv(iv, ivBytes), *length, mode}, output,
                256, length);
}

SIMULATOR_API std::int32_t CryptoRsaPublic(const char* modulus, const char* exponent,
                                           const char* data, const char** output,
                                           std::int32_t reserved) {
  static std::string text;
  Call call("CryptoRsaPublic", {modulus, exponent, data, *output, reserved});
  const Answer answer = call.Ask([] { return Answer{1, simulator::FromText("0C3")}; });
  if (answer.data) {
    text.assign(answer.data->begin(), answer.data->end());
    *output = text.c_str();
  }
  return call.Return<std::int32_t>(answer);
}

}  // extern "C"
