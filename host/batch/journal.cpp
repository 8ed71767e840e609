#include "host/batch/journal.h"

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "host/batch/sha256.h"
#include "host/failure.h"
#include "host/text.h"

namespace host {
namespace {

using Json = nlohmann::ordered_json;

constexpr size_t kChecksumDigits = 16;
constexpr std::string_view kBeforeChecksum = ",\"check\":\"";
constexpr std::string_view kBehindChecksum = "\"}";

constexpr std::string_view kBeginning = "{\"row\":";  // of every line

std::string Checksum(std::string_view text) { return Sha256(text).substr(0, kChecksumDigits); }

// Empty if the line is damaged.
std::optional<Json> ReadLine(std::string_view line) {
  constexpr size_t kTail = kBeforeChecksum.size() + kChecksumDigits + kBehindChecksum.size();
  if (line.size() < kTail) return std::nullopt;
  const std::string_view text = line.substr(0, line.size() - kTail);
  if (line.substr(text.size()) !=
      std::string(kBeforeChecksum) + Checksum(text) + std::string(kBehindChecksum)) {
    return std::nullopt;
  }
  Json object = Json::parse(line, nullptr, false);
  if (object.is_discarded()) return std::nullopt;
  return object;
}

JournalEntry EntryOf(const Json& object) {
  const std::optional<RowState> state = FindRowState(object.at("state").get<std::string>());
  if (!state) throw Failure(kFileFault, "an unknown state");
  return {object.at("row").get<size_t>(), *state,
          object.value("time", ""),       object.value("reader", ""),
          object.value("atr", ""),        object.value("card", ""),
          object.value("reason", "")};
}

std::string Contents(const std::string& file) {
  const std::filesystem::path path(std::u8string(file.begin(), file.end()));
  std::error_code error;
  if (!std::filesystem::exists(path, error) && !error) return "";
  std::ifstream in(path, std::ios::binary);
  std::string text(std::istreambuf_iterator<char>(in), {});
  if (!in) throw Failure(kFileFault, "can't read " + Printable(file));
  return text;
}

void Take(Journal& journal, const Json& object) {
  if (!journal.batch) {
    journal.batch =
        BatchIdentity{object.at("script").get<std::string>(), object.at("table").get<std::string>(),
                      object.at("rows").get<size_t>()};
  }
  JournalEntry entry = EntryOf(object);
  if (entry.row < 1 || entry.row > journal.batch->rows) throw Failure(kFileFault, "no such row");
  journal.entries.push_back(std::move(entry));
}

}  // namespace

Journal ReadJournal(const std::string& file) {
  const std::string text = Contents(file);
  Journal journal;
  for (size_t number = 1; journal.whole < text.size(); ++number) {
    const size_t end = text.find('\n', journal.whole);
    // After a power cut zeros may stand in the place of the octets that were being written.
    if (end == text.npos || text[journal.whole] == '\0') break;
    const auto line = std::string_view(text).substr(journal.whole, end - journal.whole);
    try {
      const std::optional<Json> object = ReadLine(line);
      if (!object) throw Failure(kFileFault, "it does not fit its checksum");
      Take(journal, *object);
    } catch (const std::exception& error) {
      throw Failure(kFileFault, Printable(file) + ':' + std::to_string(number) +
                                    ": the journal is damaged: " + error.what());
    }
    journal.whole = end + 1;
  }
  const auto rest = std::string_view(text).substr(journal.whole);
  const auto begun = rest.substr(0, rest.find('\0')).substr(0, kBeginning.size());
  if (!kBeginning.starts_with(begun) || rest.find('\n') != rest.npos) {
    throw Failure(kFileFault, Printable(file) + ": this is no journal, or it is damaged");
  }
  return journal;
}

std::string JournalLine(const JournalEntry& entry, const BatchIdentity* batch) {
  Json object = {{"row", entry.row}, {"state", NameOf(entry.state)}};
  if (batch != nullptr) {
    object["script"] = batch->script;
    object["table"] = batch->table;
    object["rows"] = batch->rows;
  }
  for (const auto& [name, value] :
       {std::pair("time", &entry.time), std::pair("reader", &entry.reader),
        std::pair("atr", &entry.atr), std::pair("card", &entry.card),
        std::pair("reason", &entry.reason)}) {
    if (!value->empty()) object[name] = *value;
  }
  std::string text = object.dump(-1, ' ', false, Json::error_handler_t::replace);
  text.pop_back();
  return text + std::string(kBeforeChecksum) + Checksum(text) + std::string(kBehindChecksum) + '\n';
}

void Apply(const JournalEntry& entry, RowRecord& record) {
  const bool begins = entry.state == RowState::kBegun && entry.card.empty() && entry.reason.empty();
  if (begins) record = {.begun = entry.time, .reader = entry.reader, .atr = entry.atr};
  record.state = entry.state;
  record.time = entry.time;
  record.reason = entry.reason;
  if (!entry.card.empty()) record.card = entry.card;
}

std::vector<RowRecord> RecordsOf(const Journal& journal) {
  std::vector<RowRecord> records(journal.batch ? journal.batch->rows : 0);
  for (const JournalEntry& entry : journal.entries) Apply(entry, records[entry.row - 1]);
  return records;
}

}  // namespace host
