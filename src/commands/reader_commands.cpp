#include "commands/builtin.h"

namespace orvane {
namespace {

// Does not look at what stands between the parentheses.
bool Mark(CommandCall& call, StatementKind kind) {
  call.engine.statementKind = kind;
  call.position += 2;
  return true;
}

bool MarkAndPass(CommandCall& call, StatementKind kind) {
  call.engine.statementKind = kind;
  std::string argument;
  if (!call.Read(argument)) return false;
  call.Close();
  call.Give(argument);
  return true;
}

}  // namespace

bool ResetRequest(CommandCall& call) { return Mark(call, KindReset); }

bool StopRequest(CommandCall& call) { return Mark(call, KindStop); }

bool SetReaderRequest(CommandCall& call) { return MarkAndPass(call, KindSetReader); }

bool SetSlotRequest(CommandCall& call) { return MarkAndPass(call, KindSetSlot); }

bool OpenReaderRequest(CommandCall& call) { return MarkAndPass(call, KindOpenReader); }

}  // namespace orvane
