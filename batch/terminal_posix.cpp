#include "batch/terminal.h"

#include <unistd.h>

bool errorsGoToTerminal() { return isatty(STDERR_FILENO) == 1; }
