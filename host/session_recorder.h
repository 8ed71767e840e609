#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "host/exchange_listener.h"
#include "host/options.h"
#include "recordings/session_log.h"

namespace host {

// Records a session to a file: PC/SC's calls by the recorder, which it puts in the place of PC/SC's
// library, and of other readers what the session's own calls sent and got. The file is made when
// the first reader is opened. Throws Failure (kFileFault) where it can't be written. There is one
// of these at a time; it outlives the readers.
class SessionRecorder : public ExchangeListener {
 public:
  // Throws Failure (kReaderFault) if there is no recorder, or PC/SC's library is loaded already.
  SessionRecorder(const std::string& file, bool showSecrets);
  SessionRecorder(const SessionRecorder&) = delete;
  SessionRecorder& operator=(const SessionRecorder&) = delete;
  ~SessionRecorder() override;

  void Opening() override;
  void Opened(size_t reader, const ReaderAddress& address, bool simulated, bool hidden) override;
  void CardReset(size_t reader, const std::optional<std::string>& atr,
                 const Timing& timing) override;
  void Sending(const CardCommand& command, bool hidden) override;
  void Exchanged(const CardExchange& exchange) override;

  // To be called when all readers are closed.
  void Finish() { Opening(); }

 private:
  void Append(recordings::Event event, const Timing& timing);
  void Check() const;

  std::string file_;
  recordings::SessionLog log_;
  std::array<int64_t, 16> readers_{};  // the recording's numbers; 0 for those of the recorder
};

// Where there is a recorder, has its module be the one that is found under the name of PC/SC's
// library, although others of that name have been loaded since. Throws Failure (kReaderFault).
void PutRecorderFirst();

// Null where neither --record nor the environment's ORVANE_RECORD names a file.
std::unique_ptr<SessionRecorder> RecorderFor(const Options& options);

}  // namespace host
