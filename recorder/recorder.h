/*
 * How Orvane's program has the PC/SC calls of its process recorded. Other hosts set ORVANE_RECORD.
 */
#ifndef ORVANE_RECORDER_H
#define ORVANE_RECORDER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Any thread may call the functions. */
struct RecorderSettings {
  void (*append)(const char* line, uint64_t length);
  int32_t (*ready)(void);      /* 0: no line can be written any more */
  int64_t (*nextReader)(void); /* the number of a reader that is opened */
  int64_t origin;              /* of the times, by the steady clock: ns */
  int32_t showSecrets;
};

/* Records from now on; a null pointer ends it. To be called while no other thread makes calls. */
typedef void RecorderBeginFunction(const struct RecorderSettings* settings);

/* Whether the data of this thread's coming commands are hidden, whatever these are. */
typedef void RecorderHideFunction(int32_t hide);

#ifdef __cplusplus
}
#endif

#endif
