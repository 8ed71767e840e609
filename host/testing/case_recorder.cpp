#include "host/testing/case_recorder.h"

#include "host/response.h"
#include "host/text.h"

namespace host {
namespace {

ReportedExchange Reported(const CardExchange& exchange) {
  const CardCommand& command = exchange.command;
  const size_t headerEnd = std::min<size_t>(4, command.dataBegin);
  ReportedExchange reported;
  reported.name = CommandName(command);
  reported.header = command.Part(0, headerEnd);
  reported.lengthField = command.Part(headerEnd, command.dataBegin);
  if (exchange.hidden) reported.hiddenOctets = command.dataEnd - command.dataBegin;
  if (!exchange.hidden) reported.data = command.Part(command.dataBegin, command.dataEnd);
  reported.expectedLength = command.Part(command.dataEnd, command.Octets());
  reported.begin = exchange.timing.begin;
  reported.duration = exchange.timing.duration;
  if (exchange.response) {
    reported.answered = true;
    reported.response = exchange.response->data;
    reported.statusWord = exchange.response->statusWord;
    reported.note = NoteOn(*exchange.response, command, exchange.kind);
  }
  return reported;
}

}  // namespace

void CaseRecorder::Add(Step::Kind kind, std::string_view text, size_t line) {
  if (keepsSteps_ && case_ != nullptr) case_->steps.push_back({kind, line, std::string(text)});
}

void CaseRecorder::Reader(const std::string& reader, bool simulated) {
  Trace::Reader(reader, simulated);
  const std::string shown = reader + (simulated ? ", simulated" : "");
  readers_.insert(shown);
  Add(Step::Kind::kReader, shown);
}

void CaseRecorder::Statement(std::optional<size_t> line, std::string_view statement) {
  Trace::Statement(line, statement);
  Add(Step::Kind::kStatement, statement, line.value_or(0));
}

void CaseRecorder::Value(std::string_view value) {
  Trace::Value(value);
  Add(Step::Kind::kValue, value);
}

void CaseRecorder::Atr(std::string_view digits) {
  Trace::Atr(digits);
  Add(Step::Kind::kAtr, digits);
}

void CaseRecorder::Judgement(std::string_view text, bool held) {
  Trace::Judgement(text, held);
  Add(held ? Step::Kind::kMet : Step::Kind::kFailed, text);
  if (held && case_ != nullptr) ++case_->checks;
}

void CaseRecorder::Exchanged(const CardExchange& exchange) {
  if (case_ == nullptr) return;
  ++case_->commands;
  if (!keepsSteps_) return;
  Add(Step::Kind::kExchange, "");
  case_->steps.back().exchange = case_->exchanges.size();
  case_->exchanges.push_back(Reported(exchange));
}

}  // namespace host
