#include <map>

#include "readers/driver_test.h"
#include "simulators/encryption_machine.h"

namespace orvane_test {
namespace {

using support::SimulatedModule;

const SimulatedReader* const kReaders[] = {&kTyUsb, &kTyCom,    &kPcsc, &kWd,  &kD8,
                                           &kS5009, &kS5009Ats, &kIcr,  &kBsit};

bool Works() { return ResetCard().result == 1 && Send("00A4000C023F00").result == 1; }

class MixedReaders : public ReaderTest {
 protected:
  MixedReaders() {
    for (const SimulatedReader* reader : kReaders)
      modules.try_emplace(reader->vendor, reader->vendor);
  }

  std::map<std::string, const SimulatedModule> modules;
};

// In one slot, each kind after each other: the former reader is closed, and closed before the new
// one opens. The same kind opens once more without closing, and its new connection is the one that
// closes; S5009 and ICR close their port, which has no other number.
TEST_F(MixedReaders, FollowEachOtherInASlot) {
  for (const SimulatedReader* former : kReaders) {
    for (const SimulatedReader* next : kReaders) {
      SCOPED_TRACE(std::to_string(former->kind) + ", then " + std::to_string(next->kind));
      EmptySlots();
      const SimulatedModule& module = modules.at(former->vendor);
      module.Restart();
      ASSERT_EQ(Open(*former), 1);
      const std::size_t opening = module.Journal().size();
      ASSERT_EQ(Open(*next), 1);
      const std::string calls = CallsWithoutResults(module.Journal().substr(opening));
      const std::string closing = former->closing;
      const bool again = former == next;
      EXPECT_EQ(calls.find(again ? closing.substr(0, closing.find('(')) : closing + '\n'),
                again ? std::string::npos : 0)
          << calls;
      EXPECT_TRUE(Works());
      if (!again) continue;
      EXPECT_EQ(CloseReader(), 1);
      EXPECT_EQ(module.Journal().find(closing) == std::string::npos,
                former->kind != ReaderKindIcr && former->vendor != std::string("S5009"));
    }
  }
}

TEST_F(MixedReaders, StandSideBySideInAllSlots) {
  simulator::EncryptionMachine machine;
  const auto expectWork = [&](unsigned from, bool open) {
    for (unsigned slot = from; slot < 16; ++slot) {
      ASSERT_EQ(SetReader(slot), 1);
      if (open) {
        const SimulatedReader tcp{nullptr, ReaderKindTcp, machine.Name().c_str(), nullptr};
        ASSERT_EQ(Open(slot == 15 ? tcp : *kReaders[slot % std::size(kReaders)]), 1) << slot;
      }
      EXPECT_TRUE(Works()) << slot;
    }
  };
  expectWork(0, true);
  for (const unsigned none : {16U, 0xFFFFFFFF}) EXPECT_EQ(SetReader(none), 0);
  EXPECT_EQ(Send("77"), (Reply{1, "77"})) << "still the reader chosen before";
  for (const SimulatedReader* reader : kReaders) EXPECT_FALSE(List(reader->kind, 1, 1).empty());
  // Each has a connection of its own.
  for (unsigned slot = 0; slot < 5; ++slot) {
    SetReader(slot);
    EXPECT_EQ(CloseReader(), 1) << slot;
  }
  expectWork(5, false);
}

// A library that throws when it is to close ends neither the host nor the reader that comes next.
TEST_F(MixedReaders, OutliveALibraryThatThrowsWhenItCloses) {
  for (const SimulatedReader* reader : kReaders) {
    SCOPED_TRACE(reader->kind);
    const SimulatedModule& module = modules.at(reader->vendor);
    const std::string closing = reader->closing;
    const auto works = [](const SimulatedReader& opened) { return Open(opened) == 1 && Works(); };
    EmptySlots();
    module.Restart();
    for (int i = 0; i < 2; ++i) {
      module.Answer(closing.substr(0, closing.find('(')).c_str(), 0, nullptr, SIMULATOR_THROW);
    }
    ASSERT_TRUE(works(*reader));
    EXPECT_EQ(CloseReader(), 0);
    EXPECT_TRUE(works(*reader));
    EXPECT_TRUE(works(reader == &kD8 ? kTyCom : kD8));
    const std::string journal = module.Journal();
    EXPECT_NE(journal.find("throws"), journal.rfind("throws"));
  }
}

// A library may give 64 bits of handle: 32 are kept, and handed over with their sign.
TEST_F(MixedReaders, HandOverHandlesWithTheirSign) {
  const struct {
    const SimulatedReader& reader;
    std::string opening;  // with its result, and the handle where that is another one
    std::string used;
  } rows[] = {
      {kTyCom, "TY_Open -2", "(-2"},
      {kTyUsb, "TYKey_OpenTYKey 0x9000 - 0x100000005", "(5"},
      {kTyUsb, "TYKey_OpenTYKey 0x9000 - 0xFFFFFFFE", "(-2"},
      {kTyUsb, "TYKey_OpenTYKey 0x9000 - 0x7FFFFFFF80000000", "(-2147483648"},
      {kWd, "CT_open -2", "(-2"},  // refuses, and the handle stays
      {kD8, "dc_init 0x1FFFFFFFE", "(-2"},
      {kBsit, "bsit_openHID -2", "(-2"},
  };
  for (const auto& [reader, opening, used] : rows) {
    const std::string all = TakeSteps(
        reader, modules.at(reader.vendor),
        "answer " + opening + ";open;slot 0C;reset;send 00A4;slot 00;reset;send 00A4;close");
    std::size_t calls = 0, withHandle = 0;
    for (std::size_t at = all.find('('); (at = all.find('(', at + 1)) != std::string::npos;
         ++calls) {
      const char end = all[at + used.size()];
      withHandle += all.compare(at, used.size(), used) == 0 && (end == ',' || end == ')');
    }
    EXPECT_GE(calls, 5U) << all;
    EXPECT_EQ(withHandle, calls) << all;
  }
}

}  // namespace
}  // namespace orvane_test
