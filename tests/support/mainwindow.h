#pragma once

#include "simulator/simulatedcapture.h"
#include "tests/support/tavorinwindow.h"

struct NoMicroscopeAttached
{
    NoMicroscopeAttached() { simulatedMicroscope().attach({}); }
};

/// The main window with the simulated microscope as its camera, which is not attached at first.
class MainWindow : private NoMicroscopeAttached, public TavorinWindow
{
public:
    using TavorinWindow::TavorinWindow;
};
