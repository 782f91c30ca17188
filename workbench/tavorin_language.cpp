#include "workbench/tavorin.h"

#include "workbench/showwidget.h"

#include <QCoreApplication>
#include <QTranslator>

namespace {

// Chinese is the language of the sources; installed, this makes the interface English.
QTranslator appTranslator;

} // namespace

void Tavorin::loadTranslation() { appTranslator.load(":/language_en.qm"); }

void Tavorin::on_actionchinese_triggered()
{
    QCoreApplication::removeTranslator(&appTranslator);
    retranslate();
}

void Tavorin::on_actionenglish_triggered()
{
    QCoreApplication::installTranslator(&appTranslator);
    retranslate();
}

void Tavorin::retranslate()
{
    // The form would take the firmware version off the title.
    const QString title = windowTitle();
    ui.retranslateUi(this);
    setWindowTitle(title);
    ui.page_1->retranslateRows();
    ui.page_2->retranslate();
    ui.page_4->retranslate();
    for (ShowWidget *page : pages())
        page->retranslate();
}
