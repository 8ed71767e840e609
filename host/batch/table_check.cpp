#include "host/batch/table_check.h"

#include <algorithm>
#include <map>
#include <vector>

#include "host/check/check_file.h"
#include "host/failure.h"
#include "host/text.h"

namespace host {
namespace {

constexpr size_t kMostShown = 10;

class TableCheck {
 public:
  TableCheck(const Table& table, const Script& script, const Options& options)
      : table_(table), script_(script), beginning_(CircumstancesOf(options)) {
    script.ForEach([this](const Statement& statement, size_t) {
      statements_.push_back(statement);
      return true;
    });
    const std::string text = UpperCase(script.Text());
    for (const std::string& column : table.columns) read_.push_back(Reads(text, column));
  }

  void CheckKey(const std::string& key) {
    const auto named = [&](const std::string& each) { return UpperCase(each) == UpperCase(key); };
    const auto column = key.empty()
                            ? table_.columns.begin()
                            : std::find_if(table_.columns.begin(), table_.columns.end(), named);
    if (column == table_.columns.end()) {
      throw Failure(kUsageFault,
                    Printable(table_.name) + " has no column " + Printable(key) + " for --key");
    }
    const auto at = static_cast<size_t>(column - table_.columns.begin());
    std::map<std::string, size_t> lines;
    for (const TableRow& row : table_.rows) {
      const auto [first, isNew] = lines.emplace(row.values[at], row.line);
      if (!isNew) {
        Report(row, "it has the same " + Printable(*column) + " as line " +
                        std::to_string(first->second));
      }
    }
  }

  void CheckRows() {
    for (const TableRow& row : table_.rows) {
      Circumstances circumstances = beginning_;
      for (size_t at = 0; at < table_.columns.size(); ++at) {
        if (row.values[at].empty() && read_[at]) Report(row, table_.columns[at] + " is missing");
        circumstances.variables.emplace_back('%' + table_.columns[at], row.values[at]);
      }
      Checker checker(circumstances);
      for (const Statement& statement : statements_) checker.Read(statement);
      for (const Diagnostic& found : checker.End()) {
        if (found.severity != Severity::kError) continue;
        Report(row, script_.Name() + ':' + std::to_string(found.line) + ": " + found.text);
      }
    }
  }

  void RefuseFaults() const {
    if (faults_ == 0) return;
    const size_t more = faults_ - std::min(faults_, kMostShown);
    throw ScriptFailure(
        kScriptFault, shown_ + (more > 0 ? std::to_string(more) + " more; " : "") + "nothing sent");
  }

 private:
  static bool Reads(const std::string& text, const std::string& column) {
    const std::string name = '%' + UpperCase(column);
    for (size_t at = 0; (at = text.find(name, at)) != text.npos; ++at) {
      if (std::string_view(" \t\n(),=").find(text[at + name.size()]) != std::string_view::npos) {
        return true;
      }
    }
    return false;
  }

  void Report(const TableRow& row, const std::string& fault) {
    if (++faults_ > kMostShown) return;
    shown_ += table_.name + ':' + std::to_string(row.line) + ": " + fault + '\n';
  }

  const Table& table_;
  const Script& script_;
  Circumstances beginning_;
  std::vector<Statement> statements_;
  std::vector<bool> read_;  // which columns the script reads
  size_t faults_ = 0;
  std::string shown_;
};

}  // namespace

void CheckTable(const Table& table, const Script& script, const Options& options,
                const std::string& key) {
  TableCheck check(table, script, options);
  check.CheckKey(key);
  check.CheckRows();
  check.RefuseFaults();
}

}  // namespace host
