#include "host/response.h"

#include <orvane.hpp>
#include <sstream>

#include "host/reader_address.h"
#include "host/status_word.h"
#include "host/text.h"

namespace host {
namespace {

using orvane::HasStatusWord;
using orvane::LongestCommand;
using orvane::MostData;

std::string AskForLess(int32_t kind) {
  std::ostringstream text;
  text << "more than " << MostData(kind)
       << " octets with a status word can't be had at once: ask for parts, with Le " << std::hex
       << std::uppercase << MostData(kind) << " at most";
  return text.str();
}

}  // namespace

std::optional<Response> ReadResponse(int32_t kind, int32_t result, std::string_view text) {
  const std::optional<orvane::ResponseParts> parts = orvane::ReadResponse(kind, result, text);
  if (!parts) return std::nullopt;
  return Response{std::string(parts->data), std::string(parts->statusWord), !parts->ok};
}

std::string TooLong(const CardCommand& command, int32_t kind) {
  if (command.Octets() <= LongestCommand(kind)) return "";
  return "the command has " + Counted(command.Octets(), "byte") + ", and readers of the kind " +
         std::string(KindName(kind)) + " take " + std::to_string(LongestCommand(kind)) +
         " at most; nothing sent";
}

std::string TooMuchAsked(const CardCommand& command, int32_t kind) {
  if (!HasStatusWord(kind) || command.expectedData <= MostData(kind)) return "";
  return "it asks for " + Counted(command.expectedData, "octet") + "; " + AskForLess(kind);
}

std::string NoteOn(const Response& response, const CardCommand& command, int32_t kind) {
  if (!response.failed) return "";
  if (response.statusWord.empty()) {
    return "the answer begins with 9000 and does not end so: its status word is not handed over";
  }
  if (response.statusWord == "0000" &&
      (kind == ReaderKindTyUsb || kind == ReaderKindTyCom || kind == ReaderKindWd)) {
    return "the reader's library replied nothing: the status word is not handed over";
  }
  const std::optional<size_t> offered = DataOffered(response.statusWord);
  if (offered > MostData(kind)) return AskForLess(kind);
  if (response.statusWord.starts_with("61")) {
    return "they were asked for once (GET RESPONSE), and did not come with 9000";
  }
  if (!LooksLikeStatusWord(response.statusWord)) {
    return "the first two octets of the answer: its status word is not handed over";
  }
  return MayBringData(command)
             ? "or the first two octets of data, whose status word is not handed over"
             : "";
}

}  // namespace host
