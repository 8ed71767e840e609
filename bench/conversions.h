#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <vector>

#include "refuse.h"

using Octets = std::vector<unsigned char>;

inline Octets MakeOctets(std::size_t count) {
  Octets octets;
  for (std::size_t i = 0; i < count; ++i) octets.push_back(static_cast<unsigned char>(i * 73 + 5));
  return octets;
}

inline std::string MakeText(const Octets& octets, bool blanks) {
  std::string text;
  for (const unsigned char octet : octets) {
    if (blanks && !text.empty()) text += ' ';
    for (const int digit : {octet >> 4, octet & 15}) text += "0123456789ABCDEF"[digit];
  }
  return text;
}

// Registers convert(out), which tells whether it could make `expected` of out.
template <typename Out, typename Convert>
void Measure(const std::string& name, const Out& expected, const Convert& convert) {
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    Out out(expected.size(), 0);
    if (!convert(out) || out != expected) Refuse(name);
    for (auto _ : state) {
      convert(out);
      benchmark::ClobberMemory();
    }
  });
}

// Registers all conversions for one library, a class with static members: Encode(octets, out)
// writes packed digits; Decode(text, blanks, out) reads packed digits or, with blanks, one blank
// between octets. Both tell whether it was done.
template <typename Library>
bool MeasureConversions(const std::string& libraryName) {
  for (const std::size_t count : {16U, 256U, 4096U}) {
    const std::string size = std::to_string(count) + " octets";
    const Octets octets = MakeOctets(count);
    Measure("HexToAscii " + size + "/" + libraryName, MakeText(octets, false),
            [octets](std::string& out) { return Library::Encode(octets, out); });
    for (const bool blanks : {false, true}) {
      const std::string what = "AsciiToHex " + size + (blanks ? " with blanks" : "");
      Measure(what + "/" + libraryName, octets,
              [text = MakeText(octets, blanks), blanks](Octets& out) {
                return Library::Decode(text, blanks, out);
              });
    }
  }
  return true;
}
