/* In C, since a function in C++ has its compiler's own handler for exceptions. */
#include <excpt.h>
#include <stdbool.h>
#include <windows.h>

bool OrvaneRunForeign(void (*operation)(void*), void* argument);

#ifdef __GNUC__

#define MICROSOFT_EXCEPTION 0xE06D7363

/* The compiler does not see that it is used. */
__attribute__((used)) static long Choose(EXCEPTION_POINTERS* thrown, void* frame) {
  (void)frame;
  return thrown->ExceptionRecord->ExceptionCode == MICROSOFT_EXCEPTION ? EXCEPTION_EXECUTE_HANDLER
                                                                       : EXCEPTION_CONTINUE_SEARCH;
}

/* Once only: the two macros define labels. */
__attribute__((noinline, noclone)) bool OrvaneRunForeign(void (*operation)(void*), void* argument) {
  volatile bool ended = false;
  __try1(Choose);
  operation(argument);
  ended = true;
  __except1;
  return ended;
}

#else

/* With Microsoft's compiler catch (...) sees its exceptions. */
bool OrvaneRunForeign(void (*operation)(void*), void* argument) {
  operation(argument);
  return true;
}

#endif
