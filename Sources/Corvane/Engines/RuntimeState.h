#pragma once

#include <QString>
#include <optional>

namespace corvane {

/// The connection of an account, whatever its channel.
enum class WAStatus { Stopped, Starting, Connecting, NeedsQR, Connected, LoggedOut, Error };

/// What the supervisor knows of one account.
struct RuntimeState {
    WAStatus status = WAStatus::Stopped;
    std::optional<QString> qr; ///< the pairing payload while the status is NeedsQR
    std::optional<QString> userName; ///< the signed-in identity that the engine reported
    std::optional<QString> mcpURL;
    QString lastLog;
    QString lastExit = {}; ///< how the engine ended, in words; empty while it runs

    bool operator==(const RuntimeState&) const = default;
};

/// The download of one medium; no entry means idle.
struct MediaDownloadStatus {
    enum class Kind { Failed, Downloading };
    Kind kind = Kind::Downloading;
    QString message; ///< for a failure, what to show

    bool operator==(const MediaDownloadStatus&) const = default;
};

}
