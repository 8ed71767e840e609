#pragma once

namespace orvane::platform {

extern "C" {
// Runs operation(argument), which enters a foreign library. False if it ended with an exception
// that catch (...) would not see. Every other exception passes through.
bool OrvaneRunForeign(void (*operation)(void*), void* argument);
}

// Thrown in place of an exception of another compiler's code.
struct ForeignException {};

// Gives the result of call. Whatever a foreign library throws in it becomes an exception that catch
// (...) sees. An exception of another compiler's code skips the destructors between here and the
// library, so call must own nothing.
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
