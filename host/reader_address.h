#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/failure.h"
#include "host/platform.h"

namespace host {

// The kinds of reader, in the order of their numbers.
const std::vector<int32_t>& ReaderKinds();
std::string_view KindName(int32_t kind);  // empty for a number that is no kind
// The kind of a number or of a short name, such as pcsc, in either case; none for another text.
std::optional<int32_t> FindKind(std::string_view text);
Failure NoSuchKind(std::string_view text);  // it names those that there are
// The library behind it, without lib and ending; empty if there is none.
std::string_view KindLibrary(int32_t kind);
Lookup KindLookup(int32_t kind);             // of that library
std::string_view KindExample(int32_t kind);  // a reader's name

// What the text of --reader and of @OPENREADER means: [KIND:]PORT or [KIND:]NAME. A port is digits
// alone. Whatever stands before the first colon is a kind only if it is digits alone, so that
// BSIT:2 and 127.0.0.1:8000 are names.
struct ReaderAddress {
  int32_t kind;
  std::optional<int32_t> port;
  std::string name;  // empty if there is a port

  // As a reader is shown to a user.
  std::string Shown() const;
};

// True if the driver of the kind can read the name.
bool FitsKind(const ReaderAddress& address);

// Throws Failure (kReaderFault) on an empty name, a kind that does not exist or a port that is no
// 32-bit number.
ReaderAddress ReadReaderAddress(std::string_view text, int32_t defaultKind);

// The listed name that is meant: the same one, else the only one that differs in blanks alone (the
// language takes the blanks out of a literal), else the name as it stands.
std::string MatchReaderName(const std::string& name, const std::vector<std::string>& listed);

}  // namespace host
