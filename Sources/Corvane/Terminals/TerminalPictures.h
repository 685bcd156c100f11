#pragma once

#include "Platform/MediaDecoder.h"
#include "Terminals/TerminalEvents.h"

#include <QObject>
#include <QTemporaryFile>
#include <map>

namespace corvane {

class LumoTerminalSession;

/// Has the pictures decoded that a program shows in a terminal and that are not PNG. What cannot be decoded leaves its
/// place empty.
class TerminalPictures : public QObject {
public:
    /// A child of the session. The decoder outlives it.
    TerminalPictures(LumoTerminalSession& session, MediaDecoder& decoder);

    void decode(const TerminalRequests::Picture& picture);

private:
    struct Job {
        std::unique_ptr<QTemporaryFile> file;
        MediaDecoder::Handle request;
    };

    LumoTerminalSession& m_session;
    MediaDecoder& m_decoder;
    std::map<uint32_t, Job> m_jobs; ///< by the image
};

}
