#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "host/command.h"
#include "host/response.h"

namespace host {

// Shows what happens, for people who know cards. The caller says what must be hidden.
class Trace {
 public:
  struct Settings {
    bool colour = false;  // use colour sequences
    bool tlv = false;     // show the elements of BER-TLV data in answers
  };

  // A stream without a buffer shows nothing. Until Flush, output may wait in the stream.
  Trace(std::ostream& out, Settings settings) : out_(out), settings_(settings) {}
  virtual ~Trace() = default;
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;

  virtual void Reader(const std::string& reader, bool simulated);
  void Heading(std::string_view text);
  // Shows the line number too, if there is one.
  virtual void Statement(std::optional<size_t> line, std::string_view statement);
  virtual void Value(std::string_view value);
  virtual void Atr(std::string_view digits);  // shows nothing if the reader has none
  void Command(const CardCommand& command, bool hideData);
  // The note appears below the status word.
  void Response(const host::Response& response, std::string_view note);
  // Shows whether an expectation held, and what it compared.
  virtual void Judgement(std::string_view text, bool held);
  void Summary(size_t commands, size_t expectations, bool done);  // flushes
  void Flush() { out_.flush(); }

 private:
  enum class Colour { kPlain, kBold, kDim, kGreen, kYellow, kRed, kCyan, kAlarm };

  std::string Paint(Colour colour, std::string_view text) const;
  void Detail(Colour colour, std::string_view label, std::string_view text);
  void Rows(Colour colour, std::string_view label, std::string_view digits);
  void Elements(std::string_view digits);

  std::ostream& out_;
  Settings settings_;
};

}  // namespace host
