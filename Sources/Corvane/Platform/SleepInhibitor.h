#pragma once

#include <QString>
#include <memory>

namespace corvane {

/// Keeps the machine from suspending.
class SleepInhibitor {
public:
    /// Inhibits until it is destroyed.
    class Hold {
    public:
        virtual ~Hold() = default;
    };

    virtual ~SleepInhibitor() = default;

    /// Never blocks; does nothing without the service.
    [[nodiscard]] virtual std::unique_ptr<Hold> hold(const QString& reason) = 0;
};

}
