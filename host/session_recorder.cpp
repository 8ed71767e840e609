#include "host/session_recorder.h"

#include <orvane.h>

#include <filesystem>

#include "host/failure.h"
#include "host/platform.h"
#include "host/text.h"
#include "recorder/recorder.h"

namespace host {
namespace {

using recordings::Event;
using recordings::EventType;

constexpr const char* kLevel = "program";

recordings::SessionLog* current = nullptr;
void* recorder = nullptr;

std::filesystem::path PathOf(const std::string& file) {
  return std::u8string(file.begin(), file.end());
}

template <typename Function>
Function* RecorderFunction(const char* name) {
  return reinterpret_cast<Function*>(ModuleFunction(recorder, name));
}

std::filesystem::path recorderFile;

void LoadRecorder() {
  if (recorder != nullptr) return;
  const std::string name = ModuleFileName("winscard");
  const std::filesystem::path beside = ProgramFolder() / "recorder" / name;
  const std::filesystem::path installed = ModulesFolder() / "recorder" / name;
  for (const std::filesystem::path& file : {beside, installed}) {
    recorder = LoadModule(file);
    recorderFile = file;
    if (recorder != nullptr) return;
  }
  throw Failure(kReaderFault, "can't record: " + beside.string() + " or " + installed.string() +
                                  " is not there or can't be loaded");
}

}  // namespace

void PutRecorderFirst() {
  if (recorder == nullptr) return;
  LoadModule(recorderFile);
  if (FindModule("winscard", Lookup::kByName).module == recorder) return;
  throw Failure(kReaderFault, "can't record: another module has PC/SC's place already");
}

SessionRecorder::SessionRecorder(const std::string& file, bool showSecrets)
    : file_(file), log_(PathOf(file), showSecrets) {
  LoadRecorder();
  PutRecorderFirst();
  current = &log_;
  const RecorderSettings settings = {.append =
                                         [](const char* line, uint64_t length) {
                                           current->Append({line, length});
                                         },
                                     .ready =
                                         [] {
                                           current->Begin();
                                           return static_cast<int32_t>(current->Trouble().empty());
                                         },
                                     .nextReader = [] { return current->NextReader(); },
                                     .origin = log_.Origin().time_since_epoch().count(),
                                     .showSecrets = showSecrets};
  RecorderFunction<RecorderBeginFunction>("RecorderBegin")(&settings);
}

SessionRecorder::~SessionRecorder() {
  RecorderFunction<RecorderBeginFunction>("RecorderBegin")(nullptr);
}

void SessionRecorder::Check() const {
  const std::string trouble = log_.Trouble();
  if (!trouble.empty()) {
    throw Failure(kFileFault, "can't write the recording " + Printable(file_) + ": " + trouble);
  }
}

void SessionRecorder::Append(Event event, const Timing& timing) {
  recordings::SetTimes(event, log_.Origin(), timing.start, timing.start + timing.duration);
  log_.Append(recordings::WriteEvent(event));
}

void SessionRecorder::Opening() {
  log_.Begin();
  Check();
}

void SessionRecorder::Opened(size_t reader, const ReaderAddress& address, bool, bool hidden) {
  const bool below = address.kind == ReaderKindPcsc;
  readers_[reader] = below ? 0 : log_.NextReader();
  if (!below) {
    Append({.type = EventType::kOpen,
            .reader = readers_[reader],
            .kind = std::string(KindName(address.kind)),
            .name = hidden         ? "**"
                    : address.port ? std::to_string(*address.port)
                                   : address.name,
            .level = kLevel},
           {{}, recordings::Steady::now(), {}});
  }
  Check();
}

void SessionRecorder::CardReset(size_t reader, const std::optional<std::string>& atr,
                                const Timing& timing) {
  if (readers_[reader] != 0) {
    Append({.type = EventType::kReset,
            .reader = readers_[reader],
            .atr = atr.value_or(""),
            .failed = atr ? "" : "no answer to reset"},
           timing);
  }
  Check();
}

void SessionRecorder::Sending(const CardCommand&, bool hidden) {
  RecorderFunction<RecorderHideFunction>("RecorderHide")(hidden);
}

void SessionRecorder::Exchanged(const CardExchange& exchange) {
  Sending(exchange.command, false);
  if (readers_[exchange.reader] != 0) {
    Event event{.type = EventType::kExchange,
                .reader = readers_[exchange.reader],
                .command = exchange.command.digits};
    if (exchange.hidden) {
      event.command = recordings::WithoutData(event.command, exchange.command);
      event.hidden = CarriesSecret(exchange.command)
                         ? "data of " + std::string(CommandName(exchange.command))
                         : "data made from a secret";
    }
    if (exchange.response) {
      event.response = exchange.response->data;
      event.statusWord = exchange.response->statusWord;
      event.incomplete = exchange.response->failed;
    } else {
      event.failed = "no response";
    }
    Append(std::move(event), exchange.timing);
  }
  Check();
}

std::unique_ptr<SessionRecorder> RecorderFor(const Options& options) {
  const std::string file =
      options.record.empty() ? EnvironmentVariable("ORVANE_RECORD").value_or("") : options.record;
  if (file.empty()) return nullptr;
  std::error_code error;
  if (std::filesystem::equivalent(PathOf(file), PathOf(options.replay), error)) {
    throw Failure(kUsageFault, "the recording would take the place of the one that is replayed");
  }
  return std::make_unique<SessionRecorder>(file, options.showSecrets);
}

}  // namespace host
