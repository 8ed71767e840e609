#include "host/batch/worker.h"

#include <orvane.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>

#include "host/batch/job_store.h"
#include "host/batch/line_queue.h"
#include "host/batch/sha256.h"
#include "host/check/check_file.h"
#include "host/child_process.h"
#include "host/definitions.h"
#include "host/engine.h"
#include "host/failure.h"
#include "host/platform.h"
#include "host/reader_trouble.h"
#include "host/replay.h"
#include "host/script.h"
#include "host/session.h"
#include "host/session_recorder.h"
#include "host/testing/markup.h"
#include "host/text.h"

namespace host {
namespace {

using Json = nlohmann::json;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kBetweenLooks{200};
constexpr milliseconds kForever{1'000'000'000};
constexpr std::string_view kCardName = "%CARD_ID";

// The supervisor from a worker's point of view.
class Orders {
 public:
  Orders() : output_(TakeStandardOutput()) { lines_.Read(0, 0); }

  void Tell(const Json& message) {
    const std::string text = message.dump(-1, ' ', false, Json::error_handler_t::replace);
    if (!WriteLine(output_, text)) stops_ = halts_ = true;
  }

  // Waits for the answer to a message; none if the worker must stop. In a row only a halt stops it.
  std::optional<Json> Await(bool inRow) {
    while (!halts_ && (inRow || !stops_)) {
      if (std::optional<Json> answer = Next(kForever)) return answer;
    }
    return std::nullopt;
  }

  // Both read what has come. They must not be called while an answer is expected.
  bool Stops(milliseconds patience = milliseconds(0)) {
    if (!stops_) Next(patience);
    return stops_;
  }
  bool Halts() {
    if (!halts_) Next(milliseconds(0));
    return halts_;
  }

 private:
  std::optional<Json> Next(milliseconds patience) {
    const std::optional<LineQueue::Line> line = lines_.Next(patience);
    if (!line) return std::nullopt;
    const Json message = line->text ? Json::parse(*line->text) : Json{{"do", "halt"}};
    const std::string what = message.at("do");
    halts_ = halts_ || what == "halt";
    stops_ = stops_ || halts_ || what == "stop";
    if (what == "halt" || what == "stop") return std::nullopt;
    return message;
  }

  int output_;
  LineQueue lines_;
  bool stops_ = false;
  bool halts_ = false;
};

// Ends a row without a result.
struct Halted {};
struct Refused {
  std::string why;
};

std::string FreshSerialNumber() {
  static std::random_device source;
  std::string digits = "8099";
  for (int octet = 0; octet < 6; ++octet) digits += HexOctet(source() & 0xFF);
  return digits;
}

// Everything that lives as long as the work on one card.
class CardWork {
 public:
  CardWork(const Options& options, std::vector<ExchangeListener*> listeners)
      : options_(options),
        readers_(options.kind, options.simulate, "", options.coldReset),
        out_(nullptr),
        trace_(out_, {.colour = false, .tlv = options.tlv}),
        session_(readers_, secrets_, trace_, {.listeners = std::move(listeners)}) {
    session_.Open(options.reader);
  }

  std::string Reader() const { return Printable(options_.reader); }

  // The ATR. If no card answers, none, and `why` is the reason.
  std::optional<std::string> Look(std::string& why) {
    try {
      session_.ResetCard();
      return Evaluate("%ATR");
    } catch (const Failure& failure) {
      if (failure.Code() != kReaderFault) throw;
      why = failure.what();
      return std::nullopt;
    }
  }

  std::optional<CardMovements> Movements() const {
    const ReaderAddress address = ReadReaderAddress(options_.reader, options_.kind);
    return AskForMovements(address);
  }

  void Feed() {
    if (options_.simulate) FeedSimulator(readers_.CurrentKind(), FreshSerialNumber());
  }

  // Opens the row's log in the folder of --log-dir, if there is one, behind the log of earlier
  // tries.
  void OpenLog(size_t row) {
    const std::string& folder = options_.batch.logFolder;
    if (folder.empty()) return;
    const std::filesystem::path path(std::u8string(folder.begin(), folder.end()));
    log_.open(path / ("row-" + std::to_string(row) + ".log"), std::ios::app);
    if (!log_) FailLog();
    out_.rdbuf(log_.rdbuf());
  }

  void CloseLog() {
    if (!log_.is_open()) return;
    const bool written = !out_.fail();
    out_.rdbuf(nullptr);
    log_.close();
    if (!written || !log_) FailLog();
  }

  // Runs the script. Throws Failure, Halted and Refused.
  void Run(const Script& script, const std::vector<std::pair<std::string, std::string>>& variables,
           Orders& orders) {
    trace_.Heading(Reader());
    StoreDefinitions(variables, secrets_);
    SetVariable(std::string(kCardName), "");
    LookAtScript(script, session_);
    try {
      script.ForEach([&](const Statement& statement, size_t line) {
        if (orders.Halts()) throw Halted();
        const bool goesOn = session_.Run(statement, line);
        if (NamesCard(statement)) Identify(statement, orders);
        return goesOn;
      });
    } catch (const Failure& failure) {
      out_ << PrintableLines(failure.what()) << '\n';
      session_.Summarise(false);
      throw;
    }
    session_.Summarise(true);
  }

 private:
  [[noreturn]] void FailLog() const {
    throw Failure(kFileFault, "can't write a log to " + Printable(options_.batch.logFolder));
  }

  static bool NamesCard(const Statement& statement) {
    return statement.form == Form::kAssignment &&
           UpperCase(statement.TextOf(statement.words[0])) == kCardName;
  }

  void Identify(const Statement& statement, Orders& orders) {
    const std::string card = Evaluate(kCardName);
    if (card.empty()) throw Failure(kScriptFault, "%CARD_ID is empty: it names no card");
    if (session_.Hides(statement, card)) {
      throw Failure(kScriptFault, "%CARD_ID is made from a secret, which the journal may not hold");
    }
    trace_.Flush();
    orders.Tell({{"tell", "card"}, {"card", card}});
    const std::optional<Json> answer = orders.Await(true);
    if (!answer) throw Halted();
    if (answer->at("do") == "refuse") throw Refused{answer->at("why")};
  }

  const Options& options_;
  Readers readers_;
  Secrets secrets_;
  std::ofstream log_;
  std::ostream out_;  // shows nothing until a log is open
  Trace trace_;
  Session session_;
};

std::string ReaderOf(const Options& options) {
  if (!options.batch.readers.empty()) return options.batch.readers[options.batch.worker - 1];
  if (options.simulate) return "3:Simulated Reader 0";
  std::string reader = EnvironmentVariable("ORVANE_READER").value_or("");
  if (!reader.empty()) return reader;
  const std::vector<std::string> listed = ListReaders(ReaderKindPcsc, 0);
  if (listed.size() == 1) return "3:" + listed.front();
  throw Failure(kReaderFault, "no reader is named, by -r or ORVANE_READER; " + PcscReaders());
}

class Worker {
 public:
  explicit Worker(const Options& options)
      : options_(options),
        replay_(ReplayFor(options)),
        recorder_(RecorderFor(options)),
        script_(options.file),
        definitions_(Definitions(options)) {}

  void Run() {
    const std::optional<Json> begin = orders_.Await(false);
    if (!begin) return;
    if (Sha256(script_.Text()) != begin->at("script").get<std::string>()) {
      throw Failure(kScriptFault, script_.Name() + " has changed since the batch began");
    }
    columns_ = begin->at("columns");
    bool mayStay = begin->at("fresh");
    while (!orders_.Stops()) {
      CardWork card(options_, Listeners());
      card.Feed();
      if (!mayStay && !AwaitNoCard(card)) break;
      mayStay = false;
      if (!WorkOn(card)) break;
    }
    if (recorder_) recorder_->Finish();
  }

  void TellTrouble(int code, const std::string& reason) {
    orders_.Tell({{"tell", "trouble"}, {"code", code}, {"reason", reason}});
  }

 private:
  std::vector<ExchangeListener*> Listeners() {
    std::vector<ExchangeListener*> listeners;
    if (recorder_) listeners.push_back(recorder_.get());
    if (replay_) listeners.push_back(replay_.get());
    return listeners;
  }

  void Waits(const std::string& what) { orders_.Tell({{"tell", "waits"}, {"for", what}}); }

  // False if the worker must stop.
  bool WorkOn(CardWork& card) {
    const std::optional<std::string> atr = AwaitCard(card);
    if (!atr) return false;
    orders_.Tell({{"tell", "ready"}, {"reader", card.Reader()}, {"atr", *atr}});
    const std::optional<Json> job = orders_.Await(false);
    if (!job) return false;
    movements_ = options_.simulate ? std::nullopt : card.Movements();
    return WorkOnRow(card, job->at("row"), job->at("values"));
  }

  std::optional<std::string> AwaitCard(CardWork& card) {
    const auto begin = steady_clock::now();
    std::string told, why;
    while (!orders_.Stops()) {
      if (std::optional<std::string> atr = card.Look(why)) return atr;
      if (told != why) Waits("a card (" + (told = why) + ")");
      if (options_.batch.timeout > 0 &&
          steady_clock::now() - begin > std::chrono::seconds(options_.batch.timeout)) {
        throw Failure(kReaderFault, "no card came within " +
                                        std::to_string(options_.batch.timeout) + " s: " + why);
      }
      orders_.Stops(kBetweenLooks);
    }
    return std::nullopt;
  }

  // False if the worker must stop.
  bool AwaitNoCard(CardWork& card) {
    if (options_.simulate || options_.batch.noWait) return true;
    const auto begin = steady_clock::now();
    Waits("the card to be taken out");
    while (IsStillThere(card)) {
      if (orders_.Stops(kBetweenLooks)) return false;
      if (options_.batch.timeout > 0 &&
          steady_clock::now() - begin > std::chrono::seconds(options_.batch.timeout)) {
        throw Failure(kReaderFault, "the card was not taken out within " +
                                        std::to_string(options_.batch.timeout) + " s");
      }
    }
    return true;
  }

  // PC/SC counts card movements, so a change between two looks is noticed. A card in another reader
  // is there as long as it gives an ATR.
  bool IsStillThere(CardWork& card) const {
    const std::optional<CardMovements> now = card.Movements();
    if (now) return now->present && (!movements_ || *now == *movements_);
    std::string why;
    return card.Look(why).has_value();
  }

  std::vector<std::pair<std::string, std::string>> Variables(const Json& values) const {
    auto variables = definitions_;
    for (size_t at = 0; at < columns_.size(); ++at) {
      variables.emplace_back('%' + columns_[at], values.at(at));
    }
    return variables;
  }

  // False if the worker must stop.
  bool WorkOnRow(CardWork& card, size_t row, const Json& values) {
    const auto end = [&](RowState state, const std::string& reason) {
      orders_.Tell({{"tell", "end"}, {"state", NameOf(state)}, {"reason", reason}});
    };
    try {
      card.OpenLog(row);
    } catch (const Failure& failure) {
      end(RowState::kWaiting, failure.what());
      throw;
    }
    try {
      card.Run(script_, Variables(values), orders_);
      end(RowState::kDone, "");
    } catch (const Halted&) {
      end(RowState::kBegun, "halted before its end");
      return false;
    } catch (const Refused& refused) {
      end(RowState::kWaiting, refused.why);
      // Without waiting, the next card would be the same one again, or have the same name.
      if (options_.batch.noWait || options_.simulate) throw Failure(kReaderFault, refused.why);
    } catch (const Failure& failure) {
      end(RowState::kFailed, failure.what());
      if (failure.Code() == kFileFault) throw;
    }
    card.CloseLog();
    return true;
  }

  const Options& options_;
  Orders orders_;
  // These must outlive the readers.
  std::unique_ptr<Replay> replay_;
  std::unique_ptr<SessionRecorder> recorder_;
  Script script_;
  std::vector<std::pair<std::string, std::string>> definitions_;
  std::vector<std::string> columns_;
  std::optional<CardMovements> movements_;  // at the beginning of the last row
};

}  // namespace

int RunWorker(const Options& options) {
  Options own = options;
  Worker worker(own);
  try {
    own.reader = ReaderOf(options);
    worker.Run();
    return kDone;
  } catch (const Failure& failure) {
    worker.TellTrouble(failure.Code(), failure.what());
    return failure.Code();
  }
}

}  // namespace host
