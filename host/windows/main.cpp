#include "host/main.h"

#include <windows.h>

#include "host/platform.h"
#include "host/windows/wide.h"

int wmain(int count, wchar_t** arguments) {
  // Both remove the current folder from the search for modules. The first works for a folder of any
  // length, the second works in Wine too.
  SetDllDirectoryW(L"");
  SetDllDirectoryW(host::ProgramFolder().c_str());
  std::vector<std::string> texts;
  for (int at = 1; at < count; ++at) {
    const std::string text = host::FromWide(arguments[at]);
    texts.push_back(text == "/?" ? "--help" : text);
  }
  return host::Main(std::move(texts));
}
