#include "commands/reader_commands.h"

namespace orvane {
namespace {

// What stands between the parentheses is not looked at.
bool Mark(Call& call, StatementKind kind) {
  call.engine.statementKind = kind;
  call.position += 2;
  return true;
}

bool MarkAndPass(Call& call, StatementKind kind) {
  call.engine.statementKind = kind;
  std::string argument;
  if (!call.Read(argument)) return false;
  call.Close();
  call.Give(argument);
  return true;
}

}  // namespace

bool ResetRequest(Call& call) { return Mark(call, KindReset); }

bool StopRequest(Call& call) { return Mark(call, KindStop); }

bool SetReaderRequest(Call& call) { return MarkAndPass(call, KindSetReader); }

bool SetSlotRequest(Call& call) { return MarkAndPass(call, KindSetSlot); }

bool OpenReaderRequest(Call& call) { return MarkAndPass(call, KindOpenReader); }

}  // namespace orvane
