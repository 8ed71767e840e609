#include "host/batch/table.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <string_view>

#include "host/batch/sha256.h"
#include "host/definitions.h"
#include "host/failure.h"
#include "host/text.h"
#include "host/text_input.h"

namespace host {
namespace {

class TableReader {
 public:
  TableReader(const std::string& name, std::string_view text) : name_(name), text_(text) {
    const std::string_view first = text.substr(0, text.find_first_of("\r\n"));
    for (const char each : {';', '\t'}) {
      if (std::count(first.begin(), first.end(), each) >
          std::count(first.begin(), first.end(), separator_)) {
        separator_ = each;
      }
    }
  }

  bool AtEnd() const { return text_.find_first_not_of("\r\n", at_) == text_.npos; }

  TableRow NextRow() {
    TableRow row{{}, line_};
    do {
      row.values.push_back(NextValue());
    } while (TakeSeparator());
    TakeLineEnd();
    return row;
  }

  [[noreturn]] void Fail(size_t line, const std::string& fault) const {
    throw ScriptFailure(kScriptFault, name_ + ":" + std::to_string(line) + ": " + fault);
  }

 private:
  char Now() const { return at_ < text_.size() ? text_[at_] : '\n'; }
  bool AtLineEnd() const {
    return Now() == '\n' || text_.substr(at_, 2) == "\r\n" || text_.substr(at_) == "\r";
  }

  std::string NextValue() {
    if (Now() == '"') return QuotedValue();
    const size_t begin = at_;
    while (Now() != separator_ && !AtLineEnd()) {
      if (Now() == '"') Fail(line_, "a quote stands inside a value that does not begin with one");
      ++at_;
    }
    return std::string(text_.substr(begin, at_ - begin));
  }

  std::string QuotedValue() {
    const size_t line = line_;
    std::string value;
    for (++at_;; ++at_) {
      if (at_ >= text_.size()) Fail(line, "a quote does not end");
      if (text_[at_] == '"' && text_.substr(at_ + 1, 1) != "\"") break;
      if (text_[at_] == '"') ++at_;
      if (text_[at_] == '\n') ++line_;
      value += text_[at_];
    }
    ++at_;
    if (Now() != separator_ && !AtLineEnd()) Fail(line_, "something stands behind a value's quote");
    return value;
  }

  bool TakeSeparator() {
    if (at_ >= text_.size() || Now() != separator_) return false;
    ++at_;
    return true;
  }

  void TakeLineEnd() {
    if (Now() == '\r') ++at_;
    ++at_;
    ++line_;
  }

  const std::string& name_;
  std::string_view text_;
  char separator_ = ',';
  size_t at_ = 0;
  size_t line_ = 1;
};

void CheckColumns(const TableReader& reader, const std::vector<std::string>& columns) {
  std::set<std::string> taken = {"RESP", "SW", "ATR", "CARD_ID"};
  const size_t own = taken.size();
  for (const std::string& column : columns) {
    if (column.empty() || column.starts_with('%') || !CheckName(column).empty()) {
      reader.Fail(1, "the column \"" + Printable(column) + "\" can't name a variable");
    }
    if (taken.insert(UpperCase(column)).second) continue;
    const bool twice = std::count_if(columns.begin(), columns.end(), [&](const std::string& each) {
                         return UpperCase(each) == UpperCase(column);
                       }) > 1;
    reader.Fail(1,
                "the column " + Printable(column) +
                    (twice && taken.size() > own ? " is there twice"
                                                 : " has the name of a variable that the program "
                                                   "or the script sets"));
  }
}

bool IsUtf8(const std::string& text) {
  try {
    return !nlohmann::json(text).dump().empty();
  } catch (const nlohmann::json::type_error&) {
    return false;
  }
}

}  // namespace

Table ReadTable(const std::string& file) {
  TextInput in(file);
  const std::string text = in.Rest();
  Table table{in.Name(), Sha256(text), {}, {}};
  TableReader reader(table.name, text);
  if (reader.AtEnd()) reader.Fail(1, "the table is empty");
  table.columns = reader.NextRow().values;
  CheckColumns(reader, table.columns);
  while (!reader.AtEnd()) {
    TableRow row = reader.NextRow();
    if (row.values.size() != table.columns.size()) {
      reader.Fail(row.line, "the row has " + Counted(row.values.size(), "value") + " for " +
                                Counted(table.columns.size(), "column"));
    }
    if (!std::all_of(row.values.begin(), row.values.end(), IsUtf8)) {
      reader.Fail(row.line, "a value is no UTF-8");
    }
    table.rows.push_back(std::move(row));
  }
  if (table.rows.empty()) reader.Fail(1, "the table has no row");
  return table;
}

}  // namespace host
