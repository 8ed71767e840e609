#pragma once

#include <cstddef>

#include "host/options.h"

namespace host {

// The process of one reader, which the supervisor starts. It reads lines from standard input and
// writes lines to standard output, each a JSON object:
//
//   supervisor                      worker
//   begin script columns fresh      opens its reader
//                                   waits for         what for; any number of times
//                                   ready reader atr  a card is there
//   row row values                  once the row is journalled as begun
//                                   card card         the script has set %CARD_ID
//   go, or refuse why               once that is journalled; refuse: nothing more goes to the card
//                                   end state reason
//   stop, halt                      at any time: take no more rows; go no further in this one
//                                   trouble code reason
//
// The end of its input means halt. Commands go to a card only between row and end, and never
// between card and go. Gives the exit code.
int RunWorker(const Options& options);

}  // namespace host
