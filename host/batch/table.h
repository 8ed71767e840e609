#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace host {

struct TableRow {
  std::vector<std::string> values;
  size_t line;  // of the file, where it begins
};

// A table of a batch: RFC 4180, with comma, semicolon or tab between values, whichever the first
// line has most of. That line names the columns.
struct Table {
  std::string name;    // of the file, as messages show it
  std::string digest;  // of its text
  std::vector<std::string> columns;
  std::vector<TableRow> rows;
};

// Throws Failure (kFileFault), or ScriptFailure with the line for a quote that does not end or has
// something behind it, a row with too many or too few values, values that are no UTF-8, and names
// of columns that are no names of variables, stand there twice in either case, or are the program's
// own.
Table ReadTable(const std::string& file);

}  // namespace host
