#include "Terminal/Host/EventLog.h"

namespace corvane::terminal {

template <typename Fill> void EventLog::add(std::string_view type, Fill fill)
{
    if (m_events.size() == maxEvents)
        return;
    Json json;
    json.openObject().member("type", type);
    fill(json);
    m_events.push_back(json.closeObject().text());
}

void EventLog::addText(std::string_view type, std::string_view text)
{
    add(type, [&](Json& json) { json.member("text", text); });
}

void EventLog::bell()
{
    add("bell", [](Json&) { });
}

void EventLog::titleChanged(std::string_view text)
{
    addText("title", text);
}

void EventLog::iconChanged(std::string_view text)
{
    addText("icon", text);
}

void EventLog::directoryChanged(std::string_view address)
{
    addText("cwd", address);
}

void EventLog::promptMark(PromptMark mark, int exitCode)
{
    constexpr std::string_view kinds[] = { "A", "B", "C", "D" };
    add("prompt", [&](Json& json) {
        json.member("mark", kinds[size_t(mark)]);
        if (exitCode >= 0)
            json.member("exit", exitCode);
    });
}

void EventLog::clipboardWrite(std::string_view selection, std::string_view data)
{
    add("clipboard", [&](Json& json) { json.member("selection", selection).member("text", data); });
}

void EventLog::notification(const Notification& notification)
{
    add("notify", [&](Json& json) {
        json.member("id", notification.id).member("title", notification.title).member("body", notification.body);
    });
}

void EventLog::progress(ProgressState state, int percent)
{
    add("progress", [&](Json& json) { json.member("state", int(state)).member("percent", percent); });
}

void EventLog::link(std::string_view address)
{
    addText("link", address);
}

void EventLog::pointerShape(std::string_view shape)
{
    addText("pointer", shape);
}

void EventLog::resizeRequest(int columns, int rows)
{
    add("resize", [&](Json& json) { json.member("cols", columns).member("rows", rows); });
}

void EventLog::windowRequest(int operation, int first, int second)
{
    add("window",
        [&](Json& json) { json.member("operation", operation).member("first", first).member("second", second); });
}

void EventLog::paletteChanged()
{
    add("palette", [](Json&) { });
}

std::string EventLog::take()
{
    std::string text = "{\"events\":[";
    for (size_t i = 0; i < m_events.size(); ++i)
        text += (i ? "," : "") + m_events[i];
    m_events.clear();
    return text + "]}";
}

}
