#include "common/card_files.h"

#include "common/tlv.h"

namespace simulator {
namespace {

const Octets kApplicationName = FromHex("F0 4F5256414E45 01");
constexpr std::string_view kLabel = "ORVANE PAY";
constexpr size_t kNotesSize = 64;
constexpr size_t kLimitsSize = 16;

Octets& CurrentNumber() {
  static Octets number = FromHex(kFirstSerialNumber);
  return number;
}

ElementaryFile Directory() {
  const Octets entry = Tlv(0x61, {Tlv(0x4F, kApplicationName), Tlv(0x50, FromText(kLabel))});
  return {0x2F00, 30, {entry}, {}};
}

ElementaryFile GlobalData() { return {0x2F02, 2, {}, Tlv(0x5A, SerialNumber())}; }

ElementaryFile CardholderRecords() {
  const Octets track = Tlv(0x70, {Tlv(0x57, "9999000000000004 D 3112 201 00000 F"),
                                  Tlv(0x5F20, FromText("SAMPLE/ORVANE"))});
  const Octets account = Tlv(0x70, {Tlv(0x5A, "9999000000000004"), Tlv(0x5F24, "311231"),
                                    Tlv(0x5F25, "260101"), Tlv(0x5F28, "0999"), Tlv(0x5F34, "01")});
  return {0x0101, 1, {track, account}, {}};
}

ElementaryFile RiskRecords() {
  const Octets objectLists =
      Tlv(0x70, {Tlv(0x8C, "9F0206 9F0306 9F1A02 9505 5F2A02 9A03 9C01 9F3704"),
                 Tlv(0x8D, "8A02 9F0206 9F0306 9F1A02 9505 5F2A02 9A03 9C01 9F3704")});
  const Octets verification = Tlv(
      0x70, {Tlv(0x8E, "00000000 00000000 4103 1F00"), Tlv(0x9F07, "FF00"), Tlv(0x9F08, "0001")});
  return {0x0102, 2, {objectLists, verification}, {}};
}

DedicatedFile MasterFile() {
  const Octets information = Tlv(0x6F, {Tlv(0x82, "38"), Tlv(0x83, "3F00")});
  return {kMasterFile, {}, information, {}, {Directory(), GlobalData()}};
}

DedicatedFile PaymentApplication() {
  const Octets proprietary = Tlv(0xA5, {Tlv(0x50, FromText(kLabel)), Tlv(0x87, "01"),
                                        Tlv(0x5F2D, FromText("en")), Tlv(0x9F38, "9F1A02 5F2A02")});
  const Octets information = Tlv(0x6F, {Tlv(0x84, kApplicationName), proprietary});
  const Octets options = Tlv(0x77, {Tlv(0x82, "1000"), Tlv(0x94, "08010201 10010200")});
  const ElementaryFile notes{0x0105, 5, {}, Octets(kNotesSize), Writer::kCardholder};
  const ElementaryFile limits{0x0106, 6, {}, Octets(kLimitsSize), Writer::kIssuer};
  return {0x1001,
          kApplicationName,
          information,
          options,
          {CardholderRecords(), RiskRecords(), notes, limits}};
}

}  // namespace

Octets ElementaryFile::ControlInformation() const {
  const uint8_t descriptor = IsTransparent() ? 0x01 : 0x04;
  const Octets fileIdentifier = {static_cast<uint8_t>(identifier >> 8),
                                 static_cast<uint8_t>(identifier)};
  const Octets description = Tlv(0x82, Octets{descriptor});
  const Octets names = Tlv(0x83, fileIdentifier);
  const Octets shortName = Tlv(0x88, Octets{static_cast<uint8_t>(shortIdentifier << 3)});
  if (!IsTransparent()) return Tlv(0x6F, {description, names, shortName});
  const Octets size = {static_cast<uint8_t>(content.size() >> 8),
                       static_cast<uint8_t>(content.size())};
  return Tlv(0x6F, {Tlv(0x80, size), description, names, shortName});
}

const Octets& SerialNumber() { return CurrentNumber(); }

void SetSerialNumber(std::string_view digits) { CurrentNumber() = FromHex(digits); }

const Octets& AuthenticationMasterKey() {
  static const Octets key = FromHex("404142434445464748494A4B4C4D4E4F");
  return key;
}

const Octets& MacMasterKey() {
  static const Octets key = FromHex("505152535455565758595A5B5C5D5E5F");
  return key;
}

std::vector<DedicatedFile> NewFiles() { return {MasterFile(), PaymentApplication()}; }

}  // namespace simulator
