#pragma once

#include <QStringList>

/// Gathers the warnings that come while it lives.
class Quiet
{
public:
    Quiet()
        : before(qInstallMessageHandler(gather))
    {
        gathered().clear();
    }
    ~Quiet() { qInstallMessageHandler(before); }
    Q_DISABLE_COPY(Quiet)

    QStringList messages() const { return gathered(); }

private:
    static QStringList &gathered()
    {
        static QStringList list;
        return list;
    }
    static void gather(QtMsgType, const QMessageLogContext &, const QString &message)
    {
        gathered().append(message);
    }

    QtMessageHandler before;
};
