// A script host in C++: runs a script on the simulated card and prints what goes to and fro.
#include <fstream>
#include <iostream>
#include <orvane.hpp>

#include "../c/load_simulator.h"

namespace {

// Runs one statement and does what it asks. False at the end of the script.
bool Run(orvane::Reader& reader, const std::string& statement) {
  const orvane::Result result = orvane::Script::Run(statement);
  if (std::holds_alternative<orvane::Stop>(result)) return false;
  if (std::holds_alternative<orvane::Note>(result)) {
    std::cout << statement << '\n';
  } else if (std::holds_alternative<orvane::ResetRequest>(result)) {
    const auto atr = reader.Reset();
    std::cout << "ATR " << atr.View() << '\n';
    orvane::Script::Set("%ATR", atr);
  } else if (const auto* command = std::get_if<orvane::Command>(&result)) {
    std::cout << ">>  " << command->hex.View() << '\n';
    const orvane::Response response = reader.Send(command->hex);
    std::cout << "<<  " << response.Data().View() << (response.Data() == "" ? "" : " ")
              << response.StatusWord().View() << '\n';
    orvane::Script::Set("%RESP", response.Data());
    orvane::Script::Set("%SW", response.StatusWord());
  } else if (const auto* comparison = std::get_if<orvane::Comparison>(&result)) {
    if (!comparison->met) throw orvane::Error("not as expected: " + statement);
    std::cout << "ok  " << statement << '\n';
  } else if (!std::holds_alternative<orvane::Assignment>(result) &&
             !std::holds_alternative<orvane::Nothing>(result)) {
    // A value for nobody, or a reader or slot that this host lacks.
    throw orvane::Error("can't run " + statement);
  }
  return true;
}

}  // namespace

int main(int count, char** arguments) try {
  if (count != 2) throw orvane::Error("usage: exchange SCRIPT");
  std::ifstream script(arguments[1]);
  if (!script) throw orvane::Error(std::string("can't read ") + arguments[1]);
  if (!LoadSimulator()) throw orvane::Error("can't load " SIMULATOR);
  for (const ReaderInfo& each : orvane::Reader::List(ReaderKindPcsc)) {
    std::cout << "reader " << each.name << '\n';
  }
  orvane::Reader reader = orvane::Reader::Open(ReaderKindPcsc, "Simulated Reader 0");
  for (std::string statement; std::getline(script, statement);) {
    if (statement.ends_with('\r')) statement.pop_back();
    if (!Run(reader, statement)) break;
  }
} catch (const std::exception& failure) {
  std::cerr << failure.what() << '\n';
  return 1;
}
