// What the two functions that throw hand to a host, with the library as it is shipped: the system's
// functions fail where the library calls them.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "orvane.h"
#include "support/windows/replaced_import.h"

namespace {

using support::ReplacedImport;
using Convert = decltype(ASCII2UTF_8)*;

DWORD error = 0;  // why the replaced function fails

int WINAPI NothingToWide(UINT, DWORD, const char*, int, wchar_t*, int) {
  SetLastError(error);
  return 0;
}

int WINAPI NothingFromWide(UINT, DWORD, const wchar_t*, int, char*, int, const char*, BOOL*) {
  SetLastError(error);
  return 0;
}

// Announces more than it then gives.
int WINAPI LessFromWide(UINT page, DWORD flags, const wchar_t* wide, int units, char* out, int room,
                        const char*, BOOL*) {
  const int count = WideCharToMultiByte(page, flags, wide, units, out, room, nullptr, nullptr);
  return room == 0 ? count + 1 : count;
}

struct Row {
  const char* function;
  void* replacement;
  DWORD error;
  const char* ansiToUtf8;
  const char* utf8ToOem;
};

TEST(Exceptions, AreCaughtByTheirTypeInAHostOfTheSameCompiler) {
  constexpr char kNoTranslation[] = "Invalid UTF-8 sequence.", kError[] = "Error in conversion.",
                 kCountsDiffer[] = "La falla!";
  const auto toWide = reinterpret_cast<void*>(NothingToWide);
  const auto fromWide = reinterpret_cast<void*>(NothingFromWide);
  const Row rows[] = {
      {"MultiByteToWideChar", toWide, ERROR_NO_UNICODE_TRANSLATION, kNoTranslation, kNoTranslation},
      {"MultiByteToWideChar", toWide, ERROR_INVALID_PARAMETER, kError, kError},
      {"WideCharToMultiByte", fromWide, ERROR_NO_UNICODE_TRANSLATION, kError, kNoTranslation},
      {"WideCharToMultiByte", fromWide, ERROR_INVALID_PARAMETER, kError, kError},
      {"WideCharToMultiByte", reinterpret_cast<void*>(LessFromWide), 0, kCountsDiffer,
       kCountsDiffer}};
  for (const Row& row : rows) {
    error = row.error;
    const ReplacedImport replaced("orvane.dll", row.function, row.replacement);
    // A function of a DLL may have two addresses in its host: it is not known again by the pointer.
    const std::pair<Convert, const char*> calls[] = {{ASCII2UTF_8, row.ansiToUtf8},
                                                     {UTF_82ASCII, row.utf8ToOem}};
    for (const auto& [convert, expected] : calls) {
      std::string out(16, '\x55');
      try {
        convert("text", out.data());
        ADD_FAILURE() << row.function << ' ' << row.error;
      } catch (const std::runtime_error& thrown) {
        EXPECT_STREQ(thrown.what(), expected) << row.function << ' ' << row.error;
      }
      EXPECT_EQ(out, std::string(16, '\x55'));
    }
  }
}

TEST(Exceptions, TellOfMemoryThatRanOut) {
  const std::string text(1 << 20, 'a');
  std::string out(text.size(), '\x55');
  {
    // Large areas alone: what the compiler's runtime takes for itself is small.
    const ReplacedImport replaced(
        "orvane.dll", "malloc",
        +[](std::size_t size) -> void* { return size < 1 << 20 ? std::malloc(size) : nullptr; });
    for (const Convert convert : {ASCII2UTF_8, UTF_82ASCII}) {
      EXPECT_THROW(convert(text.c_str(), out.data()), std::bad_alloc);
      EXPECT_EQ(out, std::string(text.size(), '\x55'));
    }
  }
  UTF_82ASCII(text.c_str(), out.data());
  EXPECT_EQ(out, text);
}

}  // namespace
