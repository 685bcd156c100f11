#pragma once

#include "Terminal/Core/Listener.h"

#include <QByteArray>
#include <QList>
#include <QSize>
#include <QString>
#include <functional>
#include <mutex>
#include <optional>

namespace corvane {

/// What a program has requested, the latest of each kind: a flood of requests costs little memory.
struct TerminalRequests {
    std::optional<QString> title;
    std::optional<QString> directory; ///< a path
    std::optional<QString> clipboard; ///< text for the clipboard
    struct Notification {
        QString title; ///< may be empty
        QString body;
    };
    std::optional<Notification> notification;
    std::optional<QString> pointer; ///< the name of its shape; empty for the usual one
    struct Progress {
        terminal::ProgressState state = terminal::ProgressState::None;
        int percent = 0;
        bool operator==(const Progress&) const = default;
    };
    std::optional<Progress> progress;
    /// A picture that the terminal does not decode itself.
    struct Picture {
        uint32_t image = 0;
        QSize size; ///< as it claims
        QByteArray file;
    };
    QList<Picture> pictures; ///< all of them, up to a limit
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
    void pointerShape(std::string_view shape) override;
    void progress(terminal::ProgressState state, int percent) override;
    void imageToDecode(uint32_t image, int width, int height, std::span<const uint8_t> file) override;

private:
    std::mutex m_lock;
    TerminalRequests m_requests;
};

}
