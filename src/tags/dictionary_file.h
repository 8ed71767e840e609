#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "orvane.h"
#include "platform/input_file.h"
#include "tags/packed_record.h"

namespace orvane {

// All complete records of a dictionary file, whatever number of records it states. A text is cut to
// fit its field; what follows its first zero is dropped.
std::list<PackedRecord> ReadRecords(platform::InputFile& file);

// Appends the beginning of a file with this number of records.
void AppendCount(std::string& image, std::int32_t count);

// Appends a record in the file's format. The record's fields are terminated.
void AppendRecord(std::string& image, const TagdictData& record);

}  // namespace orvane
