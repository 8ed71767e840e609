#include "host/trace/trace_command.h"

#include <iostream>

#include "host/failure.h"
#include "host/replay.h"
#include "host/testing/report_file.h"
#include "host/text.h"
#include "host/trace/capture.h"
#include "host/trace/difference.h"
#include "host/trace/script_writer.h"
#include "host/trace/show.h"

namespace host {
namespace {

NamedRecording Read(const std::string& file) {
  NamedRecording session{file, ReadRecordingFile(file)};
  if (session.recording.cutLine > 0) {
    std::cerr << "orvane: " << Printable(file) << ':' << session.recording.cutLine
              << ": this line is cut off, and passed over\n";
  }
  return session;
}

}  // namespace

int TraceRecording(const Options& options) {
  const NamedRecording session = Read(options.file);
  if (!options.other.empty()) {
    const NamedRecording other = Read(options.other);
    const bool same =
        PrintDifferences(std::cout, session, other, options.showSecrets, options.times);
    return same ? kDone : kExpectationFailed;
  }
  if (options.asScript) {
    WriteScript(std::cout, session);
  } else if (!options.pcap.empty()) {
    ReportFile(options.pcap).Write(MakeCapture(session.recording));
  } else {
    Trace trace(std::cout, {.colour = WantsColour(options), .tlv = options.tlv});
    ShowRecording(session.recording, trace, options.showSecrets, options.times);
  }
  return kDone;
}

}  // namespace host
