#pragma once

#include <cstdint>
#include <ostream>

namespace host {

// Prints the readers of one kind, or of all kinds for kind 0, in the form that --reader takes. All
// kinds means those that know which readers are there; with ports above 0 also the others, with
// that many ports each. Behind them stand the libraries of the kind, or of all kinds: where each
// was found, or what is wrong with it.
void PrintReaders(std::ostream& out, int32_t kind, int32_t ports);

// Prints the crypto module and each maker's library: where it is, or that it is not found. None of
// their code runs.
void PrintModules(std::ostream& out);

}  // namespace host
