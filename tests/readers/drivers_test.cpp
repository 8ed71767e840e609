#include <chrono>

#include "readers/host_steps.h"

namespace orvane_test {
namespace {

const struct {
  const SimulatedReader& reader;
  const char* steps;
  const char* outcomes;
} kRows[] = {
    // 16 bits of a port go to the library
    {kBsit, "port 1;port 65537;name BSIT:2;name the BSIT:1;close;close;reset;send 00",
     "1 bsit_openHID(0, 0, 0) bsit_SetSlot(0, 0); 1 bsit_openHID(0, 0, 0) bsit_SetSlot(1, 0); "
     "1 bsit_openHID(0, 1, 0) bsit_SetSlot(2, 0); 1 bsit_openHID(0, 0, 0) bsit_SetSlot(3, 0); "
     "1 bsit_CloseHID(3); 1; 0; 0 bsit_SendApdu(-1, 00)"},
    {kBsit, "port 3;port 0;name BSIT:;name BSIT1;name BSIT:1",
     "0 bsit_openHID(0, 2, 0); 0 bsit_openHID(0, 65535, 0); 0 bsit_openHID(0, 65535, 0); 0; "
     "1 bsit_openHID(0, 0, 0) bsit_SetSlot(0, 0)"},
    // A refused slot and a refused close change nothing.
    {kBsit,
     "answer bsit_SetSlot 1;port 1;reset;slot 05;reset;answer bsit_CloseHID 1;close;close;reset",
     "1 bsit_openHID(0, 0, 0) bsit_SetSlot(0, 0); 1 ATR bsit_ResetCard(0); - bsit_SetSlot(0, 5); "
     "1 ATR bsit_ResetCard(0); 1 bsit_CloseHID(0); 1; 0"},
    {kBsit,
     "list 9 1;answer bsit_gethidlist 0;list 0 0;answer bsit_gethidlist -3;list 0 0;"
     "answer bsit_gethidlist 16;list 0 0;answer bsit_gethidlist 0x7FFFFFFF;list 0 0",
     "2: 12 1 1 BSIT:1 .. 12 1 2 BSIT:2 bsit_gethidlist(); 0 bsit_gethidlist(); "
     "0 bsit_gethidlist(); 16: 12 1 1 BSIT:1 .. 12 1 16 BSIT:16 bsit_gethidlist(); "
     "16: 12 1 1 BSIT:1 .. 12 1 16 BSIT:16 bsit_gethidlist()"},
    // How the text of a command is read.
    {kBsit,
     "open;answer bsit_SendApdu 0 9000;send 00A4 0400;answer bsit_SendApdu 0 9000;"
     "send 00 A4 04 00;answer bsit_SendApdu 0 9000;send 00a4040aB;answer bsit_SendApdu 0 9000;"
     "send 00G1;answer bsit_SendApdu 0 9000;send 0;answer bsit_SendApdu 0 9000;send ",
     "1 bsit_openHID(0, 0, 0) bsit_SetSlot(0, 0); 1 9000 bsit_SendApdu(0, 00A40400); "
     "1 9000 bsit_SendApdu(0, 00A4040000); 1 9000 bsit_SendApdu(0, 00A4040A); "
     "1 9000 bsit_SendApdu(0, 0000); 1 9000 bsit_SendApdu(0, ); 1 9000 bsit_SendApdu(0, )"},
    {kD8, "port 1;close;close;reset;send 00A40000;port 100;port 101;name reader at COM1!;close",
     "1 dc_init(0, 115200) dc_config_card(1, 0x41); 1 dc_exit(1); 1; 0; "
     "0 dc_pro_commandlink(-1, 00A40000, 10, 56); "
     "1 dc_init(100, 115200) dc_config_card(2, 0x41); "
     "1 dc_init(100, 115200) dc_config_card(3, 0x41); "
     "1 dc_init(0, 115200) dc_config_card(4, 0x41); 1 dc_exit(4)"},
    {kD8, "name COM5 COM100(D8USB);name COM100;port 65537;close",
     "1 dc_init(100, 115200) dc_config_card(1, 0x41); "
     "1 dc_init(100, 115200) dc_config_card(2, 0x41); "
     "1 dc_init(0, 115200) dc_config_card(3, 0x41); 1 dc_exit(3)"},
    {kD8, "port 2;port -2147483648;name COM;name COM99999999999;name com1;name ",
     "0 dc_init(1, 115200); 0 dc_init(-1, 115200); 0 dc_init(-1, 115200); 0 dc_init(-2, 115200); "
     "0; 0"},
    // Open nevertheless.
    {kD8, "answer dc_config_card 1;port 1;reset;answer dc_exit 7;close;close",
     "0 dc_init(0, 115200) dc_config_card(1, 0x41); "
     "1 ATR dc_reset(1, 1) dc_request(1, 1) dc_anticoll(1, 0) dc_select(1, 1330796110) "
     "dc_pro_resethex(1); "
     "1 dc_exit(1); 1"},
    {kD8, "answer dc_init 0;port 1;close", "0 dc_init(0, 115200); 1 dc_exit(0)"},
    {kD8,
     "port 1;slot 00;slot 01;slot 0B;slot 10;slot FF;slot ;slot G0;slot 0C;slot 0d;slot 0E;"
     "answer dc_setcpu 1;slot 0F;reset",
     "1 dc_init(0, 115200) dc_config_card(1, 0x41); -; -; -; -; -; -; -; - dc_setcpu(1, 12); "
     "- dc_setcpu(1, 13); - dc_setcpu(1, 14); - dc_setcpu(1, 15); 1 ATR dc_cpureset_hex(1)"},
    // A tool that failed by name knows its kind, and keeps its slot;
    {kD8, "name COM9;slot 01;port 1;reset",
     "0 dc_init(8, 115200); -; 1 dc_init(0, 115200) dc_config_card(1, 0x41); "
     "1 ATR dc_cpureset_hex(1)"},
    // by port it is a new one.
    {kD8, "port 9;slot 01;port 1;send 00A40000",
     "0 dc_init(8, 115200); -; 1 dc_init(0, 115200) dc_config_card(1, 0x41); "
     "0 dc_pro_commandlink(1, 00A40000, 10, 56)"},
    {kD8, "list 0 0;list 2 1;list 15 0;list 16 0;list 17 0",
     "1: 5 1 100 COM100(D8USB); 3: 5 1 1 COM1 .. 5 1 100 COM100(D8USB); "
     "16: 5 1 1 COM1 .. 5 1 100 COM100(D8USB); 16: 5 1 1 COM1 .. 5 1 16 COM16; "
     "16: 5 1 1 COM1 .. 5 1 16 COM16"},
    {kIcr, "name ICR-COM1001(ICRUSB);close;name COM1001;name ICR-COM1;close;close",
     "1 SDT_OpenPort(1001) SDT_OpenPort(1001); 1 SDT_ClosePort(1001); 1 SDT_OpenPort(1001); "
     "1 SDT_OpenPort(1); 1 SDT_ClosePort(1); 0 SDT_ClosePort(1)"},
    // It knows no open and closed.
    {kIcr, "name ICR-COM3;close;name ICR-COM1",
     "0 SDT_OpenPort(3); 0 SDT_ClosePort(3); 1 SDT_OpenPort(1)"},
    {kIcr, "name ICRUSB;port 1;close;kind 6", "0; 0; 0 SDT_ClosePort(0); 0 SDT_ClosePort(0)"},
    // The USB reader is tried up to three times.
    {kIcr, "answer SDT_OpenPort 5;name ICR-COM1001(ICRUSB)",
     "1 SDT_OpenPort(1001) SDT_OpenPort(1001)"},
    {kIcr, "answer SDT_OpenPort 0x90;answer SDT_OpenPort 5;name ICR-COM1001(ICRUSB)",
     "1 SDT_OpenPort(1001) SDT_OpenPort(1001) SDT_OpenPort(1001)"},
    {kIcr,
     "answer SDT_OpenPort 0x90;answer SDT_OpenPort 5;answer SDT_OpenPort 5;"
     "name ICR-COM1001(ICRUSB)",
     "0 SDT_OpenPort(1001) SDT_OpenPort(1001) SDT_OpenPort(1001)"},
    {kIcr, "name COM1;slot 0C;reset;send 00A40400;card out;reset;send 00A40400",
     "1 SDT_OpenPort(1); -; "
     "1 SDT_StartFindIDCard(1, 0) SDT_StartFindIDCard(1, 0) SDT_SelectIDCard(1, 0); "
     "1 SDT_ReadBaseMsg(1, 0); "
     "0 SDT_StartFindIDCard(1, 0) SDT_StartFindIDCard(1, 0) SDT_SelectIDCard(1, 0); "
     "0 SDT_ReadBaseMsg(1, 0)"},
    // The second find and the selection count.
    {kIcr,
     "open;answer SDT_StartFindIDCard 0x80;reset;answer SDT_StartFindIDCard 0x9F;"
     "answer SDT_StartFindIDCard 0x90;reset;answer SDT_SelectIDCard 0x9F;reset",
     "1 SDT_OpenPort(1); "
     "1 SDT_StartFindIDCard(1, 0) SDT_StartFindIDCard(1, 0) SDT_SelectIDCard(1, 0); "
     "0 SDT_StartFindIDCard(1, 0) SDT_StartFindIDCard(1, 0) SDT_SelectIDCard(1, 0); "
     "0 SDT_StartFindIDCard(1, 0) SDT_StartFindIDCard(1, 0) SDT_SelectIDCard(1, 0)"},
    {kIcr, "list 0 0;list -1 1;list 2 2;list 2 3;list 2 0",
     "1: 11 1 1001 ICR-COM1001(ICRUSB); 1: 11 1 1001 ICR-COM1001(ICRUSB) SDT_ClosePort(0); "
     "2: 11 1 1 ICR-COM1 .. 11 1 2 ICR-COM2 SDT_ClosePort(0); "
     "3: 11 1 1 ICR-COM1 .. 11 1 1001 ICR-COM1001(ICRUSB) SDT_ClosePort(0); "
     "3: 11 1 1 ICR-COM1 .. 11 1 1001 ICR-COM1001(ICRUSB) SDT_ClosePort(0)"},
    // A result that failed counts as open, and the last port that opened closes.
    {kS5009, "port 1;port 2;answer CloseCOM 9;close;close;reset;port -5;close",
     "1 InitCOM(1); 0 InitCOM(2); 1 CloseCOM(1); 1; 0; 0 InitCOM(-5); 1 CloseCOM(1)"},
    {kS5009, "name S5009 on COM12;name com1;port 1;close",
     "0 InitCOM(12); 0 CloseCOM(-1); 1 InitCOM(1); 1 CloseCOM(1)"},
    {kS5009Ats, "name COM;port 1;port 1;reset;kind 7;reset",
     "0 InitCOM(0); 1 CloseCOM(-1) InitCOM(1); 1 InitCOM(1); 1 ATR Mifare_GetATS(); "
     "1 CloseCOM(1) InitCOM(1); 1 ATR Mifare_SearchCard()"},
    {kS5009, "port 1;answer Mifare_SearchCard 5 04;reset;send 00a4040002ffff;slot 01;send ",
     "1 InitCOM(1); 1 04 Mifare_SearchCard(); 0 6A82 ExchangeAPDU(3, \"00A4040002FFFF\", 14); -; "
     "0 ExchangeAPDU(1, \"\", 0)"},
    {kS5009, "name COM9;slot 01;port 1;send 00A40000",
     "0 InitCOM(9); -; 1 CloseCOM(-1) InitCOM(1); "
     "1 6F0782013883023F009000 ExchangeAPDU(3, \"00A40000\", 8)"},
    {kS5009,
     "port 1;answer ExchangeAPDU 0 9000 3;send 00;answer ExchangeAPDU 0 9000 5;send 00;"
     "answer ExchangeAPDU 0 9000 6;send 00;answer ExchangeAPDU 0 9000 256;send 00",
     "1 InitCOM(1); 0 ExchangeAPDU(3, \"00\", 2); 1 9000 ExchangeAPDU(3, \"00\", 2); "
     "0 9000 ExchangeAPDU(3, \"00\", 2); 0 9000 ExchangeAPDU(3, \"00\", 2)"},
    {kS5009, "list 3 2", "2: 7 1 1 COM1 .. 7 1 2 COM2"},
    {kS5009Ats, "list 3 0", "3: 7 1 1 COM1 .. 7 1 3 COM3"},
    {kTyCom, "port 1;reset;slot 02;reset;close;close;reset;name COM1",
     "1 TY_Open(57600, 0); 1 ATR TY_Dreset(0, 0); -; 1 ATR TY_Dreset(0, 2); 1 TY_Close(0); 1; 0; "
     "1 TY_Open(57600, 0)"},
    {kTyCom, "port -2147483648;name COM;name USB1;close",
     "0 TY_Open(57600, 2147483647); 0 TY_Open(57600, -1); 0; 1"},
    {kTyCom, "port 9;slot 01;port 1;reset",
     "0 TY_Open(57600, 8); -; 1 TY_Open(57600, 0); 1 ATR TY_Dreset(0, 1)"},
    {kTyCom, "list 4 0;list 4 2;list 2 4;list 20 -1;list 0 0;list -5 3",
     "4: 2 1 1 COM1 .. 2 1 4 COM4; 2: 2 1 1 COM1 .. 2 1 2 COM2; 2: 2 1 1 COM1 .. 2 1 2 COM2; "
     "20: 2 1 1 COM1 .. 2 1 20 COM20; 0; 0"},
    // An open that failed leaves the key that is open.
    {kTyUsb, "port 1;name USB9;slot 02;reset;close;close;reset;name USB1;reset",
     "1 TYKey_OpenTYKey(0); 0 TYKey_OpenTYKey(8); -; 1 ATR TYKey_ColdReset(-1000); "
     "1 TYKey_CloseTYKey(-1000); 1; 0; 1 TYKey_OpenTYKey(0); 1 ATR TYKey_ColdReset(-999)"},
    {kTyUsb, "port 3;name USB;name COM1;close",
     "0 TYKey_OpenTYKey(2); 0 TYKey_OpenTYKey(-1); 0; 1"},
    {kTyUsb,
     "list 0 0;answer TYKey_Status 0 00FF010000;list 0 1;answer TYKey_Status 1 00FF010000;"
     "list 0 -1;answer TYKey_Status 0 0101010101010101010101010101010101010101;list 0 20;"
     "answer TYKey_Status 0 -;list 0 0",
     "2: 1 1 0 USB0 .. 1 1 1 USB1 TYKey_Change() TYKey_Status(); "
     "1: 1 1 1 USB1 TYKey_Change() TYKey_Status(); "
     "2: 1 1 1 USB1 .. 1 1 2 USB2 TYKey_Change() TYKey_Status(); "
     "16: 1 1 0 USB0 .. 1 1 15 USB15 TYKey_Change() TYKey_Status(); "
     "0 TYKey_Change() TYKey_Status()"},
    {kWd, "name WDUSB1;close;close;reset;name ??USB1;close",
     "1 CT_open(\"USB1\", 0, 0) ICC_set_NAD(1, 21); 1 CT_close(1); 1; 0; "
     "1 CT_open(\"USB1\", 0, 0) ICC_set_NAD(2, 21); 1 CT_close(2)"},
    {kWd, "name WDUSB2;close;name WD;name W;name ;port 1",
     "0 CT_open(\"USB2\", 0, 0); 1; 0 CT_open(\"\", 0, 0); 0; 0; 0"},
    {kWd,
     "answer CT_open 0;name WDUSB1;name WDUSB1;answer CT_close 1;close;reset;close;close;reset",
     "0 CT_open(\"USB1\", 0, 0); 1 CT_open(\"USB1\", 0, 0) ICC_set_NAD(1, 21); 0 CT_close(1); "
     "1 ATR ICC_tsi_api(1, 0012000000); 1 CT_close(1); 1; 0"},
    {kWd, "name WDUSB1;slot 05;answer ICC_set_NAD 1;slot FF;reset",
     "1 CT_open(\"USB1\", 0, 0) ICC_set_NAD(1, 21); - ICC_set_NAD(1, 5); - ICC_set_NAD(1, 255); "
     "1 ATR ICC_tsi_api(1, 0012000000)"},
    // Behind more data both the result and the reply are to end in success.
    {kWd,
     "open;answer ICC_tsi_api 0x6102 6102;answer ICC_tsi_api 0x9000 01026102;send 00;"
     "answer ICC_tsi_api 0x6102 6102;answer ICC_tsi_api 0x6A82 01029000;send 00",
     "1 CT_open(\"USB1\", 0, 0) ICC_set_NAD(1, 21); "
     "0 6102 ICC_tsi_api(1, 00) ICC_tsi_api(1, 00C0000002); "
     "0 6102 ICC_tsi_api(1, 00) ICC_tsi_api(1, 00C0000002)"},
    {kWd, "list 0 0;list 9 9", "1: 4 0 0 WDUSB1; 1: 4 0 0 WDUSB1"},
    {kPcsc, "port 1;close;close;reset;send 00A40400",
     "1 SCardEstablishContext(0) SCardListReadersA(context, \"SCard$DefaultReaders\") "
     "SCardConnectA(context, \"Simulated Reader 0\", 2, 3) SCardFreeMemory(context); "
     "1 SCardDisconnect(0xFFFFFFFFEA010001, 0); 1; 0; "
     "0 SCardTransmit(0xFFFFFFFFFFFFFFFF, 1, 00A40400)"},
    {kPcsc, "port 2;port 3;port 0",
     "1 SCardEstablishContext(0) SCardListReadersA(context, \"SCard$DefaultReaders\") "
     "SCardConnectA(context, \"Simulated Reader 1\", 2, 3) SCardFreeMemory(context); "
     "0 SCardListReadersA(context, \"SCard$DefaultReaders\") SCardFreeMemory(context); "
     "0 SCardListReadersA(context, \"SCard$DefaultReaders\") SCardFreeMemory(context)"},
    // The header is that of the protocol.
    {kPcsc, "answer SCardConnectA 0 01;open;answer SCardTransmit 0 9000;send 00B0000001",
     "1 SCardEstablishContext(0) SCardConnectA(context, \"Simulated Reader 0\", 2, 3); "
     "1 9000 SCardTransmit(0xFFFFFFFFEA010001, 1, 00B0000001)"},
    {kPcsc, "answer SCardConnectA 0 02;open;answer SCardTransmit 0 9000;send 00B0000001",
     "1 SCardEstablishContext(0) SCardConnectA(context, \"Simulated Reader 0\", 2, 3); "
     "1 9000 SCardTransmit(0xFFFFFFFFEA010001, 2, 00B0000001)"},
    {kPcsc, "answer SCardConnectA 0 00;open;answer SCardTransmit 0 9000;send 00B0000001",
     "1 SCardEstablishContext(0) SCardConnectA(context, \"Simulated Reader 0\", 2, 3); "
     "1 9000 SCardTransmit(0xFFFFFFFFEA010001, 2, 00B0000001)"},
};

TEST(Drivers, TakeAHostsSteps) {
  for (const auto& [reader, steps, outcomes] : kRows) {
    const support::SimulatedModule module(reader.vendor);
    EXPECT_EQ(TakeSteps(reader, module, steps), outcomes) << reader.vendor << ": " << steps;
    ReaderTest::EmptySlots();
  }
}

// Each step needs the one before, and a moment after it.
TEST(Drivers, OfD8BringUpACardInTheFieldStepByStep) {
  const support::SimulatedModule dcrf32("dcrf32");
  const std::pair<std::string, std::string> steps[] = {
      {"dc_reset 0", "dc_reset(1, 1)"},
      {"dc_request 0", "dc_request(1, 1)"},
      {"dc_anticoll 0 DEADBEEF", "dc_anticoll(1, 0)"},
      {"dc_select 0", "dc_select(1, 3735928559)"},
      {"dc_pro_resethex 0 3B", "dc_pro_resethex(1)"}};
  std::string prepared = "open;", calls;
  for (std::size_t done = 0; done <= std::size(steps); ++done) {
    const bool fails = done < std::size(steps);
    if (fails) calls += ' ' + steps[done].second;
    const std::string failing =
        fails ? "answer " + steps[done].second.substr(0, steps[done].second.find('(')) + " 1;" : "";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(
        TakeSteps(kD8, dcrf32, prepared + failing + "reset"),
        "1 dc_init(0, 115200) dc_config_card(1, 0x41); " + (fails ? "0" + calls : "1 3B" + calls));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10 * done));
    if (fails) prepared += "answer " + steps[done].first + ';';
  }
  ReaderTest::EmptySlots();
}

TEST(Drivers, OfIcrHaveRoomForLongMessages) {
  const support::SimulatedModule sdtapi("sdtapi");
  const std::string message = " " + std::string(2 * 40960, 'A') + ' ',
                    send = ";send " + std::string(8192, 'A');
  for (const char* answer : {"0x90", "0x90 -1", "0x90 0x7FFFFFFF", "0x41"}) {
    const std::string result(answer, 4), length(answer + 4);
    EXPECT_EQ(
        TakeSteps(kIcr, sdtapi, "open;answer SDT_ReadBaseMsg " + result + message + length + send),
        "1 SDT_OpenPort(1); " + std::string(result == "0x90" ? "1" : "0") +
            " SDT_ReadBaseMsg(1, 0)");
  }
  ReaderTest::EmptySlots();
}

}  // namespace
}  // namespace orvane_test
