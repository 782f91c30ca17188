#pragma once

/// Whether what goes to the standard error output is seen on a terminal. One file a platform.
bool errorsGoToTerminal();
