#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "pcsc_lite.h"

namespace pcsc {

// One connection to a reader. Its pcsc-lite handle is 0 while there is none: before it is
// connected, and after its card was removed.
struct Card {
  Card(SCARDCONTEXT context, const char* reader) : context(context), reader(reader) {}

  const SCARDCONTEXT context;
  const std::string reader;
  std::atomic<SCARDHANDLE> handle = 0;
  std::mutex connecting;  // held while a caller connects or disconnects
};

// The connections under the numbers that callers know as card handles. A number lies between 1 and
// 0x7FFFFFFF, so that it survives a caller that keeps 32 bits of it and extends their sign. All
// functions may be called from any thread.
winscard::SCARDHANDLE AddCard(std::shared_ptr<Card> card);
std::shared_ptr<Card> FindCard(winscard::SCARDHANDLE number);  // null if there is none
void RemoveCard(winscard::SCARDHANDLE number);
void RemoveCardsOf(SCARDCONTEXT context);

}  // namespace pcsc
