#include "readers/status_word_exchange.h"

#include <algorithm>

#include "readers/reader_tool_base.h"

namespace orvane {
namespace {

constexpr std::uint16_t kSuccess = 0x9000;
constexpr std::uint8_t kMoreData = 0x61;

bool HasStatusWord(const Reply& reply) { return reply.length >= 2; }

std::uint16_t StatusWordAtEnd(const Reply& reply) {
  return static_cast<std::uint16_t>(reply.octets[reply.length - 2] << 8 |
                                    reply.octets[reply.length - 1]);
}

void Copy(const Reply& reply, std::uint32_t length, std::uint8_t* resp, std::uint32_t* respLen) {
  if (resp == nullptr) return;
  std::copy_n(reply.octets.begin(), length, resp);
  *respLen = length;
}

std::uint32_t GivenLength(const ExchangeRules& rules, const Reply& reply) {
  const bool strips = rules.copy == CopyRule::kStrip && reply.length > 2;
  return strips ? reply.length - 2 : reply.length;
}

}  // namespace

bool CReaderToolBase::Exchange(const std::uint8_t*, std::uint32_t, Reply&) { return false; }

bool CReaderToolBase::ExchangeOnce(const ExchangeRules& rules, const std::uint8_t* command,
                                   std::uint32_t length, Reply& reply) {
  reply = {};
  if (!Exchange(command, length, reply) || reply.length > kReplySize) return false;
  if (rules.source == StatusWordSource::kReplyEnd) {
    if (!HasStatusWord(reply)) return false;
    reply.statusWord = StatusWordAtEnd(reply);
  }
  m_wStatus = reply.statusWord;
  return true;
}

std::int32_t CReaderToolBase::ExchangeWithStatusWord(const ExchangeRules& rules,
                                                     const std::uint8_t* cmd, std::uint32_t cmdLen,
                                                     std::uint8_t* resp, std::uint32_t* respLen) {
  if (resp != nullptr && respLen == nullptr) return 0;
  Reply reply;
  if (!ExchangeOnce(rules, cmd, cmdLen, reply)) return 0;
  if (m_wStatus == kSuccess) {
    Copy(reply, GivenLength(rules, reply), resp, respLen);
    return 1;
  }
  Copy(reply, 2, resp, respLen);
  if (m_wStatus >> 8 != kMoreData) return 0;
  if (resp == nullptr) return rules.moreDataUnwanted;

  const std::uint8_t getResponse[] = {0x00, 0xC0, 0x00, 0x00,
                                      static_cast<std::uint8_t>(m_wStatus & 0xFF)};
  if (!ExchangeOnce(rules, getResponse, sizeof getResponse, reply)) return 0;
  if (m_wStatus == kSuccess && rules.confirmsSecondEnd) {
    if (!HasStatusWord(reply)) return 0;
    m_wStatus = StatusWordAtEnd(reply);
  }
  if (m_wStatus != kSuccess) {
    if (rules.showsSecondStatus) Copy(reply, 2, resp, respLen);
    return 0;
  }
  Copy(reply, GivenLength(rules, reply), resp, respLen);
  return 1;
}

}  // namespace orvane
