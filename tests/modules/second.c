/* What the fake dcrf32 needs besides itself. */
#include <stdint.h>

MODULE_API int64_t FirstHandle(void) { return 1; }
