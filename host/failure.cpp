#include "host/failure.h"

#include <iostream>
#include <sstream>

#include "host/text.h"

namespace host {

void PrintFailure(const Failure& failure) {
  if (dynamic_cast<const ScriptFailure*>(&failure) == nullptr) std::cerr << "orvane: ";
  std::istringstream message(failure.what());
  for (std::string line; std::getline(message, line);) std::cerr << Printable(line) << '\n';
}

}  // namespace host
