#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace host {

struct TableRow {
  std::vector<std::string> values;
  size_t line;  // where the row begins in the file
};

// A table of a batch, in the form of RFC 4180. Comma, semicolon or tab separates values, whichever
// the first line has most of. The first line names the columns.
struct Table {
  std::string name;    // the file's name, as messages show it
  std::string digest;  // of the file's text
  std::vector<std::string> columns;
  std::vector<TableRow> rows;
};

// Throws Failure (kFileFault), or ScriptFailure with the line: for a quote that does not end or has
// something behind it, a row with too many or too few values, values that are not UTF-8, and column
// names that are no variable names, occur twice (in either case), or are the program's own.
Table ReadTable(const std::string& file);

}  // namespace host
