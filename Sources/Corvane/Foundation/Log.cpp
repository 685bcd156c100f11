#include "Foundation/Log.h"

#include <QDebug>
#include <cstdio>

namespace corvane {

void log(const QString& line)
{
    qInfo().noquote() << line;
}

void logToStandardError()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
        std::fprintf(stderr, "%s\n", message.toUtf8().constData());
    });
}

}
