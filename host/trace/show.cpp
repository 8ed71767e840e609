#include "host/trace/show.h"

#include <map>

#include "host/text.h"

namespace host {
namespace {

std::string TimesOf(const RecordedEvent& event) {
  const std::string fraction = std::to_string(event.at % 1'000'000);
  return "at " + std::to_string(event.at / 1'000'000) + '.' +
         std::string(6 - fraction.size(), '0') + fraction + " s, took " +
         std::to_string(event.took) + " us";
}

void ShowExchange(const RecordedEvent& event, Trace& trace, bool showSecrets) {
  trace.Command(CommandOf(event), HidesData(event, showSecrets));
  if (!event.failed.empty()) {
    trace.Response({"", "", true}, "the call failed: " + Printable(event.failed));
  } else {
    trace.Response({event.response, event.statusWord, event.incomplete},
                   event.incomplete ? "or the first two octets of data" : "");
  }
}

}  // namespace

void ShowRecording(const Recording& recording, Trace& trace, bool showSecrets, bool times) {
  std::map<int64_t, std::string> atrs;  // the ATR shown last, by reader
  for (const RecordedEvent& event : recording.events) {
    const std::string failed = event.failed.empty() ? "" : ", failed: " + Printable(event.failed);
    switch (event.type) {
      case EventType::kOpen:
        trace.Reader(Printable(event.name) + " (" + Printable(event.kind) + ")" + failed, false);
        break;
      case EventType::kReset:
        trace.Statement(std::nullopt, "reset, " + event.power + failed);
        break;
      case EventType::kExchange:
        ShowExchange(event, trace, showSecrets);
        break;
      case EventType::kControl:
        trace.Statement(std::nullopt, "control " + event.code + "  " + event.command + "  gave " +
                                          event.response + failed);
        break;
      default:
        break;
    }
    if (!event.atr.empty() && (event.type != EventType::kAtr || atrs[event.reader] != event.atr)) {
      trace.Atr(event.atr);
      atrs[event.reader] = event.atr;
    }
    if (times && event.type == EventType::kExchange) trace.Value(TimesOf(event));
  }
}

}  // namespace host
