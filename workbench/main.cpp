#include "workbench/application.h"
#include "workbench/tavorin.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    prepareApplication();
    QApplication application(argc, argv);
    warnOfMissingFont();
    Tavorin window;
    window.showMaximized();
    return QApplication::exec();
}
