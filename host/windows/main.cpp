#include "host/main.h"

#include "host/windows/wide.h"

int wmain(int count, wchar_t** arguments) {
  std::vector<std::string> texts;
  for (int at = 1; at < count; ++at) {
    const std::string text = host::FromWide(arguments[at]);
    texts.push_back(text == "/?" ? "--help" : text);
  }
  return host::Main(std::move(texts));
}
