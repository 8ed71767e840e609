// What hosts, files, cards, peers and vendor libraries can hand over, as functions of one input
// each. Every buffer is a heap block of just the promised size: what reads or writes beside it ends
// under the address sanitizer. FUZZ_TARGET names the function that runs.
#include <langinfo.h>
#include <time.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "commands/crypto_provider_table.h"
#include "engine/engine.h"
#include "host/check/check.h"
#include "host/engine.h"
#include "host/failure.h"
#include "host/operands.h"
#include "host/script.h"
#include "host/tags_dictionary.h"
#include "host/text.h"
#include "host/tlv.h"
#include "host/trace/capture.h"
#include "host/trace/script_writer.h"
#include "orvane.h"
#include "platform/module.h"
#include "tags/tag_dictionary.h"
#include "tests/tags/working_folder.h"

namespace {

void Expect(bool right, const char* what) {
  if (right) return;
  std::fprintf(stderr, "wrong: %s\n", what);
  std::abort();
}

// Takes an input apart, from the front. Where it has ended, numbers are 0 and texts empty.
class Input {
 public:
  explicit Input(std::string_view text) : rest_(text) {}
  bool Empty() const { return rest_.empty(); }
  std::string Until(char end) {
    std::string part(rest_.substr(0, rest_.find(end)));
    rest_.remove_prefix(std::min(part.size() + 1, rest_.size()));
    return part;
  }
  std::string Line() { return Until('\n'); }
  std::string Word() { return Until(' '); }
  std::string Rest() { return std::string(std::exchange(rest_, {})); }
  std::int64_t Number() { return std::strtoll(Word().c_str(), nullptr, 0); }
  std::int32_t Integer() { return static_cast<std::int32_t>(Number()); }

 private:
  std::string_view rest_;
};

using Room = std::vector<char>;

std::string_view TextIn(const Room& room) {
  const std::string_view all(room.data(), room.size());
  return all.substr(0, all.find('\0'));
}

// A zero-terminated text in a block of its own.
class Text : public Room {
 public:
  explicit Text(std::string_view text) : Room(text.begin(), text.end()) { push_back('\0'); }
  operator const char*() const { return data(); }
};

bool IsHex(std::string_view text) {
  return text.size() % 2 == 0 && text.find_first_not_of("0123456789ABCDEF") == text.npos;
}

// ---- Statements, over a provider that answers as the input says ----

struct ProviderAnswer {
  std::int32_t result = 1, length = 8;
  std::string text = "00C3";
} provider;

std::int32_t Give(std::uint8_t* output, std::size_t room, std::int32_t* length, bool keysFit) {
  Expect(keysFit, "what a provider gets");
  std::fill_n(output, room, std::uint8_t{0xA5});
  if (provider.length != 77) *length = provider.length;
  return provider.result;
}

bool IsKey(std::int32_t length, std::int32_t dataBytes, std::int32_t mode) {
  return (length == 8 || length == 16 || length == 24) && dataBytes >= 0 && dataBytes <= 256 &&
         (mode == 0 || mode == 3) == (length == 8);
}

constexpr auto kBlock = [](auto, auto ivBytes, auto, auto keyBytes, auto, auto dataBytes,
                           auto output, auto length, auto mode) {
  return Give(output, 256, length,
              IsKey(keyBytes, dataBytes, mode) && ivBytes >= 0 && ivBytes <= 16);
};
constexpr CryptoProvider kProvider = {
    [](auto, auto count, auto output, auto, auto length) {
      return Give(*output, 4096, length, count > 0 && count <= 4096);
    },
    kBlock,
    kBlock,
    [](auto, auto keyBytes, auto, auto dataBytes, auto output, auto length, auto mode) {
      return Give(output, 256, length, IsKey(keyBytes, dataBytes, mode));
    },
    [](auto key, auto keyBytes, auto data, auto dataBytes, auto iv, auto ivBytes, auto output,
       auto length, auto mode) {
      return kBlock(iv, ivBytes, key, keyBytes, data, dataBytes, output, length, mode);
    },
    [](auto, auto, auto, auto output, auto) {
      static Text text("");
      text = Text(provider.text);
      if (provider.length != 77) *output = text;
      return provider.result;
    }};

void CheckStatement(const std::string& statement) {
  Room result(512, '5');
  const std::int32_t code = RunScript(Text(statement), result.data());
  Expect((code >= KindAssignment && code <= KindOpenReader) || code == ScriptNothingToRun ||
             code == ScriptException,
         "a code");
  const auto zeros = std::count(result.begin(), result.end(), 0);
  Expect(zeros > 0 && TextIn(result).size() + static_cast<std::size_t>(zeros) == result.size(),
         "a text's end");
}

// A line is a statement, <NAME=VALUE, >NAME, or !RESULT LENGTH TEXT for the provider.
void Statements(Input input) {
  *orvane::EnsureEngine() = orvane::ScriptEngine();
  provider = {};
  while (!input.Empty()) {
    const std::string text = input.Line();
    Input line(text);
    if (text.starts_with('<')) {
      const Text name(line.Until('=').substr(1)), value(line.Rest());
      const bool stored = SetVarValue(name, value) == ScriptDone;
      Expect(stored == (GetVarValue(name) == ScriptDone), "a stored variable");
    } else if (text.starts_with('!')) {
      line.Until('!');
      provider = {line.Integer(), line.Integer(), line.Rest()};
    } else {
      CheckStatement(text);
    }
    // Each statement may double what a variable holds.
    for (const auto& [name, value] : orvane::EnsureEngine()->variables)
      if (value.size() > 16384) return;
  }
}

void EnterFolder() { static const orvane_test::WorkingFolder folder; }

// ---- Tags ----

void Tags(Input input) {
  TagParser* const parser = TagParsing_Init();
  for (; !input.Empty();) {
    const Text text(input.Line());
    TagParsing_Parse(parser, text);
    for (const char* tag : {"6F", "84", "5a", "", text.data()}) {
      Room record(sizeof(TagRecord), '5');
      const bool known = TagParsing_GetTag(parser, tag, record.data()) == 1;
      const Room value(record.begin() + offsetof(TagRecord, value), record.end());
      Expect(known == (record[0] != 0) && IsHex(TextIn(value)), "a record");
    }
  }
  TagParsing_Free(parser);
}

std::string Flushed() {
  FlushTagdict();
  return orvane_test::ReadFile("dictdata.bin").value_or("");
}

// Lines of operations; behind an empty line the octets of dictdata.bin.
void Dictionary(Input input) {
  EnterFolder();
  std::vector<std::string> lines;
  while (!input.Empty() && (lines.empty() || !lines.back().empty())) lines.push_back(input.Line());
  orvane_test::WriteFile("dictdata.bin", input.Rest());
  try {
    host::ReadDictionary();
  } catch (const host::Failure&) {
  }
  *orvane::EnsureTagDictionary() = orvane::TagDictionary();
  for (const std::string& line : lines) {
    Room record(sizeof(TagdictData), '5');
    const Text tag(std::string_view(line).substr(line.empty() ? 0 : 1));
    std::copy_n(tag.begin(), std::min(tag.size(), record.size()), record.begin());
    auto* const data = reinterpret_cast<TagdictData*>(record.data());
    if (line.starts_with('+')) AddTagdictData(data);
    if (line.starts_with('*')) UpTagdictData(data);
    if (line.starts_with('-')) DeleteTagdictData(tag);
    if (line.starts_with('?')) FindTagdictData(tag, data);
  }
  const std::string before = Flushed();
  *orvane::EnsureTagDictionary() = orvane::TagDictionary();
  Expect(before == Flushed(), "the file read and written again");
}

// ---- Conversions ----

void Conversions(Input input) {
  const std::string text = input.Rest();
  const Text source(text);
  const std::size_t size = text.size(), length = std::strlen(source);
  const auto count = static_cast<std::int32_t>(size);
  const auto octets = [](auto& room) { return (unsigned char*)room.data(); };

  Room url(3 * length), plain(length), back(size), digits(2 * size), four(4);
  URLDecode(source, plain.data());
  URLEncode(source, url.data());
  URLDecode(Text(TextIn(url)), plain.data());
  Expect(std::equal(plain.begin(), plain.end(), source.begin()), "an escaped text read back");

  Room exact(text.begin(), text.end()), parsed((size + 1) / 2), hexText(4 * ((size + 1) / 2));
  HexToAscii(octets(exact), digits.data(), count);
  Expect(AsciiToHex(digits.data(), octets(back), 2 * count) == 1 && back == exact,
         "octets read back");
  AsciiToHex(exact.data(), octets(parsed), count);
  AsciiToHexStr(exact.data(), hexText.data(), count);
  for (const int allowHex : {0, 1})
    Expect(CheckAsciiNum(exact.data(), allowHex, count) <= count, "a place");
  std::int32_t number = 0, again = 0;
  HexStrToInt(exact.data(), &number, count);
  if (HexToInt(octets(exact), &number, count) == 1) {
    std::int32_t bytes = 0;
    IntToHex(octets(four), number, &bytes);
    HexToInt(octets(four) + 4 - bytes, &again, bytes);
    Expect(again == number, "a number read back");
  }
  for (const int withMilliseconds : {0, 1})
    GetTimeStrFromTimeStampStr(Room(36).data(), source, withMilliseconds);
}

std::string characterSet;

// The first line names a character set of the system's.
void CharacterSets(Input input) {
  characterSet = input.Line();
  const Text text(input.Rest());
  Room utf8(3 * std::strlen(text)), narrow(4 * std::strlen(text));
  try {
    ASCII2UTF_8(text, utf8.data());
    UTF_82ASCII(text, narrow.data());
  } catch (const std::runtime_error&) {
  }
}

// ---- Readers, over the simulated vendor libraries ----

using AnswerFunction = void(const char*, std::int64_t, const char*, std::int64_t);

// They stay loaded: libFuzzer counts what they run.
void Prepare(Input line) {
  using namespace orvane::platform;
  static const Module modules[] = {LoadModule("winscard.dll"), LoadModule("dcrf32.dll"),
                                   LoadModule("S5009.dll"),    LoadModule("tyreader.dll"),
                                   LoadModule("tykeyint.dll"), LoadModule("STJZZ_BSIT.dll"),
                                   LoadModule("sdtapi.dll"),   LoadModule("wdcrwx.dll")};
  const std::string function = line.Word();
  const std::int64_t result = line.Number();
  std::int64_t length = line.Number();
  const Text data(line.Rest());
  // Nobody could tell that a list is shorter than said.
  if (function == "SCardListReadersA") length = std::clamp<std::int64_t>(length, 0, 1);
  for (const Module& module : modules) {
    const auto answer = reinterpret_cast<AnswerFunction*>(module.Find("SimulatorAnswer"));
    Expect(answer != nullptr, "a simulator");
    if (module.Find(function.c_str()) != nullptr) answer(function.c_str(), result, data, length);
  }
}

void SendText(const std::string& digits) {
  Room command(digits.begin(), digits.end()), response(8193, '5');
  const std::int32_t result =
      SendCommand(command.data(), static_cast<std::int32_t>(command.size()), response.data());
  const std::string_view text = TextIn(response);
  Expect(text.size() < response.size() && IsHex(text), "a response");
  Expect(result == 1 || text.empty() || text.size() == 4, "a failed command's status word");
}

// Kind 0 stands for what was listed before.
void ListReaders(std::int32_t kind, Input line) {
  if (kind == 0) return;
  const std::int32_t count = std::min(line.Integer(), 40), most = std::min(line.Integer(), 40);
  const bool honoursMost = kind <= 3 || kind == 7 || kind == 8 || kind == 11;
  const std::int32_t places = most > 0 && honoursMost ? most : std::max(count + 1, 16);
  std::vector<ReaderInfo> records(static_cast<std::size_t>(places));
  const std::int32_t written = GetReaderList(kind, records.data(), count, most);
  Expect(written >= 0 && written <= places, "a number of records");
  for (const ReaderInfo& record : records)
    Expect(std::memchr(record.name, 0, sizeof record.name) != nullptr, "a name's end");
}

void ResetCard() {
  Room atr(1025, '5');
  if (Reset(atr.data()) == 1) Expect(IsHex(TextIn(atr)) && TextIn(atr).size() <= 512, "an ATR");
}

// A line is a call of a host (N3 NAME opens by name, P5 1 by port, C closes, R resets, S0C changes
// the slot, X sends, L2 4 0 lists, #3 sets the reader) or =FUNCTION RESULT LENGTH DATA, the answer
// to a coming call of the vendor's function.
void Readers(Input input) {
  Prepare(Input(""));
  while (!input.Empty()) {
    const std::string text = input.Line();
    if (text.empty()) continue;
    Input line(std::string_view(text).substr(1));
    const bool hasNumber = std::strchr("NPL#", text[0]) != nullptr;
    const std::int32_t number = hasNumber ? line.Integer() : 0;
    // clang-format off
    switch (text[0]) {
      case 'N': OpenReaderA(Text(line.Rest()), number); break;
      case 'P': OpenReader(line.Integer(), number, 9600); break;
      case 'L': ListReaders(number, line); break;
      case '#': SetReader(static_cast<std::uint32_t>(number)); break;
      case 'C': CloseReader(); break;
      case 'R': ResetCard(); break;
      case 'S': ChangeSlot(Text(line.Rest())); break;
      case 'X': SendText(line.Rest().substr(0, 8192)); break;
      case '=': Prepare(line); break;
    }
    // clang-format on
  }
  for (const unsigned reader : {15u, 3u, 0u}) SetReader(reader), OpenReader(1, 13, 9600);
}

// ---- The program's reader of scripts: what it accepts, the library takes apart in the same way --

void CheckAccepted(const host::Statement& statement) {
  RunScript(statement.text.c_str(), Room(512).data());
  const auto& tokens = orvane::EnsureEngine()->tokens;
  Expect(tokens.size() == statement.words.size(), "the number of words");
  for (std::size_t at = 0; at < tokens.size(); ++at)
    Expect(tokens[at] == statement.TextOf(statement.words[at]), "a word");
}

// False for what depends on a card or on the provider, and for @stop().
bool IsKnownAhead(const std::string& line) {
  for (const char* const given :
       {"%RESP", "%SW", "%ATR", "@DES", "@MAC", "@SUBKEY", "@HASH", "@RSAPUBENC", "@STOP"})
    if (host::UpperCase(line).find(given) != line.npos) return false;
  for (const auto& [name, value] : orvane::EnsureEngine()->variables)
    if (value.size() > 16384) return false;
  return true;
}

// What the checker has no error of, no statement fails of.
void CheckLines(Input input) {
  std::vector<std::string> lines;
  while (!input.Empty()) lines.push_back(input.Line());
  for (const host::Diagnostic& each : host::Check(lines, {{}, ReaderKindPcsc, ReaderKindPcsc}))
    if (each.severity == host::Severity::kError) return;
  *orvane::EnsureEngine() = orvane::ScriptEngine();
  try {
    for (std::size_t at = 0; at < lines.size() && IsKnownAhead(lines[at]); ++at) {
      const host::Statement each = host::ReadStatement(lines[at]);
      if (each.words.empty() || each.form == host::Form::kHeading) continue;
      host::CheckOperands(each, false);
      if (each.Sends()) host::CheckCommand(each, false);
      const host::Result result = host::Run(each);
      if (each.Sends()) host::ReadCommand(result.text, host::Framing::kApdu);
    }
  } catch (const host::Failure& failure) {
    Expect(false, failure.what());
  }
}

void Scripts(Input input) {
  CheckLines(input);
  EnterFolder();
  orvane_test::WriteFile("script", input.Rest());
  *orvane::EnsureEngine() = orvane::ScriptEngine();
  try {
    const host::Script script("script");
    host::Secrets secrets;
    script.ForEach([&](const host::Statement& each, std::size_t) {
      CheckAccepted(each);
      secrets.Learn(each);
      return true;
    });
    script.ForEach([&](const host::Statement& each, std::size_t) {
      secrets.Touches(each);
      if (each.form == host::Form::kAssignment) secrets.Follow(each, "00A4");
      return true;
    });
  } catch (const host::Failure&) {
  }
}

// Whatever is printed of data stays below a room that their length bounds.
void Tlv(Input input) {
  EnterFolder();
  std::ostringstream out;
  const std::string text = input.Rest();
  try {
    host::PrintTlv(out, text);
  } catch (const host::Failure&) {
  }
  Expect(out.str().size() <= 1000 + 400 * text.size(), "the size of a tree");
}

// A recording is the same as itself, whatever is in it; its lines can be read as they are written.
void Recordings(Input input) {
  std::istringstream in(input.Rest());
  try {
    const host::NamedRecording session{"", recordings::ReadRecording(in)};
    for (const auto& event : session.recording.events) {
      Expect(recordings::ReadEvent(recordings::WriteEvent(event)).has_value(), "a written line");
    }
    std::ostringstream out;
    host::WriteScript(out, session);
    host::MakeCapture(session.recording);
    Expect(host::PrintDifferences(out, session, session, true, true), "a recording of itself");
  } catch (const recordings::Fault&) {
  }
}

// clang-format off
const std::map<std::string_view, void (*)(Input)> kTargets = {
    {"statements", Statements}, {"tags", Tags}, {"dictionary", Dictionary}, {"tlv", Tlv},
    {"conversions", Conversions}, {"character_sets", CharacterSets}, {"readers", Readers},
    {"recordings", Recordings}, {"scripts", Scripts}};
// clang-format on

}  // namespace

const CryptoProvider& orvane::BoundCryptoProvider() { return kProvider; }

// In the C library's place: a locale's character set is the input's, and drivers don't pause.
extern "C" char* nl_langinfo_l(nl_item, locale_t) { return characterSet.data(); }
extern "C" int nanosleep(const timespec*, timespec*) { return 0; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const char* const name = std::getenv("FUZZ_TARGET");
  kTargets.at(name == nullptr ? "" : name)(Input({reinterpret_cast<const char*>(data), size}));
  return 0;
}
