/*
 * Orvane for C++20: orvane.h in types that clean up after themselves, in one header.
 *
 *   for (const char* line : {"@reset()", "00A40400 08 F04F5256414E4501"}) {
 *     const orvane::Result result = orvane::Script::Run(line);
 *     if (std::holds_alternative<orvane::ResetRequest>(result)) reader.Reset();
 *     if (const auto* command = std::get_if<orvane::Command>(&result)) {
 *       const orvane::Response response = reader.Send(command->hex);
 *       orvane::Script::Set("%RESP", response.Data());
 *       orvane::Script::Set("%SW", response.StatusWord());
 *     }
 *   }
 *
 * Rules for all of it:
 *  - Failures are thrown: ScriptError if a statement failed, ReaderError if a reader or card
 *    doesn't answer, DataError if input is refused. A status word other than 9000 is an answer, and
 *    no failure.
 *  - A text of limited size comes back in an object of that size. Memory is allocated only for a
 *    std::string or std::vector that stands in a signature.
 *  - Hexadecimal text is as in orvane.h, but an odd number of digits is refused.
 *  - The rules of orvane.h for threads hold. Open readers through this header only: readers that
 * the functions of orvane.h or another DLL open take the same numbers.
 */
#ifndef ORVANE_HPP
#define ORVANE_HPP

#include <orvane.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace orvane {

/* ---- Failures and texts ---- */

/// The base of all failures.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A statement that failed, with its code of RunScript, SetVarValue or GetVarValue. Statements with
/// the codes 1 to 8 can fail too: what() is then the message that they left.
class ScriptError : public Error {
 public:
  ScriptError(int32_t code, const std::string& message) : Error(message), code_(code) {}
  int32_t Code() const { return code_; }

 private:
  int32_t code_;
};

/// A reader that doesn't open, reset, answer or close.
class ReaderError : public Error {
 public:
  using Error::Error;
};

/// Input that is refused before anything is done with it.
class DataError : public Error {
 public:
  using Error::Error;
};

/// A text as an argument: a literal, a std::string or a FixedText. It is zero-terminated, and has
/// no other zero.
class TextArgument {
 public:
  TextArgument(const char* text) : text_(text == nullptr ? "" : text) {}
  TextArgument(const std::string& text) : text_(text.c_str()) {
    if (text.find('\0') != text.npos) throw DataError("a text has a zero octet in it");
  }
  const char* Get() const { return text_; }
  std::string_view View() const { return text_; }

 private:
  const char* text_;
};

/// A text with its own memory: room for Room characters and a terminator.
template <size_t Room>
class FixedText {
 public:
  FixedText() = default;
  /// Takes at most Room characters.
  explicit FixedText(std::string_view text) { text.copy(area_.data(), Room); }
  std::string_view View() const { return area_.data(); }
  const char* Get() const { return area_.data(); }
  /// Room + 1 octets, for a function that writes them.
  char* Area() { return area_.data(); }

  operator std::string_view() const { return View(); }
  operator TextArgument() const { return Get(); }
  friend bool operator==(const FixedText& left, std::string_view right) {
    return left.View() == right;
  }

 private:
  std::array<char, Room + 1> area_{};
};

/* ---- Conversions ---- */

/// True if a text is made of the digits 0 to 9 alone, and not empty.
inline bool IsDecimal(std::string_view text) {
  return !text.empty() && CheckAsciiNum(text.data(), 0, static_cast<int32_t>(text.size())) == 0;
}

/// True if a text is made of hexadecimal digits alone, without blanks, and not empty.
inline bool IsHex(std::string_view text) {
  return !text.empty() && CheckAsciiNum(text.data(), 1, static_cast<int32_t>(text.size())) == 0;
}

/// Writes 2 * octets.size() digits into text, which needs that room. Gives their number.
inline size_t ToHex(std::span<const uint8_t> octets, std::span<char> text) {
  if (text.size() < 2 * octets.size()) throw DataError("no room for the hexadecimal text");
  HexToAscii(octets.data(), text.data(), static_cast<int32_t>(octets.size()));
  return 2 * octets.size();
}

/// Octets as upper-case digits.
inline std::string ToHex(std::span<const uint8_t> octets) {
  std::string text(2 * octets.size(), '\0');
  ToHex(octets, text);
  return text;
}

/// Writes the octets of a hexadecimal text into octets, which needs the room. Gives their number.
inline size_t ToOctets(std::string_view hex, std::span<uint8_t> octets) {
  const size_t digits = hex.size() - static_cast<size_t>(std::count(hex.begin(), hex.end(), ' '));
  if (digits % 2 != 0) throw DataError("hexadecimal text of " + std::to_string(digits) + " digits");
  if (octets.size() < digits / 2) throw DataError("no room for the octets");
  if (digits > 0 && AsciiToHex(hex.data(), octets.data(), static_cast<int32_t>(hex.size())) == 0) {
    throw DataError("hexadecimal text with another character");
  }
  return digits / 2;
}

/// The octets of a hexadecimal text.
inline std::vector<uint8_t> ToOctets(std::string_view hex) {
  std::vector<uint8_t> octets(hex.size() / 2);
  octets.resize(ToOctets(hex, octets));
  return octets;
}

/// Hexadecimal text with \x before every two digits, as C and others write octets.
inline std::string ToEscapes(std::string_view hex) {
  if (!IsHex(hex) || hex.size() % 2 != 0) throw DataError("no hexadecimal text of whole octets");
  std::string text(2 * hex.size(), '\0');
  AsciiToHexStr(hex.data(), text.data(), static_cast<int32_t>(hex.size()));
  return text;
}

/// The number that 1 to 4 octets form, most significant first.
inline int32_t ToNumber(std::span<const uint8_t> octets) {
  int32_t number = 0;
  if (octets.size() > 4 ||
      HexToInt(octets.data(), &number, static_cast<int32_t>(octets.size())) == 0) {
    throw DataError("a number has 1 to 4 octets");
  }
  return number;
}

/// The same of 2, 4, 6 or 8 digits.
inline int32_t ToNumber(std::string_view hex) {
  int32_t number = 0;
  if (!IsHex(hex) || hex.size() % 2 != 0 || hex.size() > 8 ||
      HexStrToInt(hex.data(), &number, static_cast<int32_t>(hex.size())) == 0) {
    throw DataError("a number has 2, 4, 6 or 8 hexadecimal digits");
  }
  return number;
}

/// The significant octets of a number as 2, 4, 6 or 8 digits.
inline FixedText<8> NumberToHex(int32_t number) {
  FixedText<8> text;
  int32_t length = 0;
  IntToHexStr(text.Area(), number, &length);
  return text;
}

/// The same as octets.
inline std::vector<uint8_t> NumberToOctets(int32_t number) {
  std::array<uint8_t, 4> area{};
  int32_t count = 0;
  IntToHex(area.data(), number, &count);
  return {area.end() - count, area.end()};
}

/// Escapes all but ASCII letters and digits.
inline std::string UrlEncode(TextArgument text) {
  std::string encoded(3 * text.View().size(), '\0');
  URLEncode(text.Get(), encoded.data());
  encoded.resize(std::strlen(encoded.c_str()));
  return encoded;
}

/// Undoes UrlEncode, and turns + into a blank. Escapes are not checked.
inline std::string UrlDecode(TextArgument text) {
  const std::string_view view = text.View();
  size_t length = 0;
  for (size_t at = 0; at < view.size(); ++length) {
    at += view[at] == '%' && view.size() - at > 2 ? 3 : 1;
  }
  std::string decoded(view.size(), '\0');
  URLDecode(text.Get(), decoded.data());
  decoded.resize(length);
  return decoded;
}

/// From the ANSI code page. Throws std::runtime_error, as orvane.h says.
inline std::string AnsiToUtf8(TextArgument text) {
  std::string converted(3 * text.View().size(), '\0');
  ASCII2UTF_8(text.Get(), converted.data());
  converted.resize(std::strlen(converted.c_str()));
  return converted;
}

/// To the OEM code page. Throws std::runtime_error, as orvane.h says.
inline std::string Utf8ToOem(TextArgument text) {
  std::string converted(4 * text.View().size(), '\0');
  UTF_82ASCII(text.Get(), converted.data());
  converted.resize(std::strlen(converted.c_str()));
  return converted;
}

/* ---- Times and logs: a stamp is the Unix time less 28800 ---- */

/// The stamp of the present second.
inline uint32_t Stamp() {
  uint32_t stamp = 0;
  GetTimeStampInt(&stamp);
  return stamp;
}

/// The same in decimal, with three digits of milliseconds behind it if they are wanted.
inline FixedText<14> StampText(bool milliseconds = false) {
  FixedText<14> text;
  GetTimeStampStr(text.Area(), milliseconds ? 1 : 0);
  return text;
}

/// The present time, YYYY-MM-DD hh:mm:ss, in UTC.
inline FixedText<32> TimeText() {
  FixedText<32> text;
  GetTimeStr(text.Area());
  return text;
}

/// The time of a stamp.
inline FixedText<32> TimeOf(uint32_t stamp) {
  FixedText<32> text;
  GetTimeStrFromTimeStampInt(text.Area(), stamp);
  return text;
}

/// The time of a text of StampText(true), with its milliseconds behind a colon if they are wanted.
inline FixedText<36> TimeOfText(TextArgument stampText, bool milliseconds = false) {
  const size_t length = stampText.View().size();
  if (length < 4 || length > 25) throw DataError("no stamp with milliseconds");
  FixedText<36> text;
  GetTimeStrFromTimeStampStr(text.Area(), stampText.Get(), milliseconds ? 1 : 0);
  return text;
}

/// Appends a text to a file, as it is.
inline void LogText(TextArgument path, TextArgument text) { AsciiLog(path.Get(), text.Get()); }

/// Appends octets as hexadecimal text.
inline void LogHex(TextArgument path, std::span<const uint8_t> octets) {
  HexLog(path.Get(), octets.data(), static_cast<int32_t>(octets.size()));
}

/* ---- Scripts ---- */

/// The text that RunScript gives for a statement.
using StatementText = FixedText<511>;

/// An empty statement or a comment.
struct Nothing {};
/// A value was stored; these are its first 511 bytes. If a script command in it has failed, the
/// value has a message or nothing in its place. So scripts should compare the length of computed
/// values.
struct Assignment {
  StatementText value;
};
/// An expression of whole octets in hexadecimal, at least four: send it to the card.
struct Command {
  StatementText hex;
};
/// Any other expression, perhaps empty: not for a card.
struct Value {
  StatementText text;
};
/// @setreader(reader)
struct ReaderChoice {
  StatementText reader;
};
/// @setslot(slot)
struct SlotChoice {
  StatementText slot;
};
/// @OPENREADER(reader)
struct OpenRequest {
  StatementText reader;
};
/// @reset()
struct ResetRequest {};
/// $ and a text for the host; read it from the statement.
struct Note {};
/// @stop()
struct Stop {};
/// @compare(left, right, expected)
struct Comparison {
  bool met;  // as expected
};

/// The result of a statement.
using Result = std::variant<Nothing, Assignment, Command, Value, ReaderChoice, SlotChoice,
                            OpenRequest, ResetRequest, Note, Stop, Comparison>;

/// The process's script engine and its variables.
class Script {
 public:
  /// Runs one statement. Throws ScriptError where it failed: an undefined variable in it, an
  /// argument of a command for the host that is empty or failed, @reset() or @stop() that doesn't
  /// stand alone, "(", ")" or "," in front, a text above 511 bytes, no memory.
  static Result Run(TextArgument statement) {
    StatementText text;
    const int32_t code = RunScript(statement.Get(), text.Area());
    if (code == ScriptNoEngine || code == ScriptException) {
      throw ScriptError(code, "a text above 511 bytes, or no memory");
    }
    if (NamesUndefined(code, text)) throw ScriptError(code, std::string(text.View()));
    switch (code) {
      case KindAssignment:
        return Assignment{text};
      case KindExpression:
        return Expression(statement.View(), text);
      case KindSetReader:
        return ReaderChoice{Argument(code, text)};
      case KindSetSlot:
        return SlotChoice{Argument(code, text)};
      case KindOpenReader:
        return OpenRequest{Argument(code, text)};
      case KindCompare:
        if (text != "0" && text != "1") throw ScriptError(code, "an operand of @compare failed");
        return Comparison{text == "1"};
      case KindDollar:
        return Note{};
      case KindReset:
      case KindStop:
        if (text != "") throw ScriptError(code, "@reset() and @stop() have to stand alone");
        return code == KindStop ? Result(Stop{}) : Result(ResetRequest{});
      default:
        return Nothing{};
    }
  }

  /// Stores a variable. The % of a script's variable is part of its name.
  static void Set(TextArgument name, TextArgument value) {
    Check(SetVarValue(name.Get(), value.Get()), name);
  }

  /// Tells whether a variable exists.
  static bool Has(TextArgument name) {
    const int32_t code = GetVarValue(name.Get());
    if (code != ScriptUndefinedVariable) Check(code, name);
    return code == ScriptDone;
  }

  /// The whole value of a variable, in its own case. The name begins with %. This uses the
  /// variable ORVANE.PIECE, which no script can read.
  static std::string Get(TextArgument name) {
    if (!name.View().starts_with('%') || name.View().find_first_of(" \t(),") != std::string::npos) {
      throw DataError("a variable that can be read has a name with % in front and no separator");
    }
    Check(GetVarValue(name.Get()), name);
    std::string value;
    StatementText piece;
    do {
      const std::string call = "ORVANE.PIECE=@strmid(" + std::string(name.View()) + "," +
                               std::to_string(value.size()) + ",511)";
      Check(RunScript(call.c_str(), piece.Area()), name);
      value += piece.View();
    } while (piece.View().size() == 511);
    SetVarValue("ORVANE.PIECE", "");
    return value;
  }

 private:
  // In an expression the message of a failed command is in upper case like the rest.
  static bool NamesUndefined(int32_t code, std::string_view text) {
    if (code == KindAssignment) return false;
    return text.ends_with("\" not define ") ||
           (code == KindExpression && text.find("\" NOT DEFINE ") != text.npos);
  }
  static const StatementText& Argument(int32_t code, const StatementText& text) {
    if (text == "") throw ScriptError(code, "an argument is empty, or failed");
    return text;
  }
  static Result Expression(std::string_view statement, const StatementText& text) {
    const size_t first = statement.find_first_not_of(" \t");
    if (text == "" && first != statement.npos && std::strchr("(),", statement[first]) != nullptr) {
      throw ScriptError(KindExpression, "a statement can't begin with ( ) or ,");
    }
    const size_t digits = text.View().size();
    if (digits >= 8 && digits % 2 == 0 && IsHex(text)) return Command{text};
    return Value{text};
  }
  static void Check(int32_t code, TextArgument name) {
    if (code == ScriptDone) return;
    throw ScriptError(code, code == ScriptUndefinedVariable
                                ? "there is no " + std::string(name.View())
                            : code == ScriptEmptyName ? "a variable without name"
                                                      : "no memory");
  }
};

/* ---- Readers ---- */

/// True for the kinds whose answers end in a status word.
constexpr bool HasStatusWord(int32_t kind) {
  return kind != ReaderKindFm8201 && kind != ReaderKindTcp && kind != ReaderKindIcr;
}

/// The most octets of a command that go out to a reader of this kind.
constexpr size_t LongestCommand(int32_t kind) {
  if (kind == ReaderKindD8 || kind == ReaderKindWd) return 255;
  return kind == ReaderKindS5009 || kind == ReaderKindS5009Ats ? 133 : 4096;
}

/// The most octets of data that an answer brings in beside its status word.
constexpr size_t MostData(int32_t kind) {
  if (kind == ReaderKindS5009 || kind == ReaderKindS5009Ats) return 126;
  return kind == ReaderKindTyUsb || kind == ReaderKindTyCom ? 256 : 254;
}

/// A card's answer: views of what SendCommand gave.
struct ResponseParts {
  std::string_view data;        // hexadecimal text
  std::string_view statusWord;  // four digits; empty where it isn't known, or the kind has none
  bool ok;  // the exchange ended in 9000; on a kind without status word, it has worked. Else
            // statusWord is the answer's first two octets: the beginning of data, if there was any
};

/// Splits what SendCommand gave, by the kind of reader. None if there was no answer.
inline std::optional<ResponseParts> ReadResponse(int32_t kind, int32_t result,
                                                 std::string_view text) {
  constexpr std::string_view kSuccess = "9000";
  if (!HasStatusWord(kind)) {
    return result != 0 ? std::optional(ResponseParts{text, "", true}) : std::nullopt;
  }
  if (result == 0) {
    if (text.empty()) return std::nullopt;
    // An answer that ends in 9000 does not fail: this one begins so, and must not look like
    // success.
    return ResponseParts{"", text == kSuccess ? "" : text, false};
  }
  const bool keeps = kind == ReaderKindWd || kind == ReaderKindS5009 || kind == ReaderKindS5009Ats;
  const bool replies = kind == ReaderKindTyUsb || kind == ReaderKindTyCom;
  // What the kinds 1 and 2 replied is data in any case; the others give 9000 for an answer without.
  const bool ends = keeps ? text.ends_with(kSuccess) : !replies && text == kSuccess;
  return ResponseParts{text.substr(0, text.size() - (ends ? kSuccess.size() : 0)), kSuccess, true};
}

/// A card's answer; ResponseParts tells what its parts mean.
class Response {
 public:
  const FixedText<8192>& Data() const { return data_; }
  const FixedText<4>& StatusWord() const { return statusWord_; }
  bool Ok() const { return ok_; }
  std::vector<uint8_t> Octets() const { return ToOctets(data_); }

 private:
  friend class Reader;
  bool Read(int32_t kind, int32_t result) {
    const std::optional<ResponseParts> parts = ReadResponse(kind, result, data_);
    if (!parts) return false;
    statusWord_ = FixedText<4>(parts->statusWord);
    ok_ = parts->ok;
    data_.Area()[parts->data.size()] = '\0';  // the data stands at the beginning
    return true;
  }

  FixedText<8192> data_;
  FixedText<4> statusWord_;
  bool ok_ = false;
};

/// One of the sixteen readers that a process can have open; closes itself.
class Reader {
 public:
  /// The readers of one kind. ports is the number of ports to offer if the kind can't list its own.
  static std::vector<ReaderInfo> List(ReaderKind kind, int32_t ports = 0) {
    if (ports < 0 || ports > 256) throw DataError("a list has 0 to 256 ports");
    std::vector<ReaderInfo> list(static_cast<size_t>((std::max)(ports + 1, 64)));
    const int32_t count =
        GetReaderList(kind, list.data(), ports, static_cast<int32_t>(list.size()));
    list.resize(static_cast<size_t>(count));
    return list;
  }

  /// Opens by name, as List gives it; a payment HSM by its address.
  static Reader Open(ReaderKind kind, TextArgument name) {
    return Reader(kind, name.View(), [&] { return OpenReaderA(name.Get(), kind); });
  }

  /// Opens by port.
  static Reader OpenPort(ReaderKind kind, int32_t port) {
    return Reader(kind, "the port", [&] { return OpenReader(port, kind, 9600); });
  }

  Reader(Reader&& other) noexcept
      : kind_(other.kind_), number_(std::exchange(other.number_, kClosed)) {}
  Reader& operator=(Reader&& other) noexcept {
    if (this != &other) {
      Release();
      kind_ = other.kind_;
      number_ = std::exchange(other.number_, kClosed);
    }
    return *this;
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  ~Reader() { Release(); }

  ReaderKind Kind() const { return kind_; }
  bool IsOpen() const { return number_ != kClosed; }

  /// Brings up the card and gives its ATR in hexadecimal, or what the kind gives instead. A card in
  /// a PC/SC reader is not reset.
  FixedText<1024> Reset() {
    Select();
    FixedText<1024> atr;
    if (::Reset(atr.Area()) == 0) throw ReaderError("no answer to reset");
    return atr;
  }

  /// Chooses a card slot; what a slot means is up to the kind.
  void ChooseSlot(uint8_t slot) {
    Select();
    std::array<char, 3> digits{};
    HexToAscii(&slot, digits.data(), 1);
    ChangeSlot(digits.data());
  }

  /// Sends a command of hexadecimal digits; blanks may stand between them. Throws DataError, with
  /// nothing sent, for anything else, below four octets (but for kinds without status word), and
  /// above what the reader takes. Where a payment HSM has not answered the reader is closed, so
  /// that an answer that comes late is not taken for the next command's.
  Response Send(std::string_view hex) {
    std::array<uint8_t, 4096> octets;
    if (hex.size() > 4 * octets.size()) throw DataError("a command of too many digits");
    return Send(std::span<const uint8_t>(octets.data(), ToOctets(hex, octets)));
  }

  /// Sends the octets of a command. Otherwise the same.
  Response Send(std::span<const uint8_t> octets) {
    Select();
    const size_t least = HasStatusWord(kind_) ? 4 : 1;
    if (octets.size() < least || octets.size() > LongestCommand(kind_)) {
      throw DataError("a command of " + std::to_string(octets.size()) +
                      " octets: this reader takes " + std::to_string(least) + " to " +
                      std::to_string(LongestCommand(kind_)));
    }
    FixedText<8192> digits;
    const size_t length = ToHex(octets, std::span(digits.Area(), 8192));
    Response response;
    const int32_t result =
        SendCommand(digits.Get(), static_cast<int32_t>(length), response.data_.Area());
    if (response.Read(kind_, result)) return response;
    if (kind_ == ReaderKindTcp) Release();
    throw ReaderError("no answer from the card or its reader");
  }

  /// Closes the reader. If its library refuses, it counts as closed, and this throws. A closed
  /// reader stays closed.
  void Close() {
    if (IsOpen() && !Release()) throw ReaderError("the reader's library refuses to close it");
  }

 private:
  static constexpr uint32_t kClosed = 16;
  static inline std::array<bool, kClosed> taken_{};

  template <class Opening>
  Reader(ReaderKind kind, std::string_view what, const Opening& open)
      : kind_(kind),
        number_(static_cast<uint32_t>(std::find(taken_.begin(), taken_.end(), false) -
                                      taken_.begin())) {
    if (number_ == kClosed) throw ReaderError("sixteen readers are open");
    SetReader(number_);
    if (open() == 0) throw ReaderError(std::string(what) + " doesn't open");
    taken_[number_] = true;
  }
  void Select() const {
    if (!IsOpen()) throw ReaderError("the reader is closed");
    SetReader(number_);
  }
  bool Release() noexcept {
    if (!IsOpen()) return true;
    SetReader(number_);
    taken_[std::exchange(number_, kClosed)] = false;
    return CloseReader() != 0;
  }

  ReaderKind kind_;
  uint32_t number_;
};

/* ---- Tags ---- */

/// Parses BER-TLV data. Find gives every element of the tree, children too, by its tag.
class TagTree {
 public:
  TagTree() : parser_(TagParsing_Init()) {
    if (parser_ == nullptr) throw std::bad_alloc();
  }
  explicit TagTree(TextArgument hex) : TagTree() { Parse(hex); }

  /// Adds what a hexadecimal text holds. Throws DataError at the first element that is malformed;
  /// what stands before it is kept.
  void Parse(TextArgument hex) {
    if (TagParsing_Parse(parser_.get(), hex.Get()) == 0) {
      throw DataError("malformed BER-TLV data, or a tag above one octet");
    }
  }

  /// The value of the last element with a tag, in hexadecimal; none if there is no such element.
  std::optional<FixedText<2046>> Find(TextArgument tag) const {
    TagRecord record;
    if (TagParsing_GetTag(parser_.get(), tag.Get(), record.lengthText) == 0) return std::nullopt;
    const char* const end = std::find(record.value, std::end(record.value), '\0');
    return FixedText<2046>(std::string_view(record.value, end));
  }

 private:
  struct Free {
    void operator()(TagParser* parser) const { TagParsing_Free(parser); }
  };
  std::unique_ptr<TagParser, Free> parser_;
};

/// A record of the dictionary. Throws DataError for a text that is longer than its field: 19, 199
/// and 1,023 bytes.
inline TagdictData MakeTagEntry(TextArgument tag, TextArgument shortText,
                                TextArgument longText = "") {
  TagdictData entry{};
  const auto store = [](std::string_view text, std::span<char> field) {
    if (text.size() >= field.size()) throw DataError("a text of the dictionary is too long");
    text.copy(field.data(), text.size());
  };
  store(tag.View(), entry.tag);
  store(shortText.View(), entry.shortText);
  store(longText.View(), entry.longText);
  return entry;
}

/// The process's dictionary of tags, in the file dictdata.bin of the current folder.
class TagDictionary {
 public:
  /// The whole list. It needs a file that this class has read or flushed, and no other code of the
  /// process may use the dictionary: else the number of records is not known. Throws DataError
  /// before a first flush, and if another program changed the file while it was read.
  static std::vector<TagdictData> List() {
    Load();
    if (!loaded_ && added_ == 0) return {};
    if (!loaded_) throw DataError("there is no dictdata.bin yet: flush first");
    if (!known_) throw DataError("dictdata.bin changed while it was read");
    std::vector<TagdictData> records(fileRecords_ + added_ + 1);
    int32_t count = 0;
    if (GetTagdict(records.data(), &count) == 0) throw std::bad_alloc();
    records.resize(static_cast<size_t>(count));
    return records;
  }

  /// The first record with a tag, in either case.
  static std::optional<TagdictData> Find(TextArgument tag) {
    Load();
    TagdictData entry;
    if (FindTagdictData(tag.Get(), &entry) == 0) return std::nullopt;
    return entry;
  }

  /// Adds a record at the end. False if its tag is there, in either case.
  static bool Add(const TagdictData& entry) {
    Load();
    ++added_;
    return AddTagdictData(&entry) != 0;
  }

  /// Puts a record in the place of the one with exactly its tag, or adds it. False if the tag is
  /// there in another case.
  static bool Replace(const TagdictData& entry) {
    Load();
    ++added_;
    return UpTagdictData(&entry) != 0;
  }

  /// Removes the first record with exactly this tag. False if there is none.
  static bool Remove(TextArgument tag) {
    Load();
    return DeleteTagdictData(tag.Get()) != 0;
  }

  /// Writes the list to the file. A failure is not reported.
  static void Flush() {
    Load();
    FlushTagdict();
    fileRecords_ = (std::max)(fileRecords_, Look().records);
  }

 private:
  struct File {
    bool read = false;
    uint64_t size = 0;
    size_t records = 0;
    std::filesystem::file_time_type time{};
    bool operator==(const File&) const = default;
  };

  // What the library would read now: as many records as the file says, but each has three octets.
  static File Look() {
    constexpr const char* kName = "dictdata.bin";
    std::error_code error;
    if (!std::filesystem::is_regular_file(kName, error)) return {};
    std::ifstream in(kName, std::ios::binary);
    std::array<uint8_t, 4> octets{};
    in.read(reinterpret_cast<char*>(octets.data()), 4);
    std::reverse(octets.begin(), octets.end());
    const auto size = static_cast<uint64_t>(std::filesystem::file_size(kName, error));
    const auto time = std::filesystem::last_write_time(kName, error);
    if (!in.is_open() || error) return {};
    const auto said = static_cast<uint64_t>((std::max)(ToNumber(octets), 0));
    return {true, size, static_cast<size_t>((std::min)(said, size / 3)), time};
  }

  // The library reads the file in the first call that finds it, and doesn't tell how much it was.
  static void Load() {
    if (loaded_) return;
    TagdictData ignored;
    const File before = Look();
    FindTagdictData("", &ignored);
    const File after = Look();
    loaded_ = before.read && after.read;
    known_ = known_ && before == after;
    fileRecords_ = (std::max)({fileRecords_, before.records, after.records});
  }

  static inline bool loaded_ = false;
  static inline bool known_ = true;
  static inline size_t fileRecords_ = 0;
  static inline size_t added_ = 0;
};

}  // namespace orvane

#endif
