#include "Terminal/Core/Terminal.h"

#include "Terminal/Core/Emulator.h"
#include "Terminal/Input/KeyEncoder.h"
#include "Terminal/Input/Paste.h"

namespace corvane::terminal {

Terminal::Terminal(Size size, const Config& config)
    : m_emulator(std::make_unique<Emulator>(size, config))
{
}

Terminal::~Terminal() = default;

void Terminal::feed(std::string_view bytes)
{
    m_emulator->feed({ reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size() });
}

std::string_view Terminal::replies() const
{
    return m_emulator->replies;
}

void Terminal::consumeReplies(size_t count)
{
    m_emulator->replies.erase(0, count);
}

void Terminal::setListener(Listener* listener)
{
    static Listener silent;
    m_emulator->listener = listener ? listener : &silent;
}

const Config& Terminal::config() const
{
    return m_emulator->config;
}

bool Terminal::setOption(std::string_view name, std::string_view value)
{
    Emulator& t = *m_emulator;
    if (!t.config.set(name, value))
        return false;
    t.level = name == "vt-level" ? t.config.vtLevel : t.level;
    t.checksumExtension = name == "checksum-extension" ? t.config.checksumExtension : t.checksumExtension;
    t.history.setLimits({ t.config.scrollbackLines, t.config.scrollbackBytes });
    return true;
}

void Terminal::setColors(const PaletteState& colors, bool dark)
{
    Emulator& t = *m_emulator;
    const PaletteState before = std::exchange(t.palette.initial, colors);
    const auto follow = [](auto& current, const auto& old, const auto& now) {
        for (size_t i = 0; i < current.size(); ++i) {
            if (current[i] == old[i])
                current[i] = now[i];
        }
    };
    follow(t.palette.current.indexed, before.indexed, colors.indexed);
    follow(t.palette.current.special, before.special, colors.special);
    follow(t.palette.current.dynamic, before.dynamic, colors.dynamic);
    ++t.generation;
    if (std::exchange(t.config.darkColors, dark) != dark && t.modes.has(Mode::ColorSchemeReports))
        t.replyCsi("?997;", dark ? 1 : 2, 'n');
}

namespace {

/// User input is exempt from the limit on replies.
bool send(Emulator& terminal, const std::string& bytes)
{
    terminal.replies += bytes;
    return !bytes.empty();
}

}

bool Terminal::key(const KeyEvent& event)
{
    Emulator& t = *m_emulator;
    return send(t, encodeKey(event, { t.modes, t.screen->keyboard.current, t.modifyOtherKeys, t.eightBitReplies }));
}

bool Terminal::mouse(const MouseEvent& event)
{
    Emulator& t = *m_emulator;
    const bool isWheel = event.button == 4 || event.button == 5;
    if (isWheel && !tracksMouse(t.modes) && t.modes.has(Mode::AlternateScroll) && isAlternate())
        return event.action == MouseAction::Press && key({ .key = event.button == 4 ? keys::up : keys::down });
    return send(t, t.mouse.encode(event, t.modes));
}

bool Terminal::paste(std::string_view text)
{
    return send(*m_emulator, encodePaste(text, has(Mode::BracketedPaste)));
}

bool Terminal::focus(bool in)
{
    return has(Mode::FocusEvents) && send(*m_emulator, m_emulator->c1Text('[') + (in ? 'I' : 'O'));
}

bool Terminal::type(std::string_view text)
{
    return send(*m_emulator, std::string(text));
}

void Terminal::resize(Size size)
{
    m_emulator->resize(size);
}

Size Terminal::size() const
{
    return m_emulator->size;
}

void Terminal::reset()
{
    m_emulator->fullReset();
}

CursorState Terminal::cursor() const
{
    const Cursor& cursor = m_emulator->cursor;
    const Modes& modes = m_emulator->modes;
    return { cursor.row, cursor.column, modes.has(Mode::CursorVisible), m_emulator->cursorShape,
        modes.has(Mode::BlinkCursor), cursor.pendingWrap };
}

bool Terminal::has(Mode mode) const
{
    return m_emulator->modes.has(mode);
}

bool Terminal::isAlternate() const
{
    return m_emulator->screen == &m_emulator->alternate;
}

const std::string& Terminal::title() const
{
    return m_emulator->title;
}

const std::string& Terminal::icon() const
{
    return m_emulator->icon;
}

const PaletteState& Terminal::palette() const
{
    return m_emulator->palette.current;
}

size_t Terminal::historyRows() const
{
    return m_emulator->history.rows(m_emulator->columns());
}

void Terminal::readRow(int64_t row, RowView& view)
{
    m_emulator->readRow(row, view);
}

void Terminal::eachHistoryRow(const std::function<void(const RowView&)>& visit)
{
    Scrollback& history = m_emulator->history;
    HistoryView view(history, m_emulator->columns());
    for (uint64_t line = history.firstLine(); line < history.lineEnd(); ++line) {
        for (const RowView& row : view.readLine(line))
            visit(row);
    }
}

const Style& Terminal::style(StyleId id) const
{
    return m_emulator->styles[id];
}

std::string Terminal::text(Cell cell) const
{
    std::string text;
    if (cell.isCluster())
        text = encodeUtf8(m_emulator->clusters[cell.content()]);
    else if (cell.content())
        appendUtf8(text, cell.content());
    return text;
}

std::string_view Terminal::linkAddress(uint32_t link) const
{
    return m_emulator->links.address(link);
}

uint64_t Terminal::generation() const
{
    return m_emulator->generation;
}

uint64_t Terminal::rowGeneration(int row) const
{
    return m_emulator->screen->grid.row(row).changed;
}

std::vector<ScrollLog::Entry> Terminal::takeScrolls()
{
    return m_emulator->scrolls.take();
}

std::vector<Terminal::PromptRange> Terminal::marks()
{
    Emulator& t = *m_emulator;
    std::vector<PromptRange> ranges;
    for (const Emulator::Mark& mark : t.marks) {
        const auto place = t.find(t.primary, mark.anchor);
        if (!place)
            continue;
        const auto [row, column] = *place;
        if (!ranges.empty() && ranges.back().endRow == INT64_MAX) {
            ranges.back().endRow = row;
            ranges.back().endColumn = column;
            if (mark.kind == PromptMark::End)
                ranges.back().exitCode = mark.exitCode;
        }
        if (mark.kind != PromptMark::End)
            ranges.push_back({ mark.kind, row, column, INT64_MAX, 0, -1 });
    }
    if (!ranges.empty() && ranges.back().endRow == INT64_MAX) {
        ranges.back().endRow = t.cursor.row;
        ranges.back().endColumn = t.cursor.column;
    }
    return ranges;
}

Memory Terminal::memory() const
{
    const Emulator& t = *m_emulator;
    return { t.primary.grid.bytes() + t.alternate.grid.bytes(), t.history.bytes(),
        t.styles.bytes() + t.clusters.bytes() + t.links.bytes(), t.graphics.store().bytes() };
}

Selection& Terminal::selection()
{
    return m_emulator->selection;
}

std::vector<SearchMatch> Terminal::search(const Pattern& pattern, size_t most)
{
    SearchRun run(pattern, most);
    while (search(run)) { }
    return run.matches();
}

bool Terminal::search(SearchRun& run)
{
    return run.step(*m_emulator);
}

std::vector<PlacementView> Terminal::placements()
{
    return placementViews(*m_emulator);
}

const ImageStore& Terminal::images() const
{
    return m_emulator->graphics.store();
}

void Terminal::setPicture(uint32_t image, Bitmap bitmap)
{
    m_emulator->graphics.decoded(image, std::move(bitmap));
}

int64_t Terminal::tick(int64_t now)
{
    return m_emulator->tick(now);
}

bool Terminal::isFrozen() const
{
    return m_emulator->modes.has(Mode::SynchronizedOutput);
}

bool Terminal::compressHistory(size_t pages)
{
    return m_emulator->history.compress(pages);
}

const char* Terminal::fault() const
{
    const Emulator& t = *m_emulator;
    if (t.cursor.row < 0 || t.cursor.row >= t.rows() || t.cursor.column < 0 || t.cursor.column >= t.columns())
        return "the cursor is off the page";
    return t.screen->grid.fault();
}

}
