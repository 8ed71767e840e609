/*
 * What every simulated vendor module exports beside the vendor's own functions: a journal of the
 * calls that it got, answers that stand in for the virtual card's, and the card itself.
 *
 * A program puts a simulator in a vendor library's place by loading it before the library looks for
 * the vendor's name. Plain C, so that these functions can be found by name.
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

/* Puts everything back to the start: no journal, no prepared answers, no function to call back, a
 * fresh card inserted, or the recording at its first command again. Open readers are forgotten: a
 * test begins with this, and opens its reader then. */
SIMULATOR_API void SimulatorRestart(void);

/* The calls since the start or the last SimulatorRestart, one line each, every line ended by '\n':
 *   FUNCTION(argument, argument, ...) = result
 * Octets are upper-case hexadecimal without blanks, texts stand in double quotes, numbers are
 * decimal unless the vendor's interface speaks of them in hexadecimal (0x1F; 0 stays 0), a null
 * pointer is null. Areas that are only written to are not listed as arguments; what was written to
 * them stands behind the result, each with a blank before it. Lengths of areas are not listed. The
 * text is valid until the next call into the module. */
SIMULATOR_API const char* SimulatorJournal(void);

/* Prepares the answer to a coming call of one function: the first answer prepared for a function
 * goes to its next call, and so on; after that the virtual card answers again.
 *   result  what the function returns
 *   data    hexadecimal text of what goes to its output area, never more than the area holds; null
 *           writes nothing
 *   length  what it reports as that data's length, however wrong, or one of the two above
 * Where a function writes more than one thing, the head of its module's source tells what the data
 * and the length stand for. */
SIMULATOR_API void SimulatorAnswer(const char* function, int64_t result, const char* data,
                                   int64_t length);

/* Has the next call of any function call back in its middle, as a maker's library may. */
SIMULATOR_API void SimulatorCallBack(void (*function)(void));

/* Puts a recording (docs/program.md) in the card's place, from its first command on; null puts a
 * fresh virtual card there. Reader and journal stay as they are. Commands are expected in the
 * recorded order; with anyOrder one that is recorded later may come earlier. Another command gets
 * 6F00. A host that can't call this sets ORVANE_CARD to the file, and ORVANE_CARD_ANY_ORDER to 1,
 * before the first call; the first command that is not as recorded then goes to standard error.
 *   file    its name, in UTF-8
 *   result  null, or why it is no recording that can be read, up to the next call: then nothing has
 *           changed */
SIMULATOR_API const char* SimulatorReplay(const char* file, int32_t anyOrder);

/* The line of the recording that was expected when another command came for the first time; the
 * one behind the last if all had come by then; 0 if every command was as recorded. */
SIMULATOR_API int64_t SimulatorDiffered(void);

/* 0 pulls the card out, anything else puts it in. A card that comes in anew has forgotten what was
 * selected and verified. */
SIMULATOR_API void SimulatorInsertCard(int32_t present);

/* Takes the card out and puts the next one in, as a feeder does: a fresh card with this serial
 * number, 16 hexadecimal digits, or the recording at its first command again. */
SIMULATOR_API void SimulatorFeedCard(const char* serialNumber);

#ifdef __cplusplus
}
#endif

#endif
