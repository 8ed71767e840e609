#include "winscard_session.h"

#include "common/module.h"

namespace winscard {

// A context uses all 64 bits, so that one cut to 32 bits is not recognised.
SCARDCONTEXT Session::Establish() {
  const SCARDCONTEXT context = 0xCD01000000000000 + ++established_;
  contexts_.insert(context);
  return context;
}

bool Session::Release(SCARDCONTEXT context) {
  std::erase_if(connections_, [&](const auto& entry) { return entry.second.context == context; });
  return contexts_.erase(context) != 0;
}

// A handle has 32 bits, sign-extended. Every second one is negative, so that a caller that extends
// it in another way gets errors.
SCARDHANDLE Session::NextHandle() {
  const uint32_t sign = ++connected_ % 2 == 1 ? 0x80000000 : 0;
  const auto value = static_cast<int32_t>(sign | 0x6A010000 | (connected_ & 0xFFFF));
  return static_cast<SCARDHANDLE>(int64_t{value});
}

void Session::Connect(SCARDHANDLE handle, SCARDCONTEXT context, DWORD protocol) {
  connections_[handle] = {context, protocol, simulator::CardMovements()};
}

void Session::ForgetConnections() {
  connections_.clear();
  connected_ = 0;
}

LONG Session::Check(SCARDHANDLE handle) const {
  const auto found = connections_.find(handle);
  if (found == connections_.end()) return ERROR_INVALID_HANDLE;
  const bool same = found->second.cardMovements == simulator::CardMovements();
  return same && simulator::CardPresent() ? SCARD_S_SUCCESS : SCARD_W_REMOVED_CARD;
}

DWORD Session::Protocol(SCARDHANDLE handle) const {
  const auto found = connections_.find(handle);
  return found == connections_.end() ? 0 : found->second.protocol;
}

uint8_t* Session::Allocate(size_t size) {
  auto memory = std::make_unique<uint8_t[]>(size);
  uint8_t* const start = memory.get();
  memory_[start] = std::move(memory);
  return start;
}

bool Session::Free(const void* memory) { return memory_.erase(memory) != 0; }

}  // namespace winscard
