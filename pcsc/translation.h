#pragma once

#include <bit>
#include <cstdint>
#include <new>

#include "pcsc_lite.h"

// Translates between the widths and numbers of Windows and pcsc-lite. Failure codes are the same 32
// bits on both sides.
namespace pcsc {

// Lends a number in the caller's memory to pcsc-lite as a wider one, for one call. A null pointer
// of the caller stays null.
class WideNumber {
 public:
  explicit WideNumber(uint32_t* number) : number_(number), wide_(number ? *number : 0) {}
  ~WideNumber() {
    if (number_ != nullptr) *number_ = static_cast<uint32_t>(wide_);
  }
  WideNumber(const WideNumber&) = delete;
  WideNumber& operator=(const WideNumber&) = delete;

  operator DWORD*() { return number_ != nullptr ? &wide_ : nullptr; }

 protected:
  uint32_t* const number_;
  DWORD wide_;
};

// The length of an area. pcsc-lite refuses an area larger than it can fill, so a larger one is
// passed with the largest length that it takes.
class WideLength : public WideNumber {
 public:
  explicit WideLength(uint32_t* length, DWORD most = MAX_BUFFER_SIZE_EXTENDED)
      : WideNumber(length) {
    if (wide_ == winscard::SCARD_AUTOALLOCATE) {
      wide_ = kLiteAutoAllocate;
    } else if (wide_ > most) {
      wide_ = most;
    }
  }
};

inline DWORD ToLiteProtocols(uint32_t protocols) {
  return (protocols & (SCARD_PROTOCOL_T0 | SCARD_PROTOCOL_T1)) |
         ((protocols & winscard::SCARD_PROTOCOL_RAW) != 0 ? kLiteProtocolRaw : 0);
}

inline uint32_t ToWindowsProtocol(DWORD protocol) {
  return protocol == kLiteProtocolRaw ? winscard::SCARD_PROTOCOL_RAW
                                      : static_cast<uint32_t>(protocol);
}

// On Windows the code of function n is device type 0x31 in the upper half and n from bit 2 on.
inline DWORD ToLiteControlCode(uint32_t code) {
  const bool windowsForm = (code & 0xFFFF0003) == 0x00310000;
  return windowsForm ? SCARD_CTL_CODE((code & 0xFFFF) >> 2) : DWORD{code};
}

// Windows numbers a card's states from "unknown" to "specific". pcsc-lite sets one bit for each
// state that holds, and counts events in the upper half.
inline uint32_t ToWindowsCardState(DWORD state) {
  const auto reached = static_cast<uint32_t>(std::bit_width(state & 0x7F));
  return reached == 0 ? 0 : reached - 1;
}

// Runs a call that needs pcsc-lite. Gives its code in the caller's width.
template <typename Call>
int32_t WithPcscLite(Call call) noexcept try {
  const PcscLite* lite = LoadPcscLite();
  return static_cast<int32_t>(lite != nullptr ? call(*lite) : SCARD_E_NO_SERVICE);
} catch (const std::bad_alloc&) {
  return static_cast<int32_t>(SCARD_E_NO_MEMORY);
}

}  // namespace pcsc
