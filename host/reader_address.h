#pragma once

#include <cstddef>
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
// The kind for a number or a short name, such as pcsc, in either case; none for any other text.
std::optional<int32_t> FindKind(std::string_view text);
Failure NoSuchKind(std::string_view text);  // it names the kinds that exist
// The maker's library of the kind, without "lib" and ending; empty if there is none.
std::string_view KindLibrary(int32_t kind);
Lookup KindLookup(int32_t kind);             // of that library
std::string_view KindExample(int32_t kind);  // a reader's name

// The meaning of the text of --reader and @OPENREADER: [KIND:]PORT or [KIND:]NAME. A port is only
// digits. The part before the first colon is a kind only if it is only digits, so BSIT:2 and
// 127.0.0.1:8000 are names.
struct ReaderAddress {
  int32_t kind;
  std::optional<int32_t> port;
  std::string name;  // empty if there is a port

  // The address in the form for users.
  std::string Shown() const;
};

// True if the kind's driver can read the name.
bool FitsKind(const ReaderAddress& address);

// The port that the kind's driver opens: the address's own, or the number in its name. None if it
// opens the name itself.
std::optional<int32_t> OpenedPort(const ReaderAddress& address);

// Throws Failure (kReaderFault) for an empty name, an unknown kind, or a port that is no 32-bit
// number.
ReaderAddress ReadReaderAddress(std::string_view text, int32_t defaultKind);

constexpr size_t kReaders = 16;  // open side by side, numbered from 0

// The meaning of the text of @setreader. Throws Failure (kReaderFault) for what is no such number.
size_t ReadReaderNumber(std::string_view text);

// The listed name that is meant: the equal one; else the only one that differs only in blanks,
// since the language removes blanks from a literal; else the name itself.
std::string MatchReaderName(const std::string& name, const std::vector<std::string>& listed);

}  // namespace host
