#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "orvane.h"
#include "platform/input_file.h"
#include "tags/packed_record.h"

namespace orvane {

// The records of a dictionary file: all that are complete, whatever the file says their number is.
// A text is cut to fit its field; what stands behind its first zero is dropped.
std::list<PackedRecord> ReadRecords(platform::InputFile& file);

// How such a file begins, for this number of records.
void AppendCount(std::string& image, std::int32_t count);

// A record as it stands in the file. Its fields are terminated.
void AppendRecord(std::string& image, const TagdictData& record);

}  // namespace orvane
