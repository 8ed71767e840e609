#pragma once

// What the simulated resource manager has given out: contexts, card handles and memory.

#include <map>
#include <memory>
#include <set>

#include "src/readers/winscard_types.h"

namespace winscard {

class Session {
 public:
  SCARDCONTEXT Establish();
  bool Release(SCARDCONTEXT context);  // and every handle of this context
  bool Knows(SCARDCONTEXT context) const { return contexts_.contains(context); }

  SCARDHANDLE NextHandle();
  void Connect(SCARDHANDLE handle, SCARDCONTEXT context, DWORD protocol);
  bool Disconnect(SCARDHANDLE handle) { return connections_.erase(handle) != 0; }
  void ForgetConnections();  // the next handle is the first one again

  // SCARD_S_SUCCESS, ERROR_INVALID_HANDLE, or SCARD_W_REMOVED_CARD if the card was moved since the
  // handle was connected.
  LONG Check(SCARDHANDLE handle) const;

  // The active protocol of a handle; 0 if there is no such handle.
  DWORD Protocol(SCARDHANDLE handle) const;

  // Allocates memory that stays until Free or the end of the session.
  uint8_t* Allocate(size_t size);
  bool Free(const void* memory);

 private:
  struct Connection {
    SCARDCONTEXT context;
    DWORD protocol;
    uint32_t cardMovements;
  };
  std::set<SCARDCONTEXT> contexts_;
  std::map<SCARDHANDLE, Connection> connections_;
  std::map<const void*, std::unique_ptr<uint8_t[]>> memory_;
  uint32_t established_ = 0;
  uint32_t connected_ = 0;
};

}  // namespace winscard
