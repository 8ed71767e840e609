#include "host/response.h"

#include <orvane.h>

#include <sstream>

#include "host/reader_address.h"
#include "host/status_word.h"
#include "host/text.h"

namespace host {
namespace {

constexpr std::string_view kSuccess = "9000";

bool KeepsStatusWord(int32_t kind) {
  return kind == ReaderKindWd || kind == ReaderKindS5009 || kind == ReaderKindS5009Ats;
}

bool StripsStatusWord(int32_t kind) {
  return kind == ReaderKindPcsc || kind == ReaderKindD8 || kind == ReaderKindBsit;
}

std::string AskForLess(int32_t kind) {
  std::ostringstream text;
  text << "more than " << MostData(kind)
       << " octets with a status word can't be had at once: ask for "
       << "parts, with Le " << std::hex << std::uppercase << MostData(kind) << " at most";
  return text.str();
}

}  // namespace

bool HasStatusWord(int32_t kind) {
  return kind != ReaderKindFm8201 && kind != ReaderKindTcp && kind != ReaderKindIcr;
}

std::optional<Response> ReadResponse(int32_t kind, int32_t result, std::string_view text) {
  const std::string whole(text);
  if (!HasStatusWord(kind)) {
    return result != 0 ? std::optional(Response{whole, ""}) : std::nullopt;
  }
  if (result == 0) {
    if (text.empty()) return std::nullopt;
    // A response that ends in 9000 does not fail: this one begins so, and must not look like
    // success.
    return Response{"", text == kSuccess ? "" : whole, true};
  }
  if (KeepsStatusWord(kind) && text.ends_with(kSuccess)) {
    return Response{whole.substr(0, whole.size() - kSuccess.size()), std::string(kSuccess)};
  }
  // Success with nothing but 9000 is a response without data here, not two bytes of data.
  if (StripsStatusWord(kind) && text == kSuccess) return Response{"", whole};
  return Response{whole, std::string(kSuccess)};
}

size_t LongestCommand(int32_t kind) {
  if (kind == ReaderKindD8 || kind == ReaderKindWd) return 255;
  return kind == ReaderKindS5009 || kind == ReaderKindS5009Ats ? 133 : kMostCommandOctets;
}

std::string TooLong(const CardCommand& command, int32_t kind) {
  if (command.Octets() <= LongestCommand(kind)) return "";
  return "the command has " + Counted(command.Octets(), "byte") + ", and readers of the kind " +
         std::string(KindName(kind)) + " take " + std::to_string(LongestCommand(kind)) +
         " at most; nothing sent";
}

size_t MostData(int32_t kind) {
  if (kind == ReaderKindS5009 || kind == ReaderKindS5009Ats) return 126;
  return kind == ReaderKindTyUsb || kind == ReaderKindTyCom ? 256 : 254;
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
