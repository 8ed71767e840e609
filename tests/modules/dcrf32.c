/* The library of a maker: it opens, and needs a second one that stands beside it. */
#include <stdint.h>

int64_t FirstHandle(void);

MODULE_API int64_t dc_init(int16_t port, int32_t baud) {
  (void)port;
  (void)baud;
  return FirstHandle();
}

MODULE_API int16_t dc_config_card(int64_t handle, uint8_t type) {
  (void)handle;
  (void)type;
  return 0;
}
