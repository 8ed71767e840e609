#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/tags_dictionary.h"

namespace CLI {
class App;
}

namespace host {

// The options of orvane batch alone.
struct BatchOptions {
  std::vector<std::string> readers;
  std::string table, key, journal;  // files; key is a column, empty for the first one
  std::string jobs;                 // a database in their place
  bool load = false;                // fill the database
  std::string logFolder;            // empty for none
  bool status = false;
  bool retryBegun = false, skipBegun = false, retryFailed = false;
  int timeout = 0;  // seconds, 0 for none
  bool noWait = false;
  size_t worker = 0;  // the reader that this worker has, from 1; 0: no worker
};

// The contents of the command line.
struct Options {
  BatchOptions batch;
  std::vector<std::string> arguments;  // the whole command line
  std::string file;                    // run, trace
  std::vector<std::string> tests;      // test; files
  std::string only;                    // test; a part of a case's name
  std::string junit, html;             // test; files, empty for none
  std::vector<std::string> files;      // check
  std::string format = "text";         // check
  std::vector<std::string> commands;   // apdu
  std::string expected;                // apdu; a pattern, empty for none
  std::string decodedKind;             // decode
  std::vector<std::string> data;       // decode, tlv
  std::string other, pcap;             // trace; files, empty for none
  TagEntry entry;                      // tags find, add, remove
  std::string tagList;                 // tags import
  int32_t listedKind = 0;              // readers; 0 is all of them
  int32_t ports = 0;                   // readers
  std::string reader;                  // empty: none is named
  int32_t kind = 3;
  std::vector<std::string> definitions;    // NAME=VALUE
  std::vector<std::string> variableFiles;  // of such lines
  std::vector<std::string> environment;    // names
  std::string colour = "auto";
  std::string replay;     // a file; it goes with simulate
  std::string record;     // a file; empty: nothing is recorded
  bool asScript = false;  // trace
  bool times = false;     // trace
  bool replace = false;   // tags add
  bool tap = false;       // test
  bool failFast = false;  // test, batch
  bool verbose = false;   // test
  bool simulate = false;
  bool anyOrder = false;  // goes with replay
  bool coldReset = false;
  bool quiet = false;
  bool showSecrets = false;
  bool tlv = false;
};

// True if standard output should be coloured.
bool WantsColour(const Options& options);

// Adds all subcommands and options, with their help, to the parser.
void DescribeOptions(CLI::App& app, Options& options);

// Throws Failure (kScriptFault) for octets in brackets, which the parser would read as a list.
void CheckArguments(const std::vector<std::string>& arguments);

}  // namespace host
