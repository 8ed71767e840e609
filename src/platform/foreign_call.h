#pragma once

namespace orvane::platform {

extern "C" {
// Runs operation(argument), which enters a foreign library. False if an exception ended it that
// catch (...) would not see; every other exception passes through.
bool OrvaneRunForeign(void (*operation)(void*), void* argument);
}

// What stands for an exception of another compiler's making.
struct ForeignException {};

// Gives what call gives. Whatever a foreign library throws in it leaves as an exception that
// catch (...) sees. An exception of another compiler's making passes by the destructors of what
// stands between here and the library: call keeps nothing that has to be destroyed.
template <typename Call>
auto CallForeign(Call call) {
  decltype(call()) result{};
  const auto run = [&] { result = call(); };
  using Run = const decltype(run);
  void* const argument = const_cast<void*>(static_cast<const void*>(&run));
  if (!OrvaneRunForeign([](void* it) { (*static_cast<Run*>(it))(); }, argument)) {
    throw ForeignException();
  }
  return result;
}

}  // namespace orvane::platform
