#include "recordings/event.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

namespace recordings {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::array<std::string_view, 7> kTypes = {"recording", "open",    "atr",  "reset",
                                                    "exchange",  "control", "close"};

enum class Form { kText, kOctets, kShownOctets, kStatusWord };

struct Field {
  const char* name;
  std::string Event::*member;
  Form form = Form::kText;
};

// In the order of a line.
constexpr Field kFields[] = {
    {"begun", &Event::begun},
    {"secrets", &Event::secrets},
    {"kind", &Event::kind},
    {"name", &Event::name},
    {"level", &Event::level},
    {"power", &Event::power},
    {"protocol", &Event::protocol},
    {"atr", &Event::atr, Form::kOctets},
    {"code", &Event::code},
    {"command", &Event::command, Form::kShownOctets},
    {"response", &Event::response, Form::kOctets},
    {"sw", &Event::statusWord, Form::kStatusWord},
    {"hidden", &Event::hidden},
    {"failed", &Event::failed},
};

bool Has(const std::string& text, Form form) {
  if (form == Form::kText) return true;
  const auto isDigit = [form](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') ||
           (c == '*' && form == Form::kShownOctets);
  };
  return text.size() % 2 == 0 && std::all_of(text.begin(), text.end(), isDigit) &&
         (form != Form::kStatusWord || text.size() == 4);
}

std::string ReadText(const Json& line, const Field& field) {
  const auto found = line.find(field.name);
  if (found == line.end()) return {};
  const auto* text = found->get_ptr<const std::string*>();
  if (text == nullptr || !Has(*text, field.form)) {
    const std::string what = field.form == Form::kText ? "text"
                             : field.form == Form::kStatusWord
                                 ? "status word of four digits"
                                 : "text of whole octets, in digits 0 to 9 and A to F";
    throw BadEvent('"' + std::string(field.name) + "\" is no " + what);
  }
  return *text;
}

int64_t ReadNumber(const Json& line, const char* name) {
  constexpr int64_t kMost = 1'000'000'000'000'000;  // microseconds: thirty years
  const auto found = line.find(name);
  if (found == line.end()) return 0;
  const auto* number = found->get_ptr<const Json::number_unsigned_t*>();
  if (number == nullptr || *number > kMost) {
    throw BadEvent('"' + std::string(name) + "\" is no whole number up to " +
                   std::to_string(kMost));
  }
  return static_cast<int64_t>(*number);
}

void CheckVersion(const Json& line) {
  const int64_t version = ReadNumber(line, "version");
  if (version == kVersion) return;
  throw BadEvent("a recording of version " + std::to_string(version) + ", and only version " +
                 std::to_string(kVersion) + " can be read");
}

}  // namespace

std::string WriteEvent(const Event& event) {
  Json line;
  line["event"] = kTypes[static_cast<size_t>(event.type)];
  const bool ofReader = event.type != EventType::kRecording;
  if (ofReader) {
    line["reader"] = event.reader;
  } else {
    line["version"] = kVersion;
  }
  for (const Field& field : kFields) {
    const std::string& text = event.*field.member;
    const bool needed = event.type == EventType::kExchange && field.member == &Event::command;
    if (needed || !text.empty()) line[field.name] = text;
  }
  if (event.incomplete) line["incomplete"] = true;
  if (ofReader) {
    line["at_us"] = event.at;
    line["took_us"] = event.took;
  }
  return line.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::optional<Event> ReadEvent(std::string_view text) {
  const Json line = Json::parse(text, nullptr, false);
  if (!line.is_object()) throw BadEvent("this is no JSON object");
  const std::string type = ReadText(line, {"event", nullptr});
  const auto known = std::find(kTypes.begin(), kTypes.end(), type);
  if (type.empty()) throw BadEvent("it does not say which \"event\" it is");
  if (known == kTypes.end()) return std::nullopt;
  Event event;
  event.type = static_cast<EventType>(known - kTypes.begin());
  if (event.type == EventType::kRecording) CheckVersion(line);
  for (const Field& field : kFields) event.*field.member = ReadText(line, field);
  event.reader = ReadNumber(line, "reader");
  event.at = ReadNumber(line, "at_us");
  event.took = ReadNumber(line, "took_us");
  const auto incomplete = line.find("incomplete");
  event.incomplete = incomplete != line.end() && *incomplete == Json(true);
  if (event.type == EventType::kExchange && !line.contains("command")) {
    throw BadEvent("it has no \"command\"");
  }
  return event;
}

}  // namespace recordings
