#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>

#include "host/options.h"
#include "host/pages/pages.h"

// orvane_pages FOLDER: writes orvane.1, options.md (for the site), orvane (for bash) and _orvane
// (for zsh) into the folder.
int main(int count, char** arguments) try {
  if (count != 2) return 2;
  host::Options options;
  CLI::App app;
  host::DescribeOptions(app, options);
  const std::string folder = std::string(arguments[1]) + "/";
  bool written = true;
  const auto write = [&](const char* name, const std::string& text) {
    std::ofstream out(folder + name, std::ios::binary);
    out << text;
    out.close();
    if (!out) std::cerr << "can't write " << folder << name << '\n';
    written = written && static_cast<bool>(out);
  };
  write("orvane.1", host::ManualPage(app));
  write("options.md", host::OptionsPage(app));
  write("orvane", host::BashCompletion(app));
  write("_orvane", host::ZshCompletion(app));
  return written ? 0 : 1;
} catch (const std::exception& fault) {
  std::fprintf(stderr, "%s\n", fault.what());
  return 1;
}
