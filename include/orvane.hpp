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
 *  - What can't be done is thrown: ScriptError by a statement that failed, ReaderError where a
 *    reader or card doesn't answer, DataError for input that can't be meant. A status word other
 *    than 9000 is an answer, and no failure.
 *  - Texts that the library writes into an area of a known size come back in an object of that
 * size: nothing is allocated beside what a std::string or std::vector in a signature says.
 *  - Hexadecimal text is as in orvane.h, but an odd number of digits is refused.
 *  - The rules of orvane.h for threads hold. Readers that are opened by orvane.h's own functions in
 *    the same process take the numbers of these: use one or the other.
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

/// What every failure is.
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

/// A text that is handed over, zero-terminated and without another zero: a literal, a std::string,
/// or a FixedText.
class TextArgument {
 public:
  TextArgument(const char* text) : text_(text) {}
  TextArgument(const std::string& text) : text_(text.c_str()) {
    if (text.find('\0') != text.npos) throw DataError("a text has a zero octet in it");
  }
  const char* Get() const { return text_; }
  std::string_view View() const { return text_; }

 private:
  const char* text_;
};

/// A text in an area of its own, with room for Room characters and a terminator.
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

/// Writes 2 * octets.size() digits, for which text has room, and gives their number.
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

/// Writes the octets of a hexadecimal text, for which octets has room, and gives their number.
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

/// What RunScript's text of a statement fits in.
using StatementText = FixedText<511>;

/// An empty statement or a comment.
struct Nothing {};
/// A value was stored: its first 511 bytes. A script command that failed in it has left a message
/// or nothing in the value, so let scripts compare the length of what they have computed.
struct Assignment {
  StatementText value;
};
/// An expression that is whole octets in hexadecimal, four at least: to be sent to the card.
struct Command {
  StatementText hex;
};
/// Any other expression, perhaps empty; nothing for a card.
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
/// $ and a text for the host, which has it.
struct Note {};
/// @stop()
struct Stop {};
/// @compare(left, right, expected)
struct Comparison {
  bool met;  // as expected
};

/// What a statement has come to.
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

  /// Stores a variable. The % of one that scripts can read is part of its name.
  static void Set(TextArgument name, TextArgument value) {
    Check(SetVarValue(name.Get(), value.Get()), name);
  }

  /// Tells whether a variable exists.
  static bool Has(TextArgument name) {
    const int32_t code = GetVarValue(name.Get());
    if (code != ScriptUndefinedVariable) Check(code, name);
    return code == ScriptDone;
  }

  /// The whole value of a variable, in its own case. The name begins with %. On its way the value
  /// passes through the variable ORVANE.PIECE, which no script can read.
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

}  // namespace orvane

#endif
