#include "Support/LogCapture.h"

#include <QMutex>
#include <QtGlobal>
#include <algorithm>

namespace corvane {

namespace {

QMutex mutex;
QStringList captured;
QtMessageHandler previous = nullptr;

void capture(QtMsgType, const QMessageLogContext&, const QString& message)
{
    const QMutexLocker lock(&mutex);
    captured.append(message);
}

}

LogCapture::LogCapture()
{
    captured.clear();
    previous = qInstallMessageHandler(capture);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(previous);
}

QStringList LogCapture::lines() const
{
    const QMutexLocker lock(&mutex);
    return captured;
}

bool LogCapture::contains(const QString& part) const
{
    const QStringList all = lines();
    return std::any_of(all.begin(), all.end(), [&](const QString& line) { return line.contains(part); });
}

}
