#pragma once

#include <QStringList>

namespace corvane {

/// Collects the log lines of a test instead of printing them to standard error.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QStringList lines() const;
    bool contains(const QString& part) const;
};

}
