#pragma once

#include "Terminal/Core/Listener.h"
#include "Terminal/Host/Json.h"

#include <vector>

namespace corvane::terminal {

/// Records the listener's events as JSON objects until they are requested.
class EventLog : public Listener {
public:
    void bell() override;
    void titleChanged(std::string_view text) override;
    void iconChanged(std::string_view text) override;
    void directoryChanged(std::string_view address) override;
    void promptMark(PromptMark mark, int exitCode) override;
    void clipboardWrite(std::string_view selection, std::string_view data) override;
    void notification(const Notification& notification) override;
    void progress(ProgressState state, int percent) override;
    void link(std::string_view address) override;
    void pointerShape(std::string_view shape) override;
    void resizeRequest(int columns, int rows) override;
    void windowRequest(int operation, int first, int second) override;
    void paletteChanged() override;

    /// {"events": [...]} since the last call.
    std::string take();

private:
    static constexpr size_t maxEvents = 10'000;
    template <typename Fill> void add(std::string_view type, Fill fill);
    void addText(std::string_view type, std::string_view text);

    std::vector<std::string> m_events;
};

}
