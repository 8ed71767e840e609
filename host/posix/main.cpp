#include "host/main.h"

int main(int count, char** arguments) { return host::Main({arguments + 1, arguments + count}); }
