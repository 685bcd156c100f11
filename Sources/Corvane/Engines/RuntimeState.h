#pragma once

#include <QString>
#include <optional>

namespace corvane {

/// The connection state of an account, on any channel.
enum class WAStatus { Stopped, Starting, Connecting, NeedsQR, Connected, LoggedOut, Error };

/// The runtime state of an account.
struct RuntimeState {
    WAStatus status = WAStatus::Stopped;
    std::optional<QString> qr; ///< the pairing payload while the status is NeedsQR
    std::optional<QString> userName; ///< the signed-in identity that the engine reported
    std::optional<QString> mcpURL;
    QString lastLog;
    QString lastExit = {}; ///< how the engine exited, for the user; empty while it runs

    bool operator==(const RuntimeState&) const = default;
};

/// The download of a media file; no entry means idle.
struct MediaDownloadStatus {
    enum class Kind { Failed, Downloading };
    Kind kind = Kind::Downloading;
    QString message; ///< the error text of a failure

    bool operator==(const MediaDownloadStatus&) const = default;
};

}
