#include "cards.h"

#include <map>
#include <mutex>
#include <utility>

namespace pcsc {
namespace {

std::mutex mutex;
std::map<winscard::SCARDHANDLE, std::shared_ptr<Card>> cards;
winscard::SCARDHANDLE lastNumber = 0;

}  // namespace

winscard::SCARDHANDLE AddCard(std::shared_ptr<Card> card) {
  const std::lock_guard lock(mutex);
  do {
    lastNumber = lastNumber % 0x7FFFFFFF + 1;
  } while (cards.contains(lastNumber));
  cards.emplace(lastNumber, std::move(card));
  return lastNumber;
}

std::shared_ptr<Card> FindCard(winscard::SCARDHANDLE number) {
  const std::lock_guard lock(mutex);
  const auto found = cards.find(number);
  return found == cards.end() ? nullptr : found->second;
}

void RemoveCard(winscard::SCARDHANDLE number) {
  const std::lock_guard lock(mutex);
  cards.erase(number);
}

void RemoveCardsOf(SCARDCONTEXT context) {
  const std::lock_guard lock(mutex);
  std::erase_if(cards, [&](const auto& entry) { return entry.second->context == context; });
}

}  // namespace pcsc
