#pragma once

#include <string>

#include "host/batch/table.h"
#include "host/options.h"
#include "host/script.h"

namespace host {

// Throws ScriptFailure with the faults of the rows, in the table's order: missing values that the
// script reads, a key that occurs twice, and the errors that orvane check finds in the script with
// the row's values. An empty `key` means the first column.
void CheckTable(const Table& table, const Script& script, const Options& options,
                const std::string& key);

}  // namespace host
