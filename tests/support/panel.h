#pragma once

#include <QCoreApplication>
#include <QDebug>
#include <QStringList>
#include <QTranslator>
#include <QWidget>

/// A control of a panel by its object name. A name that is not there ends the test program.
template<class Control>
Control &control(const QWidget &panel, const QString &name)
{
    auto *found = panel.findChild<Control *>(name);
    if (!found)
        qFatal("no %s in %s", qPrintable(name), panel.metaObject()->className());
    return *found;
}

/// The shown text of whatever control it is.
inline QString textOf(const QWidget &panel, const QString &name)
{
    return control<QWidget>(panel, name).property("text").toString();
}

/// English for as long as the object lives.
class English
{
public:
    English()
    {
        if (!translator.load(QStringLiteral(":/language_en.qm")))
            qFatal("no translation");
        QCoreApplication::installTranslator(&translator);
    }
    ~English() { QCoreApplication::removeTranslator(&translator); }
    Q_DISABLE_COPY(English)

private:
    QTranslator translator;
};

/// What the toolkit complains of while the object lives.
class Complaints
{
public:
    Complaints()
    {
        heard().clear();
        before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &text) { heard() << text; });
    }
    ~Complaints() { qInstallMessageHandler(before); }
    Q_DISABLE_COPY(Complaints)

    static QStringList &heard()
    {
        static QStringList texts;
        return texts;
    }

private:
    QtMessageHandler before = nullptr;
};
