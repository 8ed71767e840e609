#include "host/trace/recorded.h"

#include <algorithm>

namespace host {

CardCommand CommandOf(const RecordedEvent& exchange) {
  CardCommand command;
  command.digits = exchange.command;
  std::replace(command.digits.begin(), command.digits.end(), '*', '0');
  const size_t octets = command.Octets();
  if (octets >= 4) {
    static_cast<recordings::CommandParts&>(command) = recordings::FindParts(command.digits);
  } else {
    command.framing = Framing::kRaw;
    command.dataBegin = command.dataEnd = octets;
  }
  return command;
}

bool HidesData(const RecordedEvent& exchange, bool showSecrets) {
  const bool hidden = exchange.command.find('*') != exchange.command.npos;
  return hidden || (!showSecrets && CarriesSecret(exchange.command));
}

}  // namespace host
