/*
 * The exports of every simulated vendor module beside the vendor's functions: a journal of the
 * calls, answers in place of the virtual card's, and the card itself.
 *
 * A program puts a simulator in a vendor library's place: it loads the simulator before Orvane
 * looks for the vendor's name. Plain C, so that these functions can be found by name.
 */
#ifndef ORVANE_SIMULATOR_H
#define ORVANE_SIMULATOR_H

#include <stdint.h>

#ifndef SIMULATOR_API /* set by the build where a module exports these functions */
#define SIMULATOR_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* As length: report the true length of the data. */
#define SIMULATOR_TRUE_LENGTH INT64_MIN
/* As length: the call ends in a C++ exception. */
#define SIMULATOR_THROW INT64_MAX

/* Resets everything: no journal, no prepared answers, no function to call back; a fresh card
 * inserted, or the recording at its first command again. Open readers are forgotten: a test calls
 * this first and then opens its reader. */
SIMULATOR_API void SimulatorRestart(void);

/* The calls since the start or the last SimulatorRestart, one line each, every line ended by '\n':
 *   FUNCTION(argument, argument, ...) = result
 * Octets are upper-case hexadecimal without blanks, texts are in double quotes, a null pointer is
 * null. Numbers are decimal, or hexadecimal (0x1F; 0 stays 0) where the vendor's interface writes
 * them so. Output areas are no arguments in a line: what was written to each follows the result,
 * after a blank. Lengths of areas are left out. The text is valid until the next call into the
 * module. */
SIMULATOR_API const char* SimulatorJournal(void);

/* Prepares the answer to a later call of one function. The first answer prepared for a function is
 * for its next call, and so on; after the last one the virtual card answers again.
 *   result  the function's result
 *   data    the content of its output area as hexadecimal text, cut to the area; null: nothing is
 *           written
 *   length  the length that it reports for this data, right or wrong, or one of the two above
 * If a function writes more than one thing, the head of its module's source says what data and
 * length mean. */
SIMULATOR_API void SimulatorAnswer(const char* function, int64_t result, const char* data,
                                   int64_t length);

/* The next call of any function calls this function while it runs, as a maker's library may. */
SIMULATOR_API void SimulatorCallBack(void (*function)(void));

/* Puts a recording (docs/program.md) in the card's place, from its first command on; null puts a
 * fresh virtual card there. Reader and journal stay as they are. Commands are expected in the
 * recorded order; if anyOrder is not 0, a later one may come earlier. Any other command gets 6F00.
 * A host that cannot call this sets ORVANE_CARD to the file, and ORVANE_CARD_ANY_ORDER to 1, before
 * the first call; the first command that differs is then printed to standard error.
 *   file    its name, in UTF-8
 *   result  null, or the reason why the file cannot be replayed, valid until the next call; then
 *           nothing has changed */
SIMULATOR_API const char* SimulatorReplay(const char* file, int32_t anyOrder);

/* The line of the recording that was expected when another command came for the first time; the
 * line after the last one if all were played; 0 if every command was as recorded. */
SIMULATOR_API int64_t SimulatorDiffered(void);

/* 0 removes the card, any other value inserts it. An inserted card has forgotten what was selected
 * and verified. */
SIMULATOR_API void SimulatorInsertCard(int32_t present);

/* Removes the card and inserts the next one, as a card feeder does: a fresh card with this serial
 * number of 16 hexadecimal digits, or the recording at its first command again. */
SIMULATOR_API void SimulatorFeedCard(const char* serialNumber);

#ifdef __cplusplus
}
#endif

#endif
