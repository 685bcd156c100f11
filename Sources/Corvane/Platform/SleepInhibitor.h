#pragma once

#include <QString>
#include <memory>

namespace corvane {

/// Keeps the machine from going to sleep by itself.
class SleepInhibitor {
public:
    /// It stays awake until this is destroyed.
    class Hold {
    public:
        virtual ~Hold() = default;
    };

    virtual ~SleepInhibitor() = default;

    /// Never waits; without the service behind it nothing happens.
    [[nodiscard]] virtual std::unique_ptr<Hold> hold(const QString& reason) = 0;
};

}
