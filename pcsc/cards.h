#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "pcsc_lite.h"

namespace pcsc {

// One connection to a reader. Its pcsc-lite handle is 0 before the connection is made and after the
// card was removed.
struct Card {
  Card(SCARDCONTEXT context, const char* reader) : context(context), reader(reader) {}

  const SCARDCONTEXT context;
  const std::string reader;
  std::atomic<SCARDHANDLE> handle = 0;
  std::mutex connecting;  // held while a caller connects or disconnects
};

// The connections, by the numbers that callers have as card handles. A number is between 1 and
// 0x7FFFFFFF, so it survives a caller that keeps 32 bits and extends their sign. Any thread may
// call these functions.
winscard::SCARDHANDLE AddCard(std::shared_ptr<Card> card);
std::shared_ptr<Card> FindCard(winscard::SCARDHANDLE number);  // null if there is none
void RemoveCard(winscard::SCARDHANDLE number);
void RemoveCardsOf(SCARDCONTEXT context);

}  // namespace pcsc
