#pragma once

#include <cstdint>
#include <ostream>

namespace host {

// Prints the readers of one kind, or of all kinds for kind 0, in the form that --reader takes. All
// kinds means those that can find their readers; with ports above 0 also the others, with that many
// ports each. Then prints the libraries of these kinds: where each was found, or what is wrong with
// it.
void PrintReaders(std::ostream& out, int32_t kind, int32_t ports);

// Prints where the crypto module and each maker's library are, or that they are missing. Runs none
// of their code in this process.
void PrintModules(std::ostream& out);

}  // namespace host
