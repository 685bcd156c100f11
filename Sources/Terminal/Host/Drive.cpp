#include "Terminal/Host/Drive.h"

#include "Terminal/Host/Json.h"
#include "Terminal/Host/ScreenDump.h"
#include "Terminal/Text/Utf8.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace corvane::terminal {

const Drive::CommandEntry Drive::commands[] = {
    { "open", 2, &Drive::open },
    { "option", 2, &Drive::option },
    { "feed", 0, &Drive::feed },
    { "feedfile", 1, &Drive::feedFile },
    { "resize", 2, &Drive::resize },
    { "replies", 0, &Drive::replies },
    { "dump", 0, &Drive::dump },
    { "events", 0, &Drive::events },
    { "damage", 0, &Drive::damage },
    { "char", 2, &Drive::character },
    { "key", 2, &Drive::key },
    { "keyevent", 3, &Drive::keyEvent },
    { "mouse", 5, &Drive::mouse },
    { "paste", 0, &Drive::paste },
    { "focus", 1, &Drive::focus },
    { "marks", 0, &Drive::marks },
    { "images", 0, &Drive::images },
    { "image", 1, &Drive::image },
    { "select", 5, &Drive::select },
    { "search", 1, &Drive::search },
};

namespace {

constexpr std::string_view done = "{\"ok\":true}";

std::string failure(std::string_view why)
{
    return Json().openObject().member("ok", false).member("error", why).closeObject().text();
}

std::vector<std::string_view> wordsOf(std::string_view line)
{
    std::vector<std::string_view> words;
    while (true) {
        const size_t begin = line.find_first_not_of(" \t\r\n");
        if (begin == std::string_view::npos)
            return words;
        line.remove_prefix(begin);
        const size_t end = std::min(line.find_first_of(" \t\r\n"), line.size());
        words.push_back(line.substr(0, end));
        line.remove_prefix(end);
    }
}

int number(std::string_view text, int fallback = 0)
{
    int value = fallback;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

}

Drive::Drive()
{
    open({ "open", "80", "24" });
}

std::optional<std::string> Drive::run(std::string_view line)
{
    const Words words = wordsOf(line);
    if (words.empty())
        return failure("no command");
    if (words[0] == "quit")
        return {};
    for (const CommandEntry& entry : commands) {
        if (entry.name != words[0])
            continue;
        if (words.size() <= entry.arguments)
            return failure("too few words");
        return (this->*entry.run)(words);
    }
    return failure("unknown command");
}

std::string Drive::open(const Words& words)
{
    m_config = {};
    if (words.size() > 3)
        m_config.scrollbackLines = size_t(std::max(0, number(words[3])));
    m_events.take();
    m_terminal = std::make_unique<Terminal>(Size { number(words[1]), number(words[2]) }, m_config);
    m_terminal->setListener(&m_events);
    m_damageSeen = m_terminal->generation();
    return std::string(done);
}

std::string Drive::option(const Words& words)
{
    return m_terminal->setOption(words[1], words[2]) ? std::string(done) : failure("unknown option or value");
}

std::string Drive::feed(const Words& words)
{
    std::string bytes;
    if (words.size() > 1 && !bytesOfHex(words[1], bytes))
        return failure("not hexadecimal");
    m_terminal->feed(bytes);
    return std::string(done);
}

std::string Drive::feedFile(const Words& words)
{
    std::ifstream file { std::string(words[1]), std::ios::binary };
    if (!file)
        return failure("the file cannot be read");
    const std::string bytes { std::istreambuf_iterator<char>(file), {} };
    const size_t chunk
        = words.size() > 2 ? size_t(std::max(1, number(words[2], 1))) : std::max<size_t>(1, bytes.size());
    for (size_t at = 0; at < bytes.size(); at += chunk)
        m_terminal->feed(std::string_view(bytes).substr(at, chunk));
    return std::string(done);
}

std::string Drive::resize(const Words& words)
{
    Size size = m_terminal->size();
    size.columns = number(words[1], size.columns);
    size.rows = number(words[2], size.rows);
    if (words.size() > 4) {
        size.cellWidth = number(words[3], size.cellWidth);
        size.cellHeight = number(words[4], size.cellHeight);
    }
    m_terminal->resize(size);
    return std::string(done);
}

std::string Drive::replies(const Words&)
{
    const std::string hex = hexOfBytes(m_terminal->replies());
    m_terminal->consumeReplies(hex.size() / 2);
    return Json().openObject().member("replies", hex).closeObject().text();
}

std::string Drive::dump(const Words& words)
{
    Json json;
    dumpJson(*m_terminal, words.size() > 1 && words[1] == "all" ? DumpPart::All : DumpPart::Screen, json);
    return json.text();
}

std::string Drive::events(const Words&)
{
    return m_events.take();
}

std::string Drive::damage(const Words&)
{
    Json json;
    json.openObject().key("rows").openArray();
    for (int row = 0; row < m_terminal->size().rows; ++row) {
        if (m_terminal->rowGeneration(row) > m_damageSeen)
            json.value(row);
    }
    json.closeArray().key("scroll").openArray();
    for (const ScrollLog::Entry& scroll : m_terminal->takeScrolls())
        json.openArray().value(scroll.top).value(scroll.bottom).value(scroll.lines).closeArray();
    m_damageSeen = m_terminal->generation();
    return json.closeArray().closeObject().text();
}

std::string Drive::character(const Words& words)
{
    uint32_t point = 0;
    const auto modifiers = modifiersOfName(words[2]);
    const auto [end, error] = std::from_chars(words[1].data(), words[1].data() + words[1].size(), point, 16);
    if (!modifiers || error != std::errc() || point > 0x10ffff)
        return failure("not a character with modifiers");
    KeyEvent event { .key = point, .modifiers = *modifiers };
    // An upper-case letter is its key with Shift.
    if (point >= 'A' && point <= 'Z') {
        event.key = point + 32;
        event.shifted = point;
    }
    appendUtf8(event.text, point);
    m_terminal->key(event);
    return std::string(done);
}

std::string Drive::key(const Words& words)
{
    const auto key = keyOfName(words[1]);
    const auto modifiers = modifiersOfName(words[2]);
    if (!key || !modifiers)
        return failure("not a key with modifiers");
    m_terminal->key({ .key = *key, .modifiers = *modifiers });
    return std::string(done);
}

std::string Drive::keyEvent(const Words& words)
{
    constexpr std::string_view actions[] = { "press", "repeat", "release" };
    const auto key = keyOfName(words[1]);
    const auto modifiers = modifiersOfName(words[2]);
    const auto action = std::find(std::begin(actions), std::end(actions), words[3]);
    if (!key || !modifiers || action == std::end(actions))
        return failure("not a key event");
    const auto word = [&](size_t index) {
        return index < words.size() && words[index] != "-" ? words[index] : "";
    };
    KeyEvent event { .key = *key, .modifiers = *modifiers, .action = KeyAction(action - actions + 1) };
    event.shifted = keyOfName(word(4)).value_or(0);
    event.base = keyOfName(word(5)).value_or(0);
    if (!bytesOfHex(word(6), event.text))
        return failure("the text is not hexadecimal");
    m_terminal->key(event);
    return std::string(done);
}

std::string Drive::mouse(const Words& words)
{
    constexpr std::string_view actions[] = { "press", "release", "move" };
    constexpr std::string_view buttons[]
        = { "none", "left", "middle", "right", "wheel-up", "wheel-down", "wheel-left", "wheel-right" };
    const auto action = std::find(std::begin(actions), std::end(actions), words[1]);
    const auto button = std::find(std::begin(buttons), std::end(buttons), words[2]);
    const auto modifiers = words.size() > 5 ? modifiersOfName(words[5]) : uint8_t(0);
    if (action == std::end(actions) || !modifiers)
        return failure("not a mouse event");
    MouseEvent event { .action = MouseAction(action - actions), .column = number(words[3]), .row = number(words[4]) };
    event.button = button == std::end(buttons) ? number(words[2]) : int(button - buttons);
    event.modifiers = *modifiers;
    const Size size = m_terminal->size();
    event.pixelX = words.size() > 7 ? number(words[6]) : event.column * size.cellWidth;
    event.pixelY = words.size() > 7 ? number(words[7]) : event.row * size.cellHeight;
    m_terminal->mouse(event);
    return std::string(done);
}

std::string Drive::paste(const Words& words)
{
    std::string text;
    if (words.size() > 1 && !bytesOfHex(words[1], text))
        return failure("not hexadecimal");
    m_terminal->paste(text);
    return std::string(done);
}

std::string Drive::focus(const Words& words)
{
    m_terminal->focus(words[1] == "in");
    return std::string(done);
}

std::string Drive::marks(const Words&)
{
    constexpr std::string_view kinds[] = { "prompt", "command", "output", "end" };
    Json json;
    json.openObject().key("marks").openArray();
    for (const Terminal::PromptRange& range : m_terminal->marks()) {
        json.openObject().member("kind", kinds[size_t(range.kind)]);
        json.key("start").openArray().value(range.row).value(range.column).closeArray();
        json.key("end").openArray().value(range.endRow).value(range.endColumn).closeArray();
        if (range.exitCode >= 0)
            json.member("exit", range.exitCode);
        json.closeObject();
    }
    return json.closeArray().closeObject().text();
}

std::string Drive::images(const Words&)
{
    Json json;
    json.openObject().member("images", m_terminal->images().count()).key("placements").openArray();
    for (const PlacementView& view : m_terminal->placements()) {
        json.openObject().member("image", view.image).member("placement", view.placement).member("z", view.z);
        json.key("rect").openArray().value(view.left).value(view.top).value(view.right).value(view.bottom).closeArray();
        json.key("src").openArray().value(view.sourceX).value(view.sourceY);
        json.value(view.sourceWidth).value(view.sourceHeight).closeArray().closeObject();
    }
    return json.closeArray().closeObject().text();
}

std::string Drive::image(const Words& words)
{
    const Image* image = m_terminal->images().find(uint32_t(number(words[1])));
    if (!image)
        return failure("no such image");
    const Bitmap& bitmap = image->shown();
    const std::string_view pixels(reinterpret_cast<const char*>(bitmap.pixels.data()), bitmap.bytes());
    Json json;
    json.openObject().member("width", bitmap.width).member("height", bitmap.height);
    return json.member("rgba", hexOfBytes(pixels)).closeObject().text();
}

std::string Drive::select(const Words& words)
{
    constexpr std::string_view modes[] = { "cell", "word", "line", "block" };
    const auto mode = std::find(std::begin(modes), std::end(modes), words[1] == "char" ? "cell" : words[1]);
    if (mode == std::end(modes))
        return failure("unknown mode");
    const Position from { number(words[2]), number(words[3]) };
    const Position to { number(words[4]), number(words[5]) };
    m_terminal->selection().set(SelectionMode(mode - modes), from, to);
    return Json().openObject().member("text", m_terminal->selection().text()).closeObject().text();
}

/// The pattern may contain spaces: options are the last words.
std::string Drive::search(const Words& words)
{
    auto kind = Pattern::Kind::Literal;
    auto sensitivity = Pattern::Case::Insensitive;
    size_t end = words.size();
    for (; end > 2 && (words[end - 1] == "regex" || words[end - 1] == "case"); --end) {
        if (words[end - 1] == "regex")
            kind = Pattern::Kind::Regex;
        else
            sensitivity = Pattern::Case::Sensitive;
    }
    const std::string_view text(
        words[1].data(), size_t(words[end - 1].data() + words[end - 1].size() - words[1].data()));
    auto pattern = Pattern::make(text, kind, sensitivity);
    if (!pattern)
        return failure("not a pattern");
    Json json;
    json.openObject().key("matches").openArray();
    constexpr size_t most = 1'000'000;
    for (const SearchMatch& match : m_terminal->search(*pattern, most)) {
        json.openArray().value(match.row).value(match.column);
        json.value(match.endRow).value(match.endColumn).closeArray();
    }
    return json.closeArray().closeObject().text();
}

}
