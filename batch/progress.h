#pragma once

#include <QString>

/// What the operator of the command line sees while pictures are fused: a line for each on the
/// standard output and, on a terminal, a bar below them.
class Progress
{
public:
    Progress(int total, bool quiet);
    ~Progress();

    /// Tells what became of the next picture.
    void report(const QString &line);

private:
    void clearBar();
    void drawBar();

    int total;
    int done = 0;
    bool showsLines;
    bool showsBar;
};
