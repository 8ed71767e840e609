/* In C: a C++ function would have its compiler's own exception handler. */
#include <excpt.h>
#include <stdbool.h>
#include <windows.h>

bool OrvaneRunForeign(void (*operation)(void*), void* argument);

#ifdef __GNUC__

#define MICROSOFT_EXCEPTION 0xE06D7363

/* Only the assembler code of __try1 uses it, which the compiler does not see. */
__attribute__((used)) static long Choose(EXCEPTION_POINTERS* thrown, void* frame) {
  (void)frame;
  return thrown->ExceptionRecord->ExceptionCode == MICROSOFT_EXCEPTION ? EXCEPTION_EXECUTE_HANDLER
                                                                       : EXCEPTION_CONTINUE_SEARCH;
}

/* Neither inlined nor cloned: the two macros define labels, which must exist once. */
__attribute__((noinline, noclone)) bool OrvaneRunForeign(void (*operation)(void*), void* argument) {
  volatile bool ended = false;
  __try1(Choose);
  operation(argument);
  ended = true;
  __except1;
  return ended;
}

#else

/* Microsoft's compiler makes catch (...) see every exception of its code. */
bool OrvaneRunForeign(void (*operation)(void*), void* argument) {
  operation(argument);
  return true;
}

#endif
