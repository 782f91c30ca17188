#include "batch/progress.h"

#include "batch/terminal.h"

#include <cstdio>

namespace {

constexpr int barWidth = 40;

} // namespace

Progress::Progress(int pictures, bool quiet)
    : total(pictures)
    , showsLines(!quiet)
    , showsBar(!quiet && errorsGoToTerminal())
{
    drawBar();
}

Progress::~Progress() { clearBar(); }

void Progress::report(const QString &line)
{
    ++done;
    if (!showsLines)
        return;
    clearBar();
    std::printf("%s\n", qUtf8Printable(line));
    std::fflush(stdout);
    drawBar();
}

void Progress::clearBar()
{
    if (showsBar)
        std::fprintf(stderr, "\r%*s\r", barWidth + 20, "");
}

void Progress::drawBar()
{
    if (!showsBar)
        return;
    const int filled = barWidth * done / total;
    const QString bar = QString(filled, '#') + QString(barWidth - filled, '.');
    std::fprintf(stderr, "[%s] %d/%d", qUtf8Printable(bar), done, total);
    std::fflush(stderr);
}
