#pragma once

#include "Foundation/Result.h"

#include <QObject>
#include <QStringList>
#include <functional>

namespace corvane {

/// One running program per user and data folder. A later start hands over its arguments and ends.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    /// True where this process is the one; false where a running one was given the arguments (or holds the data
    /// folder and cannot be reached, which the log says). Takes at most a few seconds.
    virtual bool claim(const QStringList& arguments) = 0;

    /// Answers, now or later and once, a question that another program of the user asks.
    using Answerer
        = std::function<void(const QString& question, const std::function<void(const Result<QString>&)>& reply)>;
    virtual void setAnswerer(Answerer answerer) = 0;

Q_SIGNALS:
    /// A later start of the program: raise the window; the arguments may hold a URL.
    void activated(const QStringList& arguments);
};

}
