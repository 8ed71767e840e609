// The pages in docs/ as their tests read them.
//
// Each line of a block that is fenced as orvane is an example: what a host runs, two blanks or
// more, an arrow, and what the library gives, the code and the text:
//
//   %K = 00 11                      → 0 "0011"
//   SetVarValue("%SW", "9000")      → 0
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "engine/script_host.h"
#include "support/module_loading.h"

namespace orvane_test {

// A file of the sources.
inline std::string ReadText(const std::string& path) {
  std::ifstream in(std::filesystem::path(u8"" ORVANE_SOURCE_FOLDER) / path);
  if (!in) throw std::runtime_error("can't open " + path);
  return {std::istreambuf_iterator<char>(in), {}};
}

// What the group stands for in each match, in the text's order.
inline std::vector<std::string> Matches(const std::string& text, const std::string& pattern) {
  const std::regex expression(pattern);
  std::vector<std::string> matches;
  for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match)
    matches.push_back((*match)[1]);
  return matches;
}

// The lines of all examples, blank ones left out.
inline std::vector<std::string> ExampleLines(const std::string& page) {
  std::vector<std::string> lines;
  std::istringstream in(page);
  bool inside = false;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("```")) {
      inside = line == "```orvane";
    } else if (inside && !line.empty()) {
      lines.push_back(line);
    }
  }
  return lines;
}

// Runs a line and tells what it gave, as the page would.
inline std::string RunLine(const std::string& line) {
  static const std::regex setting("SetVarValue\\(\"(.*)\", \"(.*)\"\\)");
  static const std::regex asking("GetVarValue\\(\"(.*)\"\\)");
  std::smatch parts;
  std::ostringstream given;
  if (std::regex_match(line, parts, setting)) {
    given << SetVarValue(parts.str(1).c_str(), parts.str(2).c_str());
  } else if (std::regex_match(line, parts, asking)) {
    given << GetVarValue(parts.str(1).c_str());
  } else {
    given << RunOne(line);
  }
  return given.str();
}

// Runs the page's examples with this crypto module.
inline void RunExamples(const std::string& page, const std::filesystem::path& module) {
  support::LoadModule(module);
  static const std::regex example("(.*\\S) {2,}→ (.*)");
  for (const std::string& line : ExampleLines(page)) {
    std::smatch parts;
    ASSERT_TRUE(std::regex_match(line, parts, example)) << line;
    EXPECT_EQ(RunLine(parts.str(1)), parts.str(2)) << line;
  }
}

}  // namespace orvane_test
