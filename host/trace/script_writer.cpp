#include "host/trace/script_writer.h"

#include "host/text.h"

namespace host {
namespace {

// A result of the language has no room for more.
constexpr size_t kLongestCommand = 255;

class ScriptWriter {
 public:
  ScriptWriter(std::ostream& out, const NamedRecording& session)
      : out_(out), events_(session.recording.events) {
    out_ << "; " << Printable(session.name) << ", recorded " << Printable(events_.front().begun)
         << '\n';
  }

  void Write() {
    for (size_t at = 0; at < events_.size(); ++at) {
      const RecordedEvent& event = events_[at];
      if (event.type == EventType::kOpen && event.failed.empty()) Name(event);
      if (event.type == EventType::kAtr || event.type == EventType::kReset) Reset(event);
      if (event.type == EventType::kExchange) at = Send(at);
    }
  }

 private:
  void Name(const RecordedEvent& event) {
    const std::string reader = Printable(event.name) + " (" + Printable(event.kind) + ')';
    if (reader != reader_) out_ << "\n; reader " << reader << '\n';
    reader_ = reader;
  }

  void Reset(const RecordedEvent& event) {
    if (!event.failed.empty()) return;
    out_ << "@reset()\n";
    if (!event.atr.empty()) out_ << "@compare(%ATR, " << event.atr << ", 1)\n";
  }

  // The index of the GET RESPONSE that the library sends by itself; without one, `at`.
  size_t FollowUp(size_t at) const {
    const std::string& word = events_[at].statusWord;
    if (!word.starts_with("61")) return at;
    for (size_t next = at + 1; next < events_.size(); ++next) {
      if (events_[next].type != EventType::kExchange) continue;
      const bool follows = events_[next].command == "00C00000" + word.substr(2) &&
                           events_[next].reader == events_[at].reader;
      return follows ? next : at;
    }
    return at;
  }

  // Writes one command. Gives the index of the last event that it covers.
  size_t Send(size_t at) {
    const RecordedEvent& event = events_[at];
    const CardCommand command = CommandOf(event);
    const size_t last = FollowUp(at);
    const auto leaveOut = [&](const std::string& why) {
      out_ << "; line " << event.line << ", " << why << ": " << event.command << '\n';
      return last;
    };
    if (!events_[last].failed.empty()) return leaveOut("no response");
    if (command.Octets() < 4) return leaveOut("no APDU");
    if (command.Octets() > kLongestCommand) return leaveOut("too long for a script");
    if (HidesData(event, true)) {
      out_ << "; %SECRET" << ++secrets_ << " is "
           << Counted(command.dataEnd - command.dataBegin, "byte") << ": "
           << Printable(event.hidden) << '\n';
    }
    out_ << Text(event, command) << '\n';
    Expect(events_[last]);
    return last;
  }

  std::string Text(const RecordedEvent& event, const CardCommand& command) const {
    if (!HidesData(event, true)) return command.digits;
    const std::string_view le = command.Part(command.dataEnd, command.Octets());
    return std::string(command.Part(0, command.dataBegin)) + " %SECRET" + std::to_string(secrets_) +
           (le.empty() ? "" : " ") + std::string(le);
  }

  // If a response does not end in 9000, the library gives only its first two octets.
  void Expect(const RecordedEvent& event) {
    const std::string octets = OctetsOf(event);
    if (event.statusWord == "9000") {
      out_ << "; expect " << SpacedOctets(event.response) << (event.response.empty() ? "" : " ")
           << "9000\n";
    } else if (octets.size() >= 4) {
      out_ << "; expect " << octets.substr(0, 4) << '\n';
    }
  }

  std::ostream& out_;
  const std::vector<RecordedEvent>& events_;
  std::string reader_;
  size_t secrets_ = 0;
};

}  // namespace

void WriteScript(std::ostream& out, const NamedRecording& session) {
  ScriptWriter(out, session).Write();
}

}  // namespace host
