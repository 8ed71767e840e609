#include <assert.h>
#include <orvane.h>

int main(void) {
  char text[512];
  assert(RunScript("%A = 00", text) != KindAssignment);
  return 0;
}
