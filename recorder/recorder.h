/*
 * How the program orvane records the PC/SC calls of its process. Other hosts set ORVANE_RECORD.
 */
#ifndef ORVANE_RECORDER_H
#define ORVANE_RECORDER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The recorder calls these functions from any thread. */
struct RecorderSettings {
  void (*append)(const char* line, uint64_t length);
  int32_t (*ready)(void);      /* 0: no further line can be written */
  int64_t (*nextReader)(void); /* the number for a newly opened reader */
  int64_t origin;              /* zero of the times: steady clock, in ns */
  int32_t showSecrets;
};

/* Begins to record; a null pointer ends it. Call it while no other thread makes PC/SC calls. */
typedef void RecorderBeginFunction(const struct RecorderSettings* settings);

/* Not 0 hides the data of all further commands of this thread, 0 ends that. */
typedef void RecorderHideFunction(int32_t hide);

#ifdef __cplusplus
}
#endif

#endif
