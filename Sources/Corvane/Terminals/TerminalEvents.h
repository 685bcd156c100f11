#pragma once

#include "Terminal/Core/Listener.h"

#include <QString>
#include <functional>
#include <mutex>
#include <optional>

namespace corvane {

/// What a program has requested, the latest of each kind: a flood of requests costs no memory.
struct TerminalRequests {
    std::optional<QString> title;
    std::optional<QString> directory; ///< a path
    std::optional<QString> clipboard; ///< text for the clipboard
    struct Notification {
        QString title; ///< may be empty
        QString body;
    };
    std::optional<Notification> notification;
    bool bell = false;
};

/// Collects requests on the session's threads for the main thread.
class TerminalEvents final : public terminal::Listener {
public:
    TerminalRequests take();

    void bell() override;
    void titleChanged(std::string_view title) override;
    void directoryChanged(std::string_view address) override;
    void clipboardWrite(std::string_view selection, std::string_view data) override;
    void promptMark(terminal::PromptMark kind, int exitCode) override;
    void notification(const terminal::Notification& notification) override;

private:
    std::mutex m_lock;
    TerminalRequests m_requests;
};

}
