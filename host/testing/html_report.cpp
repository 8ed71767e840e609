#include "host/testing/html_report.h"

#include <map>
#include <nlohmann/json.hpp>

#include "host/decode/tag_list.h"
#include "host/status_word.h"
#include "host/testing/markup.h"
#include "host/text.h"
#include "host/tlv.h"
#include "testing/page/page.h"

namespace host {
namespace {

using Json = nlohmann::json;

const char* NameOf(CaseState state) {
  switch (state) {
    case CaseState::kPassed:
      return "passed";
    case CaseState::kUnchecked:
      return "unchecked";
    case CaseState::kFailed:
      return "failed";
    case CaseState::kBroken:
      return "broken";
    case CaseState::kPassedOver:
    case CaseState::kNotRun:
      break;
  }
  return "idle";
}

const char* NameOf(Step::Kind kind) {
  constexpr const char* kNames[] = {"statement", "value", "reader", "atr",
                                    "exchange",  "met",   "failed"};
  return kNames[static_cast<size_t>(kind)];
}

const char* NameOf(Standing standing) {
  constexpr const char* kNames[] = {"success", "warning", "error"};
  return kNames[static_cast<size_t>(standing)];
}

double Milliseconds(Duration duration) { return static_cast<double>(duration.count()) / 1e6; }

// The report in the form that the page's script reads.
class PageData {
 public:
  Json Make(const TestReport& report) {
    Json files = Json::array();
    for (const TestFile& file : report.files) {
      Json cases = Json::array();
      for (const TestCase& each : file.cases) cases.push_back(Case(each));
      files.push_back({{"name", Printable(file.name)},
                       {"begin", Milliseconds(file.begin.time_since_epoch())},
                       {"cases", std::move(cases)}});
    }
    return {{"files", std::move(files)},
            {"counted", report.counted},
            {"duration", Milliseconds(report.duration)},
            {"readers", report.readers},
            {"words", words_},
            {"tags", tags_}};
  }

 private:
  Json Case(const TestCase& each) {
    Json steps = Json::array();
    for (const Step& step : each.steps) {
      Json made = {{"kind", NameOf(step.kind)}, {"text", Printable(step.text)}};
      if (step.line > 0) made["line"] = step.line;
      if (step.kind == Step::Kind::kExchange) {
        made["exchange"] = Exchange(each.exchanges[step.exchange]);
      }
      steps.push_back(std::move(made));
    }
    return {{"name", Printable(each.name)},        {"line", each.line},
            {"state", NameOf(each.state)},         {"reason", PrintableLines(each.reason)},
            {"failedLine", each.failedLine},       {"commands", each.commands},
            {"time", Milliseconds(each.duration)}, {"steps", std::move(steps)}};
  }

  Json Exchange(const ReportedExchange& each) {
    Json made = {{"name", each.name},
                 {"header", each.header},
                 {"lengthField", each.lengthField},
                 {"data", each.data},
                 {"hidden", each.hiddenOctets},
                 {"expectedLength", each.expectedLength},
                 {"answered", each.answered},
                 {"response", each.response},
                 {"word", each.statusWord},
                 {"time", Milliseconds(each.duration)}};
    if (!each.note.empty()) made["note"] = each.note;
    if (!each.statusWord.empty()) {
      words_[each.statusWord] = {NameOf(StandingOf(each.statusWord)),
                                 DescribeStatusWord(each.statusWord)};
    }
    if (Json elements = Elements(each.response); !elements.empty()) made["tlv"] = elements;
    return made;
  }

  // The places of tags and values in the response's digits; none if it is no BER-TLV data.
  Json Elements(std::string_view digits) {
    Json elements = Json::array();
    const std::string fault = ReadTlv(digits, [&](const TlvElement& element) {
      const std::string tag(element.tag);
      if (!tags_.contains(tag)) tags_[tag] = TagName(tag);
      const auto begin = [&](std::string_view part) { return part.data() - digits.data(); };
      const auto end = [&](std::string_view part) { return begin(part) + std::ssize(part); };
      elements.push_back({element.level, begin(element.tag), end(element.tag), begin(element.value),
                          end(element.value), element.constructed});
    });
    return fault.empty() ? elements : Json::array();
  }

  std::map<std::string, Json> words_;
  std::map<std::string, std::string> tags_;
};

// JSON in which no text can end the script element around it.
std::string ForScript(const Json& data) {
  std::string text = data.dump(-1, ' ', false, Json::error_handler_t::replace);
  for (size_t at = 0; (at = text.find('<', at)) != text.npos;) text.replace(at, 1, "\\u003c");
  return text;
}

}  // namespace

std::string HtmlReport(const TestReport& report) {
  const CaseCounts counts = Count(report);
  std::string title = std::to_string(counts.failed + counts.broken) + " of " +
                      Counted(counts.all, report.counted) + " failed";
  for (const TestFile& file : report.files) title += ", " + file.name;
  std::string page =
      "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>";
  page.append(Markup(title)).append("</title>\n<style>").append(kPageStyle);
  page.append("</style>\n</head>\n<body>\n<noscript><p>").append(Markup(title));
  page.append(". The report itself takes JavaScript to show.");
  page.append("</p></noscript>\n<script type=\"application/json\" id=\"report\">");
  page.append(ForScript(PageData().Make(report))).append("</script>\n<script>");
  return page.append(kPageScript).append("</script>\n</body>\n</html>\n");
}

}  // namespace host
