#pragma once

#include <string>

#include "host/trace/recorded.h"

namespace host {

// A recording as a capture file (pcap), which Wireshark and tshark dissect as ISO/IEC 7816. Each
// command, response and ATR is a packet. Hidden digits are 0.
std::string MakeCapture(const Recording& recording);

}  // namespace host
