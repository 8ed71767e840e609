#include "commands/data_commands.h"

#include "util/hex.h"

namespace orvane {
namespace {

// The octets of a hexadecimal text, in an area of zeros with room for every digit of it.
std::string Octets(const std::string& hex) {
  std::string octets((hex.size() + 1) / 2, '\0');
  DecodeHex(hex, reinterpret_cast<unsigned char*>(octets.data()));
  return octets;
}

void GiveHex(Call& call, const std::string& octets) {
  call.GiveHex(reinterpret_cast<const unsigned char*>(octets.data()), octets.size());
}

}  // namespace

bool Xor(Call& call) {
  std::string data;
  std::string mask;
  if (!call.Read(data) || !call.ReadNext(mask)) return false;
  const std::size_t maskBytes = mask.size() / 2;
  if (maskBytes == 0) return false;
  const std::size_t excess = data.size() / 2 % maskBytes;
  if (excess != 0) data.append(2 * (maskBytes - excess), '0');
  const std::size_t dataBytes = data.size() / 2;

  const std::string blocks = Octets(data);
  std::string folded = Octets(mask);
  folded.resize(maskBytes);
  for (std::size_t i = 0; i < dataBytes; ++i) {
    folded[i % maskBytes] = static_cast<char>(folded[i % maskBytes] ^ blocks[i]);
  }
  GiveHex(call, folded);
  call.Close();
  return true;
}

bool AscToHex(Call& call) {
  std::string text;
  if (!call.Read(text)) return false;
  call.Close();
  GiveHex(call, text);
  return true;
}

bool HexToAsc(Call& call) {
  std::string hex;
  if (!call.Read(hex)) return false;
  call.Close();
  const std::string octets = Octets(hex);
  call.Give(octets.c_str());
  return true;
}

}  // namespace orvane
