#pragma once

#include "Foundation/Result.h"

#include <QObject>
#include <QStringList>
#include <functional>

namespace corvane {

/// What a start of the program is for.
enum class StartFor {
    Window, ///< takes the place of a program without a window
    Command, ///< of the running program, whichever it is
    Headless,
};

/// One running program per user and data folder. A later start hands its arguments over and exits.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    /// True if this process is the instance; false if a running one received the arguments (or holds the data folder
    /// and cannot be reached, which is logged). Takes at most a few seconds, or as long as a program without a window
    /// needs to end.
    virtual bool claim(const QStringList& arguments) = 0;

    /// Answers, now or later but once, a question from another program of the user.
    using Answerer
        = std::function<void(const QString& question, const std::function<void(const Result<QString>&)>& reply)>;
    virtual void setAnswerer(Answerer answerer) = 0;

Q_SIGNALS:
    /// The program was started again: raise the window; the arguments may contain a URL.
    void activated(const QStringList& arguments);

    /// Another start, with a window, waits for this program without one to end.
    void replaced();
};

}
