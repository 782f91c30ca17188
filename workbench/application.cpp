#include "workbench/application.h"

#include <QApplication>
#include <QFontDatabase>

#include <cstdio>

void prepareApplication()
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication::setAttribute(Qt::AA_DisableWindowContextHelpButton);
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
}

void warnOfMissingFont()
{
    if (QFontDatabase().families(QFontDatabase::SimplifiedChinese).isEmpty())
        std::fputs("No installed font has Chinese characters. Please install the package "
                   "fonts-noto-cjk.\n",
                   stderr);
}
