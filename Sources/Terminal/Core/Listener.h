#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace corvane::terminal {

enum class PromptMark : uint8_t { Prompt, Input, Output, End };

struct Notification {
    std::string_view id;
    std::string_view title;
    std::string_view body;
};

enum class ProgressState : uint8_t { None, Normal, Error, Indeterminate, Paused };

/// Events and requests for the program that displays the terminal. Texts are UTF-8 without control characters. Called
/// from within `feed`; an implementation must not call back into the terminal.
class Listener {
public:
    virtual ~Listener() = default;
    virtual void bell() { }
    virtual void titleChanged(std::string_view) { }
    virtual void iconChanged(std::string_view) { }
    /// The address as received, such as file://host/path.
    virtual void directoryChanged(std::string_view) { }
    virtual void promptMark(PromptMark, int /*exitCode*/) { }
    /// `selection` names the targets as in OSC 52; the data is decoded. The user has to allow it.
    virtual void clipboardWrite(std::string_view /*selection*/, std::string_view /*data*/) { }
    virtual void notification(const Notification&) { }
    virtual void progress(ProgressState, int /*percent*/) { }
    /// Text that follows is a link to this address; empty when the link ends.
    virtual void link(std::string_view /*address*/) { }
    virtual void pointerShape(std::string_view) { }
    virtual void resizeRequest(int /*columns*/, int /*rows*/) { }
    /// Raise, lower, iconify and so on: the parameters of XTWINOPS.
    virtual void windowRequest(int /*operation*/, int /*first*/, int /*second*/) { }
    virtual void paletteChanged() { }
    /// A picture in a format that is not decoded here, and the size that its header claims. Its place stays empty until
    /// Terminal::setPicture.
    virtual void imageToDecode(uint32_t /*image*/, int /*width*/, int /*height*/, std::span<const uint8_t> /*file*/) { }
};

}
