#pragma once

#include <QMutex>
#include <QStringList>
#include <QtGlobal>

/// Watches the debug output for lines that tell of a broken connection: a slot that is named after
/// a signal that does not exist, or a connection that could not be made.
class MessageWatch
{
public:
    MessageWatch() { previous() = qInstallMessageHandler(&MessageWatch::handle); }
    ~MessageWatch() { qInstallMessageHandler(previous()); }
    Q_DISABLE_COPY(MessageWatch)

    /// The lines so far; joined, they make a message for QVERIFY2.
    static QStringList complaints()
    {
        QMutexLocker lock(&mutex());
        return lines();
    }

private:
    static QtMessageHandler &previous()
    {
        static QtMessageHandler handler = nullptr;
        return handler;
    }
    static QMutex &mutex()
    {
        static QMutex guard;
        return guard;
    }
    static QStringList &lines()
    {
        static QStringList list;
        return list;
    }

    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
    {
        if (text.contains("No matching signal") || text.contains("QObject::connect") ||
            text.contains("Could not parse stylesheet")) {
            QMutexLocker lock(&mutex());
            lines() += text;
        }
        if (previous())
            previous()(type, context, text);
    }
};
