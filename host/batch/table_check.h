#pragma once

#include <string>

#include "host/batch/table.h"
#include "host/options.h"
#include "host/script.h"

namespace host {

// Throws ScriptFailure with what is wrong with rows, in the order of the table: values that are
// missing where the script reads them, the same key twice, and what orvane check finds in the
// script with the row's values. An empty key is the first column.
void CheckTable(const Table& table, const Script& script, const Options& options,
                const std::string& key);

}  // namespace host
