#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "common/virtual_card.h"

// The virtual card in a slot of the virtual reader of vsmartcard-vpcd. The reader waits for its
// cards on a port of this machine; while a card is in, a thread of its own answers for it.
class VpcdCard {
 public:
  static constexpr uint16_t kFirstSlotPort = 35963;

  ~VpcdCard() { Pull(); }

  // Puts the card in, which is out. False if the reader does not take it within some seconds.
  bool Insert();
  // Takes the card out, if it is in. The reader notices a little later.
  void Pull();

  std::string Atr() const;

 private:
  void Serve();
  bool ReceiveAll(std::span<uint8_t> octets);
  bool Send(const std::vector<uint8_t>& answer);

  simulator::VirtualCard card_;
  int socket_ = -1;
  std::thread thread_;
};
