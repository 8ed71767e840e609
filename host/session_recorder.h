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

// Records a session to a file. For PC/SC it puts the recorder in the place of PC/SC's library; for
// other readers it records what the session sends and gets. The file is created when the first
// reader is opened. Throws Failure (kFileFault) if it cannot be written. Only one may exist at a
// time, and it must outlive the readers.
class SessionRecorder : public ExchangeListener {
 public:
  // Throws Failure (kReaderFault) without a recorder, or if PC/SC's library is loaded already.
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

  // Call it when all readers are closed.
  void Finish() { Opening(); }

 private:
  void Append(recordings::Event event, const Timing& timing);
  void Check() const;

  std::string file_;
  recordings::SessionLog log_;
  std::array<int64_t, 16> readers_{};  // the recording's numbers; 0: recorded by the recorder
};

// If the recorder is loaded, makes it again the module that is found under the name of PC/SC's
// library, after others of that name were loaded. Throws Failure (kReaderFault).
void PutRecorderFirst();

// Null unless --record or the environment's ORVANE_RECORD names a file.
std::unique_ptr<SessionRecorder> RecorderFor(const Options& options);

}  // namespace host
