#pragma once

#include "Foundation/Result.h"

#include <QObject>
#include <functional>

namespace corvane {

/// Whether the desktop starts the program when the user logs in, without its window.
class Autostart {
public:
    virtual ~Autostart() = default;

    virtual bool isOn() const = 0;

    /// Unless `context` is destroyed first, `done` is called once, now or later: with nothing, or with the reason, for
    /// the user, why it stays as it was.
    virtual void set(bool on, QObject* context, std::function<void(const Result<void>&)> done) = 0;
};

}
