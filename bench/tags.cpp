// Parsing a template, next to a loop that walks its octets and keeps nothing.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

#include "orvane.h"
#include "refuse.h"

namespace {

void Require(bool condition, const char* what) {
  if (!condition) Refuse(what);
}

using Octets = std::vector<std::uint8_t>;

Octets Element(unsigned tag, const Octets& value) {
  Octets element = {static_cast<std::uint8_t>(tag)};
  if (value.size() > 0x7F) element.push_back(0x81);
  element.push_back(static_cast<std::uint8_t>(value.size()));
  element.insert(element.end(), value.begin(), value.end());
  return element;
}

Octets operator+(Octets left, const Octets& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

// File control information as SELECT answers with it: 250 octets, 33 elements.
Octets FileControlInformation() {
  const auto filled = [](unsigned tag, std::size_t size) {
    Octets value(size);
    for (std::size_t i = 0; i < size; ++i) value[i] = static_cast<std::uint8_t>(tag + i * 73);
    return Element(tag, value);
  };
  Octets inner = filled(0x50, 12) + filled(0x87, 1);
  for (int i = 0; i < 5; ++i) {
    inner = inner + Element(0x61, filled(0x4F, 7) + filled(0x50, 10) + filled(0x87, 1));
  }
  Octets value = filled(0x84, 14) + filled(0x82, 2) + filled(0x83, 2) + filled(0x80, 2) +
                 filled(0x81, 2) + filled(0x8A, 1) + filled(0x8C, 6) +
                 Element(0xA5, inner + filled(0x88, 1));
  return Element(0x6F, value + filled(0x85, 245 - value.size()));
}

std::string Text(const Octets& octets) {
  std::string text(2 * octets.size(), '\0');
  HexToAscii(octets.data(), text.data(), static_cast<std::int32_t>(octets.size()));
  return text;
}

void ParseAgain(benchmark::State& state) {
  const std::string text = Text(FileControlInformation());
  Require(text.size() == 500, "the template");
  TagParser* const parser = TagParsing_Init();
  Require(TagParsing_Parse(parser, text.c_str()) == 1, "TagParsing_Parse");
  for (auto _ : state) TagParsing_Parse(parser, text.c_str());
  TagParsing_Free(parser);
}

void ParseWithNewParser(benchmark::State& state) {
  const std::string text = Text(FileControlInformation());
  for (auto _ : state) {
    TagParser* const parser = TagParsing_Init();
    TagParsing_Parse(parser, text.c_str());
    TagParsing_Free(parser);
  }
}

unsigned Walk(const std::uint8_t* at, const std::uint8_t* end) {
  unsigned elements = 0;
  while (at < end) {
    const unsigned tag = *at++;
    std::size_t length = *at++;
    if (length == 0x81) length = *at++;
    ++elements;
    if ((tag & 0x20) != 0) elements += Walk(at, at + length);
    at += length;
  }
  return elements;
}

void WalkOctets(benchmark::State& state) {
  const Octets octets = FileControlInformation();
  Require(Walk(octets.data(), octets.data() + octets.size()) == 33, "the walk");
  for (auto _ : state) {
    benchmark::DoNotOptimize(Walk(octets.data(), octets.data() + octets.size()));
    benchmark::ClobberMemory();
  }
}

void GetTag(benchmark::State& state) {
  TagParser* const parser = TagParsing_Init();
  TagParsing_Parse(parser, Text(FileControlInformation()).c_str());
  char record[sizeof(TagRecord)];
  Require(TagParsing_GetTag(parser, "84", record) == 1, "TagParsing_GetTag");
  for (auto _ : state) {
    TagParsing_GetTag(parser, "84", record);
    benchmark::ClobberMemory();
  }
  TagParsing_Free(parser);
}

BENCHMARK(ParseAgain)->Name("Parse 33 elements/Orvane");
BENCHMARK(WalkOctets)->Name("Parse 33 elements/walk alone");
BENCHMARK(ParseWithNewParser)->Name("Parse with a new parser/Orvane");
BENCHMARK(GetTag)->Name("TagParsing_GetTag/Orvane");

}  // namespace
