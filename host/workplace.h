#pragma once

#include <iostream>
#include <vector>

#include "host/check/check_file.h"
#include "host/definitions.h"
#include "host/listeners.h"
#include "host/options.h"
#include "host/platform.h"
#include "host/readers.h"
#include "host/secrets.h"
#include "host/session.h"
#include "host/trace.h"

namespace host {

// What run, shell and apdu share: a session on the requested reader.
class Workplace {
 public:
  explicit Workplace(const Options& options, bool echoStatements = true)
      : beginning_(CircumstancesOf(options)),
        listeners_(options),
        readers_(options.kind, options.simulate, EnvironmentVariable("ORVANE_READER").value_or(""),
                 options.coldReset),
        silent_(nullptr),
        trace_(options.quiet ? silent_ : std::cout,
               {.colour = WantsColour(options), .tlv = options.tlv}),
        session_(readers_, secrets_, trace_,
                 {.showSecrets = options.showSecrets,
                  .echoStatements = echoStatements,
                  .listeners = AllListeners()}) {
    StoreDefinitions(beginning_.variables, secrets_);
    if (!options.reader.empty()) session_.Open(options.reader);
  }

  Session& Work() { return session_; }
  const Circumstances& Beginning() const { return beginning_; }
  void Check(const std::string& command) { ReadCommand(command, readers_.CurrentFraming()); }

  // Call it before listing readers. If readers are simulated, lists then ask the simulators, and no
  // maker's library is loaded.
  void PrepareLists() const { readers_.PrepareLists(); }

  // Begins to record. Throws Failure (kUsageFault) if there is a recorder already or a reader was
  // opened, and throws like SessionRecorder.
  void Record(const std::string& file, bool showSecrets) {
    if (readers_.Used()) {
      throw Failure(kUsageFault, "a recording begins before the first reader is opened");
    }
    session_.Listen(listeners_.Record(file, showSecrets));
  }

  // Call it after success. Throws Failure if the recording is incomplete.
  void Finish() {
    readers_.CloseAll();
    listeners_.Finish();
  }

 private:
  std::vector<ExchangeListener*> AllListeners() const {
    std::vector<ExchangeListener*> all;
    listeners_.AddTo(all);
    return all;
  }

  Circumstances beginning_;
  Listeners listeners_;
  Readers readers_;
  Secrets secrets_;
  std::ostream silent_;
  Trace trace_;
  Session session_;
};

}  // namespace host
