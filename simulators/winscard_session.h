#pragma once

// What the simulated resource manager has handed out: contexts, card handles and memory.

#include <map>
#include <memory>
#include <set>

#include "winscard_types.h"

namespace winscard {

class Session {
 public:
  Context Establish();
  bool Release(Context context);  // and every handle that was connected in it
  bool Knows(Context context) const { return contexts_.contains(context); }

  Handle NextHandle();
  void Connect(Handle handle, Context context, Dword protocol);
  bool Disconnect(Handle handle) { return connections_.erase(handle) != 0; }
  void ForgetConnections();  // the next handle is the first one again

  // kSuccess, kInvalidHandle, or kRemovedCard if the card has moved since the handle was connected.
  uint32_t Check(Handle handle) const;

  // The active protocol of a handle; 0 if there is no such handle.
  Dword Protocol(Handle handle) const;

  // Memory that stays until Free, or to the end of the session.
  uint8_t* Allocate(size_t size);
  bool Free(const void* memory);

 private:
  struct Connection {
    Context context;
    Dword protocol;
    uint32_t cardMovements;
  };
  std::set<Context> contexts_;
  std::map<Handle, Connection> connections_;
  std::map<const void*, std::unique_ptr<uint8_t[]>> memory_;
  uint32_t established_ = 0;
  uint32_t connected_ = 0;
};

}  // namespace winscard
