#include "host/answer.h"

#include <orvane.h>

namespace host {
namespace {

constexpr std::string_view kSuccess = "9000";

bool KeepsStatusWord(int32_t kind) {
  return kind == ReaderKindWd || kind == ReaderKindS5009 || kind == ReaderKindS5009Ats;
}

bool StripsStatusWord(int32_t kind) {
  return kind == ReaderKindPcsc || kind == ReaderKindD8 || kind == ReaderKindBsit;
}

}  // namespace

bool HasStatusWord(int32_t kind) {
  return kind != ReaderKindFm8201 && kind != ReaderKindTcp && kind != ReaderKindIcr;
}

std::optional<Answer> ReadAnswer(int32_t kind, int32_t result, std::string_view text) {
  const std::string whole(text);
  if (!HasStatusWord(kind)) {
    return result != 0 ? std::optional(Answer{whole, ""}) : std::nullopt;
  }
  if (result == 0) return text.empty() ? std::nullopt : std::optional(Answer{"", whole});
  if (KeepsStatusWord(kind) && text.ends_with(kSuccess)) {
    return Answer{whole.substr(0, whole.size() - kSuccess.size()), std::string(kSuccess)};
  }
  // Success with nothing but 9000 is an answer without data here, not two bytes of data.
  if (StripsStatusWord(kind) && text == kSuccess) return Answer{"", whole};
  return Answer{whole, std::string(kSuccess)};
}

}  // namespace host
