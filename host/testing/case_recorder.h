#pragma once

#include "host/exchange_listener.h"
#include "host/testing/test_report.h"
#include "host/trace.h"

namespace host {

// A trace that also keeps what it shows, as the steps of a case.
class CaseRecorder : public Trace, public ExchangeListener {
 public:
  // Without keepsSteps it only counts.
  CaseRecorder(std::ostream& out, Settings settings, bool keepsSteps)
      : Trace(out, settings), keepsSteps_(keepsSteps) {}

  // From now on, steps go into this case. The case must outlive the recorder or be replaced.
  void Enter(TestCase& entered) { case_ = &entered; }

  const std::set<std::string>& Readers() const { return readers_; }

  void Reader(const std::string& reader, bool simulated) override;
  void Statement(std::optional<size_t> line, std::string_view statement) override;
  void Value(std::string_view value) override;
  void Atr(std::string_view digits) override;
  void Judgement(std::string_view text, bool held) override;

  void Opened(size_t, const ReaderAddress&, bool, bool) override {}
  void CardReset(size_t, const std::optional<std::string>&, const Timing&) override {}
  void Exchanged(const CardExchange& exchange) override;

 private:
  void Add(Step::Kind kind, std::string_view text, size_t line = 0);

  bool keepsSteps_;
  std::set<std::string> readers_;
  TestCase* case_ = nullptr;
};

}  // namespace host
