#include <algorithm>

#include "readers/reader_tool_base.h"

namespace orvane {
namespace {

constexpr std::uint16_t kSuccess = 0x9000;
constexpr std::uint8_t kMoreData = 0x61;

bool HasStatusWord(const Response& response) { return response.length >= 2; }

std::uint16_t StatusWordAtEnd(const Response& response) {
  return static_cast<std::uint16_t>(response.octets[response.length - 2] << 8 |
                                    response.octets[response.length - 1]);
}

void Copy(const Response& response, std::uint32_t length, std::uint8_t* resp,
          std::uint32_t* respLen) {
  if (resp == nullptr) return;
  std::copy_n(response.octets.begin(), length, resp);
  *respLen = length;
}

std::uint32_t GivenLength(const ExchangeRules& rules, const Response& response) {
  const bool strips = rules.copy == CopyRule::kStrip && response.length > 2;
  return strips ? response.length - 2 : response.length;
}

}  // namespace

bool CReaderToolBase::Exchange(const std::uint8_t*, std::uint32_t, Response&) { return false; }

bool CReaderToolBase::ExchangeOnce(const std::uint8_t* command, std::uint32_t length,
                                   Response& response) {
  response.octets = {};
  response.length = 0;
  response.statusWord = 0;
  if (!Exchange(command, length, response) || response.length > kResponseSize) return false;
  if (m_rules->source == StatusWordSource::kResponseEnd) {
    if (!HasStatusWord(response)) return false;
    response.statusWord = StatusWordAtEnd(response);
  }
  m_wStatus = response.statusWord;
  return true;
}

std::int32_t CReaderToolBase::Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen,
                                       std::uint8_t* resp, std::uint32_t* respLen) {
  if (m_rules == nullptr || cmdLen > m_rules->longestCommand) return 0;
  if (resp != nullptr && respLen == nullptr) return 0;
  const ExchangeRules& rules = *m_rules;
  Response response;
  if (!ExchangeOnce(cmd, cmdLen, response)) return 0;
  if (m_wStatus == kSuccess) {
    Copy(response, GivenLength(rules, response), resp, respLen);
    return 1;
  }
  Copy(response, 2, resp, respLen);
  if (m_wStatus >> 8 != kMoreData) return 0;
  if (resp == nullptr) return rules.moreDataUnwanted;

  const std::uint8_t getResponse[] = {0x00, 0xC0, 0x00, 0x00,
                                      static_cast<std::uint8_t>(m_wStatus & 0xFF)};
  if (!ExchangeOnce(getResponse, sizeof getResponse, response)) return 0;
  if (m_wStatus == kSuccess && rules.confirmsSecondEnd) {
    if (!HasStatusWord(response)) return 0;
    m_wStatus = StatusWordAtEnd(response);
  }
  if (m_wStatus != kSuccess) {
    if (rules.showsSecondStatus) Copy(response, 2, resp, respLen);
    return 0;
  }
  Copy(response, GivenLength(rules, response), resp, respLen);
  return 1;
}

}  // namespace orvane
