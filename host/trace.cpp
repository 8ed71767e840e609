#include "host/trace.h"

#include <algorithm>
#include <array>
#include <utility>

#include "host/status_word.h"
#include "host/text.h"
#include "host/tlv.h"

namespace host {
namespace {

constexpr int kLineWidth = 4;
constexpr int kLabelWidth = 5;
constexpr std::string_view kIndent = "      ";  // the line number and the gap after it

// Header, length field, data and Le, separated. Leaves out data that needs rows of its own.
std::string Grouped(const CardCommand& command, bool hideData) {
  const size_t data = command.dataEnd - command.dataBegin;
  std::string text = SpacedOctets(command.Part(0, std::min<size_t>(4, command.dataBegin)));
  const auto add = [&text](const std::string& part) {
    if (!part.empty()) text += "  " + part;
  };
  if (command.dataBegin > 4) add(SpacedOctets(command.Part(4, command.dataBegin)));
  if (data > 0 && hideData) add("** (" + Counted(data, "byte") + ")");
  if (!hideData && data <= kRowOctets) {
    add(SpacedOctets(command.Part(command.dataBegin, command.dataEnd)));
  }
  if (hideData || data <= kRowOctets) {
    add(SpacedOctets(command.Part(command.dataEnd, command.Octets())));
  }
  return text;
}

}  // namespace

std::string Trace::Paint(Colour colour, std::string_view text) const {
  constexpr std::array<std::string_view, 8> kSequences = {"",   "1",  "2",  "32",
                                                          "33", "31", "36", "1;37;41"};
  const std::string_view sequence = kSequences[static_cast<size_t>(colour)];
  if (!settings_.colour || sequence.empty() || text.empty()) return std::string(text);
  return "\x1b[" + std::string(sequence) + "m" + std::string(text) + "\x1b[0m";
}

void Trace::Detail(Colour colour, std::string_view label, std::string_view text) {
  std::string padded(label);
  padded.resize(kLabelWidth, ' ');
  out_ << kIndent << Paint(colour, padded) << text << '\n';
}

void Trace::Rows(Colour colour, std::string_view label, std::string_view digits) {
  for (const OctetRow& row : OctetRows(digits)) {
    Detail(colour, std::exchange(label, ""), row.octets + Paint(Colour::kDim, row.characters));
  }
}

void Trace::Elements(std::string_view digits) {
  if (!ReadTlv(digits, [](const TlvElement&) {}).empty()) return;
  ReadTlv(digits, [this](const TlvElement& element) {
    for (const std::string& line : TlvLines(element)) Detail(Colour::kPlain, "", line);
  });
}

void Trace::Reader(const std::string& reader, bool simulated) {
  const std::string note = simulated ? ", simulated: no hardware is touched" : "";
  out_ << kIndent << Paint(Colour::kBold, "reader " + reader) << Paint(Colour::kDim, note) << '\n';
}

void Trace::Heading(std::string_view text) {
  out_ << '\n' << Paint(Colour::kBold, Printable(text)) << '\n';
}

void Trace::Statement(std::optional<size_t> line, std::string_view statement) {
  if (line) {
    const std::string number = std::to_string(*line);
    out_ << std::string(kLineWidth - std::min<size_t>(kLineWidth, number.size()), ' ')
         << Paint(Colour::kDim, number) << "  ";
  } else {
    out_ << kIndent;
  }
  out_ << Printable(statement) << '\n';
}

void Trace::Value(std::string_view value) { Detail(Colour::kDim, "=", Printable(value)); }

void Trace::Atr(std::string_view digits) {
  if (!digits.empty()) Detail(Colour::kCyan, "ATR", SpacedOctets(digits));
}

void Trace::Command(const CardCommand& command, bool hideData) {
  const std::string name(CommandName(command));
  std::string text = Grouped(command, hideData);
  if (!name.empty()) text += "   " + Paint(Colour::kDim, name);
  Detail(Colour::kCyan, ">>", text);
  if (!hideData && command.dataEnd - command.dataBegin > kRowOctets) {
    Rows(Colour::kCyan, "", command.Part(command.dataBegin, command.dataEnd));
    const std::string expected = SpacedOctets(command.Part(command.dataEnd, command.Octets()));
    if (!expected.empty()) Detail(Colour::kCyan, "", expected);
  }
  if (!command.lengthFits) {
    Detail(Colour::kYellow, "", Paint(Colour::kYellow, "Lc does not fit the data"));
  }
}

void Trace::Response(const host::Response& response, std::string_view note) {
  if (!response.data.empty()) Rows(Colour::kCyan, "<<", response.data);
  if (settings_.tlv) Elements(response.data);
  if (response.statusWord.empty() && !response.failed) return;
  Standing standing = StandingOf(response.statusWord);
  if (response.failed && standing == Standing::kSuccess) standing = Standing::kWarning;
  const Colour colour = standing == Standing::kSuccess   ? Colour::kGreen
                        : standing == Standing::kWarning ? Colour::kYellow
                                                         : Colour::kRed;
  Detail(colour, "SW",
         response.statusWord.empty()
             ? "unknown"
             : Paint(colour, response.statusWord) + "  " + DescribeStatusWord(response.statusWord));
  if (!note.empty()) Detail(Colour::kPlain, "", "      " + Paint(Colour::kYellow, note));
}

void Trace::Judgement(std::string_view text, bool held) {
  const std::string shown = Printable(text);
  Detail(held ? Colour::kGreen : Colour::kAlarm, held ? "ok" : "FAIL",
         held ? shown : Paint(Colour::kAlarm, shown));
}

void Trace::Summary(size_t commands, size_t expectations, bool done) {
  out_ << '\n'
       << (done ? Paint(Colour::kGreen, "done") : Paint(Colour::kAlarm, "failed")) << "  "
       << Counted(commands, "command") << " sent, " << Counted(expectations, "expectation")
       << " met\n"
       << std::flush;
}

}  // namespace host
