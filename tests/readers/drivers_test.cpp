#include <chrono>

#include "readers/driver_test.h"

namespace orvane_test {
namespace {

const struct {
  const SimulatedReader& reader;
  const char* steps;
  const char* outcomes;
  Calls shown = Calls::kWhole;
} kRows[] = {
    // 16 bits of a port go to the library
    {kBsit, "port 1;port 65537;name BSIT:2;name the BSIT:1;close;close;reset;send 00",
     "1 bsit_openHID(0, 0, 0) bsit_SetSlot(0, 0); 1 bsit_openHID(0, 0, 0) bsit_SetSlot(1, 0); "
     "1 bsit_openHID(0, 1, 0) bsit_SetSlot(2, 0); 1 bsit_openHID(0, 0, 0) bsit_SetSlot(3, 0); "
     "1 bsit_CloseHID(3); 1; 0; 0 bsit_SendApdu(-1, 00)"},
    {kBsit, "name SIT:1;slot 05;port 3;port 0;name BSIT:;name BSIT:1",
     "0; - bsit_SetSlot(-1, 5); "
     "0 bsit_openHID(0, 2, 0); 0 bsit_openHID(0, 65535, 0); 0 bsit_openHID(0, 65535, 0); "
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
    // How the text of a command is read. Nothing is prepared: what counts is what goes out.
    {kD8, "port 1;slot 01;send 00A4 0400;send 00 A4 04 00;send 00a4040aB;send 00G1;send 0;send ",
     "1 dc_init(0, 115200) dc_config_card(1, 0x41); -; 0 6700 dc_cpuapdu(1, 00A40400); "
     "0 6700 dc_cpuapdu(1, 00A4040000); 0 6A86 dc_cpuapdu(1, 00A4040A); "
     "0 6700 dc_cpuapdu(1, 0000); 0 6700 dc_cpuapdu(1, ); 0 6700 dc_cpuapdu(1, )"},
    {kD8, "port 1;close;close;reset;send 00A40000;port 100;port 101;name reader at COM1!;close",
     "1 dc_init(0, 115200) dc_config_card(1, 0x41); 1 dc_exit(1); 1; 0; "
     "0 dc_pro_commandlink(-1, 00A40000, 10, 56); 1 dc_init(100, 115200) dc_config_card(2, 0x41); "
     "1 dc_init(100, 115200) dc_config_card(3, 0x41); "
     "1 dc_init(0, 115200) dc_config_card(4, 0x41); 1 dc_exit(4)"},
    {kD8, "name COM5 COM100(D8USB);name COM100;port 65537;close",
     "1 dc_init(100, 115200) dc_config_card(1, 0x41); "
     "1 dc_init(100, 115200) dc_config_card(2, 0x41); "
     "1 dc_init(0, 115200) dc_config_card(3, 0x41); 1 dc_exit(3)"},
    {kD8, "port 2;port -2147483648;name COM;name COM99999999999;name com1;name OM1",
     "0 dc_init(1, 115200); 0 dc_init(-1, 115200); 0 dc_init(-1, 115200); 0 dc_init(-2, 115200); "
     "0; 0"},
    // Open nevertheless.
    {kD8, "answer dc_config_card 1;port 1;reset;answer dc_exit 7;close;close",
     "0 dc_init(0, 115200) dc_config_card(1, 0x41); 1 ATR dc_reset(1, 1) dc_request(1, 1) "
     "dc_anticoll(1, 0) dc_select(1, 1330796110) dc_pro_resethex(1); 1 dc_exit(1); 1"},
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
    {kIcr, "name ICR-OM3;port 1;close;kind 6", "0; 0; 0 SDT_ClosePort(0); 0 SDT_ClosePort(0)"},
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
     "opened;answer SDT_StartFindIDCard 0x80;reset;answer SDT_StartFindIDCard 0x9F;"
     "answer SDT_StartFindIDCard 0x90;reset;answer SDT_SelectIDCard 0x9F;reset",
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
    {kS5009, "name S5009 on COM12;name OM1;port 1;close",
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
    {kTyCom, "port -2147483648;name COM;name OM1;close",
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
    {kTyUsb, "port 3;name USB;name SB1;close", "0 TYKey_OpenTYKey(2); 0 TYKey_OpenTYKey(-1); 0; 1"},
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
     "opened;answer ICC_tsi_api 0x6102 6102;answer ICC_tsi_api 0x9000 01026102;send 00;"
     "answer ICC_tsi_api 0x6102 6102;answer ICC_tsi_api 0x6A82 01029000;send 00",
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
    {kPcsc,
     "answer SCardConnectA 0 01;opened;answer SCardTransmit 0 9000;send 00;"
     "answer SCardConnectA 0 02;open;answer SCardTransmit 0 9000;send 00;answer SCardConnectA 0 00;"
     "open;answer SCardTransmit 0 9000;send 00",
     "1 9000 SCardTransmit(0xFFFFFFFFEA010001, 1, 00); "
     "1 SCardConnectA(context, \"Simulated Reader 0\", 2, 3); "
     "1 9000 SCardTransmit(0x6A010002, 2, 00); "
     "1 SCardConnectA(context, \"Simulated Reader 0\", 2, 3); "
     "1 9000 SCardTransmit(0xFFFFFFFFEA010003, 2, 00)"},
    // The context stays over opens and closes; another kind gives it back.
    {kPcsc,
     "opened;port 1;answer SCardDisconnect 0 - throw;close;close;open;"
     "answer SCardDisconnect 0 - throw;kind 5;send 00A40400",
     "1 SCardListReadersA SCardConnectA SCardFreeMemory; 0 SCardDisconnect; 1; 1 SCardConnectA; "
     "0 SCardDisconnect SCardReleaseContext; 0",
     Calls::kNames},
    // A tool that failed had no kind yet.
    {kPcsc,
     "answer SCardEstablishContext 0x8010001F 00000000000000FF;open;"
     "answer SCardConnectA 0x8010001F;open;open",
     "0 SCardEstablishContext; 0 SCardEstablishContext SCardConnectA; "
     "1 SCardReleaseContext SCardEstablishContext SCardConnectA",
     Calls::kNames},
    {kPcsc, "opened;list 0 0;list 0 1;reset",
     "2: 3 0 0 Simulated Reader 0 .. 3 0 0 Simulated Reader 1 SCardEstablishContext "
     "SCardListReadersA SCardFreeMemory SCardReleaseContext; 1: 3 0 0 Simulated Reader 0 "
     "SCardEstablishContext SCardListReadersA SCardFreeMemory SCardReleaseContext; "
     "1 ATR SCardGetAttrib",
     Calls::kNames},
    {kPcsc, "port -1;port 2147483647;name No Such Reader;name ",
     "0 SCardEstablishContext SCardListReadersA SCardFreeMemory; "
     "0 SCardReleaseContext SCardEstablishContext SCardListReadersA SCardFreeMemory; "
     "0 SCardReleaseContext SCardEstablishContext SCardConnectA; "
     "0 SCardReleaseContext SCardEstablishContext SCardConnectA",
     Calls::kNames},
    // Opens without a card, and finds one that comes.
    {kPcsc, "card out;open;reset;send 00B0000001;card in;reset;send 00A4040002FFFF",
     "1 SCardEstablishContext SCardConnectA; 0 SCardGetStatusChangeA; 0 SCardTransmit; "
     "1 ATR SCardGetStatusChangeA SCardConnectA SCardGetAttrib; "
     "0 6A82 SCardTransmit",
     Calls::kNames},
    {kPcsc, "opened;card out;card in;send 00A4040002FFFF;reset;send 00A4040002FFFF",
     "0 SCardTransmit; 1 ATR SCardGetAttrib SCardGetStatusChangeA SCardConnectA SCardGetAttrib; "
     "0 6A82 SCardTransmit",
     Calls::kNames},
    // A card that was taken out is looked for once.
    {kPcsc, "opened;answer SCardGetAttrib 0x80100069 FFFFFFFF;reset",
     "1 ATR SCardGetAttrib SCardGetStatusChangeA SCardConnectA SCardGetAttrib", Calls::kNames},
    {kPcsc, "opened;answer SCardGetAttrib 0x80100069 FFFFFFFF;answer SCardGetAttrib 0 3B 4;reset",
     "1 3B000000 SCardGetAttrib SCardGetStatusChangeA SCardConnectA SCardGetAttrib", Calls::kNames},
    {kPcsc,
     "opened;answer SCardGetAttrib 0x80100069 FFFFFFFF;answer SCardGetAttrib 0x80100069 FFFFFFFF;"
     "reset",
     "0 SCardGetAttrib SCardGetStatusChangeA SCardConnectA SCardGetAttrib", Calls::kNames},
    {kPcsc,
     "opened;answer SCardGetAttrib 0x80100069 FFFFFFFF;answer SCardGetStatusChangeA 0 - 0x12;reset",
     "0 SCardGetAttrib SCardGetStatusChangeA", Calls::kNames},
    {kPcsc,
     "opened;answer SCardGetAttrib 0x80100069 FFFFFFFF;"
     "answer SCardGetStatusChangeA 0x8010001F - 0x22;reset",
     "0 SCardGetAttrib SCardGetStatusChangeA", Calls::kNames},
    {kPcsc,
     "opened;answer SCardGetAttrib 0x80100069 FFFFFFFF;answer SCardConnectA 0x8010001F;reset",
     "0 SCardGetAttrib SCardGetStatusChangeA SCardConnectA", Calls::kNames},
    // A card that is back has a new handle, which again may be taken in either form.
    {kPcsc,
     "answer SCardConnectA 0 01 0xEA00000000000000;answer SCardConnectA 0 01 0xEA00000000000001;"
     "opened;slot 01;send 00A4040002FFFF;card out;send 00A4040002FFFF;reset;card in;reset;"
     "send 00A4040002FFFF;close;send 00A4040002FFFF",
     "-; 0 6A82 SCardControl SCardControl; 0 SCardControl; 0 SCardControl SCardGetStatusChangeA; "
     "1 ATR SCardControl SCardGetStatusChangeA SCardConnectA SCardControl SCardControl; "
     "0 6A82 SCardControl; 1 SCardDisconnect; 0 SCardControl",
     Calls::kNames},
};

TEST(Drivers, TakeAHostsSteps) {
  for (const auto& [reader, steps, outcomes, shown] : kRows) {
    const support::SimulatedModule module(reader.vendor);
    EXPECT_EQ(TakeSteps(reader, module, steps, shown), outcomes) << reader.vendor << ": " << steps;
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
    EXPECT_EQ(TakeSteps(kD8, dcrf32, prepared + failing + "reset"),
              "1 dc_init(0, 115200) dc_config_card(1, 0x41); " + std::string(fails ? "0" : "1 3B") +
                  calls);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10 * done));
    if (fails) prepared += "answer " + steps[done].first + ';';
  }
  ReaderTest::EmptySlots();
}

TEST(Drivers, OfIcrHaveRoomForLongMessages) {
  const support::SimulatedModule sdtapi("sdtapi");
  for (const char* length : {"", " -1", " 0x7FFFFFFF"}) {
    std::string steps = "open;answer SDT_ReadBaseMsg 0x90 ";
    steps.append(2 * 40960, 'A').append(length).append(";send ").append(8192, 'A');
    EXPECT_EQ(TakeSteps(kIcr, sdtapi, steps), "1 SDT_OpenPort(1); 1 SDT_ReadBaseMsg(1, 0)");
  }
  ReaderTest::EmptySlots();
}

TEST(Drivers, OfPcscListWhatTheLibraryLists) {
  const support::SimulatedModule module("winscard");
  const auto times = [](const std::string& digits, int count) {
    std::string all;
    while (count-- > 0) all += digits;
    return all;
  };
  const std::string
      answer = "answer SCardListReadersA 0 ",
      calls = " SCardEstablishContext SCardListReadersA SCardFreeMemory SCardReleaseContext",
      withoutList = "0 SCardEstablishContext SCardListReadersA SCardReleaseContext";
  const std::pair<std::string, std::string> rows[] = {
      {answer + "410042430000;list 0 0", "2: 3 0 0 A .. 3 0 0 BC" + calls},
      {answer + "410042430000;list 0 1", "1: 3 0 0 A" + calls},
      {answer + "00;list 0 0", "0" + calls},
      {answer + "-;list 0 0", withoutList},
      {answer + times("4100", 20) + "00;list 0 0", "16: 3 0 0 A .. 3 0 0 A" + calls},
      {answer + times("4100", 20) + "00;list 0 25", "20: 3 0 0 A .. 3 0 0 A" + calls},
      {answer + times("42", 300) + "0000;list 0 0", "1: 3 0 0 " + times("B", 255) + calls},
      {answer + "410042;list 0 0", "2: 3 0 0 A .. 3 0 0 B" + calls},  // short of its end
      {"answer SCardListReadersA 0x8010002E 410000;list 0 0", withoutList},
      {"answer SCardEstablishContext 0x8010001F;list 0 0", "0 SCardEstablishContext"},
      {"answer SCardEstablishContext 0 0000000000000000;list 0 0", "0 SCardEstablishContext"},
  };
  for (const auto& [steps, outcomes] : rows) {
    EXPECT_EQ(TakeSteps(kPcsc, module, steps, Calls::kNames), outcomes) << steps;
  }
  ReaderTest::EmptySlots();
}

TEST(Drivers, OfPcscReleaseTheContextOfAListingThatThrows) {
  for (const std::string function :
       {"SCardListReadersA", "SCardFreeMemory", "SCardReleaseContext"}) {
    const support::SimulatedModule module("winscard");
    module.Answer(function.c_str(), 0, nullptr, SIMULATOR_THROW);
    ReaderInfo records[2];
    EXPECT_EQ(GetReaderList(ReaderKindPcsc, records, 0, 0), 0) << function;
    EXPECT_NE(module.Journal().find("SCardReleaseContext("), std::string::npos) << function;
    ReaderTest::EmptySlots();
  }
}

// Half of a handle comes first; a library that refuses that knows nothing but the whole. No half
// stands for "no card" or "closed".
TEST(Drivers, OfPcscHandOverAHandleThatIsWider) {
  const support::SimulatedModule module("winscard");
  const struct {
    std::string given, refusal, half, whole;
  } rows[] = {
      {"0xEA00000000000000", " 6", "(0, ", "(0xEA00000000000000, "},
      {"0xEA00000000000001", " 0x80100003", "(0x1, ", "(0xEA00000000000001, "},
      {"0xEA000000FFFFFFFF", " 6", "(0xFFFFFFFFFFFFFFFF, ", "(0xEA000000FFFFFFFF, "},
      {"0x8A010001", " 0x80100003", "(0xFFFFFFFF8A010001, ", "(0x8A010001, "},
  };
  for (const auto& [given, refusal, half, whole] : rows) {
    const auto expect = [&, &given = given](const std::string& steps, const std::string& outcomes) {
      EXPECT_EQ(
          TakeSteps(kPcsc, module, "answer SCardConnectA 0 01 " + given + ";open;" + steps),
          "1 SCardEstablishContext(0) SCardConnectA(context, \"Simulated Reader 0\", 2, 3); " +
              outcomes);
    };
    expect("answer SCardGetAttrib" + refusal +
               " FFFF 2;reset;answer SCardTransmit 0 6102;send 00;close",
           "1 ATR SCardGetAttrib" + half + "0x90303) SCardGetAttrib" + whole +
               "0x90303); 0 6985 SCardTransmit" + whole + "1, 00) SCardTransmit" + whole +
               "1, 00C0000002); 1 SCardDisconnect" + whole + "0)");
    // What the refusal left behind is no part of the reply.
    expect("answer SCardTransmit" + refusal + " FFFFFFFF;answer SCardTransmit 0 90 2;send 00",
           "1 9000 SCardTransmit" + half + "1, 00) SCardTransmit" + whole + "1, 00)");
    expect("close", "1 SCardDisconnect" + half + "0) SCardDisconnect" + whole + "0)");
    // A library that takes the half:
    expect(
        "answer SCardGetAttrib 0 9000;reset;answer SCardTransmit 0 9000;send 00;"
        "answer SCardDisconnect 0;close",
        "1 9000 SCardGetAttrib" + half + "0x90303); 1 9000 SCardTransmit" + half +
            "1, 00); 1 SCardDisconnect" + half + "0)");
  }
  ReaderTest::EmptySlots();
}

}  // namespace
}  // namespace orvane_test
