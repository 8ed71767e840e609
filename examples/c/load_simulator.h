/*
 * Puts the simulated card in the place of PC/SC: call it before a reader is opened. A host for real
 * cards goes without it. SIMULATOR is the path of libwinscard.so or winscard.dll in the simulators'
 * folder.
 */
#ifdef _WIN32
#include <windows.h>
/* A wide name: the folder's may have letters that the ANSI code page lacks. */
static int LoadSimulator(void) { return LoadLibraryW(L"" SIMULATOR) != 0; }
#else
#include <dlfcn.h>
static int LoadSimulator(void) { return dlopen(SIMULATOR, RTLD_NOW) != 0; }
#endif
