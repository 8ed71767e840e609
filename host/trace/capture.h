#pragma once

#include <string>

#include "host/trace/recorded.h"

namespace host {

// A recording as a capture file (pcap) that Wireshark and tshark take apart as ISO/IEC 7816: each
// command, each response and each ATR is a packet. Hidden digits are 0.
std::string MakeCapture(const Recording& recording);

}  // namespace host
