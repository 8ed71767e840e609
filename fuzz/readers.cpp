// The reader exports in any order, over vendor libraries that answer as the input says. A line of
// the input is one call, the answers to what it asks of a library are the lines behind it:
//
//   N3 Simulated Reader 0   OpenReaderA of that kind
//   P5 1                    OpenReader of that kind
//   C                       CloseReader
//   R                       Reset
//   S0C                     ChangeSlot
//   X00A4040000             SendCommand
//   Y-1                     SendCommand with that length, where it is none
//   #15                     SetReader
//   L2 4 0                  GetReaderList of that kind, with count and max
//   -dc_reset               from now on a library lacks that function, or is not to be had
#include "fuzz/input.h"
#include "fuzz/vendor_libraries.h"
#include "orvane.h"
#include "util/hex.h"

namespace {

using namespace orvane_fuzz;

constexpr int kReaders = 16;
constexpr std::int32_t kNoSuchKind = 13;
constexpr std::size_t kLongestCommand = 8192;

std::int32_t Number(std::string_view digits) {
  return static_cast<std::int32_t>(std::strtoll(std::string(digits).c_str(), nullptr, 0));
}

bool IsUpperHex(std::string_view text) {
  return text.size() % 2 == 0 && text.find_first_not_of("0123456789ABCDEF") == text.npos;
}

bool IsUntouched(std::string_view bytes) {
  return bytes.find_first_not_of(Room::kFiller) == bytes.npos;
}

void ExpectFlag(std::int32_t result) { Expect(result == 0 || result == 1, "a result"); }

void ResetCard() {
  Room atr(1025);
  const std::int32_t result = Reset(atr.Data());
  ExpectFlag(result);
  if (result == 0) return Expect(IsUntouched(atr.Bytes()), "an ATR without success");
  // The drivers give at most 256 octets.
  Expect(atr.Text().size() <= 512 && IsUpperHex(atr.Text()), "an ATR");
}

std::string Octets(std::string_view digits) {
  std::string octets(digits.size() + 1, '\0');
  orvane::DecodeHex(digits, reinterpret_cast<std::uint8_t*>(octets.data()));
  return octets.substr(0, digits.size() / 2);
}

void SendTo(std::string_view digits, std::int32_t length) {
  Room command(digits.size());
  digits.copy(command.Data(), digits.size());
  Room response(8193);
  TakeSentCommands();
  const std::int32_t result = SendCommand(command.Data(), length, response.Data());
  ExpectFlag(result);
  const std::string_view text = response.Text();
  Expect(text.size() < response.Size() && IsUpperHex(text), "a response");

  const std::vector<std::string> sent = TakeSentCommands();
  Expect(sent.size() <= 2, "one command and one GET RESPONSE");
  if (!sent.empty()) ExpectSame(sent[0], Octets(digits), "the command that reaches the card");
  if (sent.size() == 2) {
    Expect(sent[1].size() == 5 && sent[1].substr(0, 4) == std::string("\0\xC0\0\0", 4),
           "GET RESPONSE");
  }
  Expect(result == 1 || text.empty() || (text.size() == 4 && !sent.empty()),
         "a failed command's status word");
}

void SendOfNoLength(std::int32_t length) {
  if (length >= 0 && length <= static_cast<std::int32_t>(kLongestCommand)) return;
  SendTo("", length);
}

void List(std::int32_t kind, std::int32_t count, std::int32_t max) {
  // To list kind 0 is to list what was listed before.
  if (kind == 0) return;
  // The host gives as much room as it asks for, so it asks for little.
  count = std::min(count, 40);
  max = std::min(max, 40);
  const bool honoursMax = kind <= 3 || kind == 7 || kind == 8 || kind == 11;
  const std::int32_t places = max > 0 && honoursMax ? max : std::max(count + 1, std::int32_t{16});
  Room records(static_cast<std::size_t>(places) * sizeof(ReaderInfo));
  TakeThrower();
  const std::int32_t written =
      GetReaderList(kind, reinterpret_cast<ReaderInfo*>(records.Data()), count, max);
  Expect(written >= 0 && written <= places, "a number of records");
  // A library that is left for another may throw as well, which changes nothing.
  Expect(TakeThrower() != "winscard.dll" || written == 0, "a list after an exception");
  for (std::int32_t i = 0; i < written; ++i) {
    ReaderInfo record;
    std::memcpy(&record, records.Data() + static_cast<std::size_t>(i) * sizeof record,
                sizeof record);
    Expect(record.kind == (kind == ReaderKindS5009Ats ? ReaderKindS5009 : kind), "its kind");
    ExpectFlag(record.hasPort);
    Expect(record.hasPort == 1 || record.port == 0, "a port");
    Expect(std::memchr(record.name, 0, sizeof record.name) != nullptr, "a name's end");
    Expect(record.reserved == 0, "a record's end");
  }
  // None at all may be what an exception left.
  if (written == 0) return;
  Expect(
      IsUntouched(records.Bytes().substr(static_cast<std::size_t>(written) * sizeof(ReaderInfo))),
      "what stands behind the last record");
}

void EmptyPlaces() {
  for (unsigned reader = 0; reader < kReaders; ++reader) {
    SetReader(reader);
    OpenReader(1, kNoSuchKind, 9600);
  }
  SetReader(0);
  ReaderInfo none;
  GetReaderList(kNoSuchKind, &none, 0, 0);
}

void Do(char step, Input& line) {
  switch (step) {
    case 'N': {
      const std::int32_t kind = Number(line.Until(' '));
      return ExpectFlag(OpenReaderA(Text(line.Rest()), kind));
    }
    case 'P': {
      const std::int32_t kind = Number(line.Until(' '));
      return ExpectFlag(OpenReader(Number(line.Rest()), kind, 9600));
    }
    case 'C':
      return ExpectFlag(CloseReader());
    case 'R':
      return ResetCard();
    case 'S':
      return ChangeSlot(Text(line.Rest()));
    case 'X': {
      const std::string_view digits = line.Take(kLongestCommand);
      return SendTo(digits, static_cast<std::int32_t>(digits.size()));
    }
    case 'Y':
      return SendOfNoLength(Number(line.Rest()));
    case '#': {
      const auto reader = static_cast<std::uint32_t>(Number(line.Rest()));
      return Expect(SetReader(reader) == (reader < kReaders ? 1 : 0), "a reader's number");
    }
    case 'L': {
      const std::int32_t kind = Number(line.Until(' '));
      const std::int32_t count = Number(line.Until(' '));
      return List(kind, count, Number(line.Rest()));
    }
    case '-':
      return Hide(std::string(line.Rest()));
    default:
      return;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  AnswerFrom(input);
  while (!input.Empty()) {
    const std::string_view text = input.Line();
    Input line(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    const auto step = static_cast<char>(line.Byte());
    Do(step, line);
  }
  EmptyPlaces();
  ExpectAllReleased();
  return 0;
}
