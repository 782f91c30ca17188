#include "batch/terminal.h"

#include <cstdio>
#include <io.h>

bool errorsGoToTerminal() { return _isatty(_fileno(stderr)) != 0; }
