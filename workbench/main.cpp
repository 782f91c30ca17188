#include "workbench/tavorin.h"

#include <QApplication>
#include <QFontDatabase>

#include <cstdio>

namespace {

/// Without a font the whole interface would be empty boxes, which tells nobody what is missing.
void warnOfMissingFont()
{
    if (QFontDatabase().families(QFontDatabase::SimplifiedChinese).isEmpty())
        std::fputs("No installed font has Chinese characters. Please install the package "
                   "fonts-noto-cjk.\n",
                   stderr);
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);

    QApplication application(argc, argv);
    warnOfMissingFont();
    Tavorin window;
    window.showMaximized();
    return QApplication::exec();
}
