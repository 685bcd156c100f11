#include "Terminal/Core/Functions.h"
#include "Terminal/Core/Sgr.h"

namespace corvane::terminal {

namespace {

constexpr std::string_view versionText = "Corvane(0.1)";

std::string cursorReport(const Emulator& t)
{
    return concat(t.cursor.row - t.originRow() + 1, ';', t.cursor.column - t.originColumn() + 1);
}

/// DECRQSS: the setting of the control function with these final characters; nothing if it is unknown.
std::optional<std::string> statusOf(const Emulator& t, std::string_view function)
{
    if (function == "m")
        return sgrText(t.cursor.pen) + 'm';
    if (function == "r")
        return concat(t.margins.top + 1, ';', t.margins.bottom, 'r');
    if (function == "s")
        return concat(t.margins.left + 1, ';', t.margins.right, 's');
    if (function == "t")
        return concat(std::max(24, t.rows()), 't');
    if (function == "$|")
        return concat(t.columns() > 80 ? 132 : 80, "$|");
    if (function == "*|")
        return concat(t.rows(), "*|");
    if (function == "\"p")
        return concat(60 + t.level / 100, ';', t.eightBitReplies ? 0 : 1, "\"p");
    if (function == "\"q")
        return concat(t.cursor.pen.has(Style::Protected) ? 1 : 0, "\"q");
    if (function == " q")
        return concat(int(t.cursorShape) + (t.modes.has(Mode::BlinkCursor) ? 0 : 1), " q");
    if (function == "*x")
        return concat(t.attributesByRectangle ? 2 : 1, "*x");
    if (function == "$}")
        return "0$}";
    if (function == "$~")
        return "0$~";
    if (function == ">4m")
        return concat(">4;", t.modifyOtherKeys, 'm');
    return {};
}

/// XTGETTCAP: the value of a capability, by its terminfo or termcap name.
std::optional<std::string> capability(const Emulator& t, std::string_view name)
{
    constexpr struct {
        std::string_view name;
        std::string_view value;
    } texts[] = {
        { "TN", "xterm-256color" },
        { "name", "xterm-256color" },
        { "Co", "256" },
        { "colors", "256" },
        { "RGB", "8/8/8" },
        { "Tc", "" },
        { "Su", "" },
        { "Smulx", "\x1b[4:%p1%dm" },
        { "Setulc", "\x1b[58:2::%p1%{65536}%/%d:%p1%{256}%/%{255}%&%d:%p1%{255}%&%d%;m" },
        { "Ss", "\x1b[%p1%d q" },
        { "Se", "\x1b[2 q" },
        { "Ms", "\x1b]52;%p1%s;%p2%s\x1b\\" },
        { "indn", "\x1b[%p1%dS" },
        { "Sync", "\x1b[?2026%?%p1%{1}%-%tl%eh%;" },
        { "ku", "\x1bOA" },
        { "kcuu1", "\x1bOA" },
        { "kd", "\x1bOB" },
        { "kcud1", "\x1bOB" },
        { "kr", "\x1bOC" },
        { "kcuf1", "\x1bOC" },
        { "kl", "\x1bOD" },
        { "kcub1", "\x1bOD" },
        { "kh", "\x1bOH" },
        { "khome", "\x1bOH" },
        { "@7", "\x1bOF" },
        { "kend", "\x1bOF" },
        { "kP", "\x1b[5~" },
        { "kpp", "\x1b[5~" },
        { "kN", "\x1b[6~" },
        { "knp", "\x1b[6~" },
        { "kI", "\x1b[2~" },
        { "kich1", "\x1b[2~" },
        { "kD", "\x1b[3~" },
        { "kdch1", "\x1b[3~" },
        { "k1", "\x1bOP" },
        { "kf1", "\x1bOP" },
        { "k2", "\x1bOQ" },
        { "kf2", "\x1bOQ" },
        { "k3", "\x1bOR" },
        { "kf3", "\x1bOR" },
        { "k4", "\x1bOS" },
        { "kf4", "\x1bOS" },
        { "k5", "\x1b[15~" },
        { "kf5", "\x1b[15~" },
        { "k6", "\x1b[17~" },
        { "kf6", "\x1b[17~" },
        { "k7", "\x1b[18~" },
        { "kf7", "\x1b[18~" },
        { "k8", "\x1b[19~" },
        { "kf8", "\x1b[19~" },
        { "k9", "\x1b[20~" },
        { "kf9", "\x1b[20~" },
        { "k;", "\x1b[21~" },
        { "kf10", "\x1b[21~" },
        { "F1", "\x1b[23~" },
        { "kf11", "\x1b[23~" },
        { "F2", "\x1b[24~" },
        { "kf12", "\x1b[24~" },
    };
    if (name == "kb" || name == "kbs")
        return t.modes.has(Mode::BackspaceKey) ? "\b" : "\x7f";
    for (const auto& entry : texts) {
        if (entry.name == name)
            return std::string(entry.value);
    }
    return {};
}

}

void deviceAttributes1(Emulator& t, const Sequence& s)
{
    if (s.params.at(0) != 0)
        return;
    if (t.level < 200)
        return t.replyCsi("?1;2c");
    // 132 columns, printer, Sixel, selective erase, national sets, technical set, windows, colour, and the extensions
    // of the level.
    std::string features = ";1;2;4;6;9;15;22";
    if (t.level >= 400)
        features = ";1;2;4;6;9;15;16;17;18;21;22;28;29;52";
    t.replyCsi('?', 60 + t.level / 100, features, 'c');
}

void deviceAttributes2(Emulator& t, const Sequence& s)
{
    if (s.params.at(0) != 0)
        return;
    const int level = t.config.vtLevel;
    const int kind = level >= 525 ? 65
        : level >= 520            ? 64
        : level >= 510            ? 61
        : level >= 400            ? 41
        : level >= 300            ? 24
                                  : 1;
    t.replyCsi('>', level < 200 ? 0 : kind, ";380;0c");
}

void deviceAttributes3(Emulator& t, const Sequence& s)
{
    if (s.params.at(0) == 0 && t.level >= 400)
        t.replyDcs("!|00000000");
}

void terminalVersion(Emulator& t, const Sequence& s)
{
    if (s.params.at(0) == 0)
        t.replyDcs(">|", versionText);
}

void terminalParameters(Emulator& t, const Sequence& s)
{
    const int kind = s.params.at(0);
    if (kind <= 1)
        t.replyCsi(kind + 2, ";1;1;128;128;1;0x");
}

void statusReport(Emulator& t, const Sequence& s)
{
    if (s.params.at(0) == 5)
        t.replyCsi("0n");
    else if (s.params.at(0) == 6)
        t.replyCsi(cursorReport(t), 'R');
}

void decStatusReport(Emulator& t, const Sequence& s)
{
    switch (s.params.at(0)) {
    case 6:
        return t.replyCsi('?', cursorReport(t), t.level >= 400 ? ";1R" : "R");
    case 15: // printer: none
        return t.replyCsi("?13n");
    case 25: // user-defined keys: locked
        return t.replyCsi("?21n");
    case 26: // keyboard: North American
        return t.replyCsi(t.level >= 400 ? "?27;1;0;0n" : "?27;1n");
    case 53: // locator: none
    case 55:
        return t.replyCsi("?50n");
    case 56:
        return t.replyCsi("?57;0n");
    case 62: // space for macros
        return t.replyCsi("0*{");
    case 63: // checksum of the macros
        return t.replyDcs(s.params.at(1), "!~0000");
    case 75: // data integrity
        return t.replyCsi("?70n");
    case 85: // sessions
        return t.replyCsi("?83n");
    case 996:
        return t.replyCsi("?997;", t.config.darkColors ? 1 : 2, 'n');
    default:
        return;
    }
}

void requestStatus(Emulator& t, const Sequence&, std::string_view function)
{
    const auto status = statusOf(t, function);
    t.replyDcs(status ? "1$r" : "0$r", status.value_or(""));
}

void requestTermcap(Emulator& t, const Sequence&, std::string_view names)
{
    constexpr size_t maxNames = 64;
    for (size_t count = 0; !names.empty() && count < maxNames; ++count) {
        const size_t end = std::min(names.find(';'), names.size());
        const std::string_view digits = names.substr(0, end);
        names.remove_prefix(std::min(end + 1, names.size()));
        std::string name;
        const bool readable = bytesOfHex(digits, name);
        const auto value = readable ? capability(t, name) : std::nullopt;
        if (!value)
            t.replyDcs("0+r", digits);
        else if (value->empty())
            t.replyDcs("1+r", digits);
        else
            t.replyDcs("1+r", digits, '=', hexOfBytes(*value));
    }
}

void setTermcap(Emulator&, const Sequence&, std::string_view)
{
    // Key strings follow the current modes, so no other terminal's description is accepted.
}

void userKeys(Emulator&, const Sequence&, std::string_view)
{
    // User-defined keys are locked, as the status report says.
}

void displayedExtent(Emulator& t, const Sequence&)
{
    t.replyCsi(t.rows(), ';', t.columns(), ";1;1;1\"w");
}

void terminalStateReport(Emulator& t, const Sequence& s)
{
    if (s.params.at(0) != 2)
        return;
    // DECCTR: the colour table in RGB percentages
    std::string table;
    for (int i = 0; i < 16; ++i) {
        const Rgb color = t.palette.current.indexed[size_t(i)];
        const auto percent = [&](int shift) {
            return ((color >> shift & 0xff) * 100 + 127) / 255;
        };
        table += concat(i ? "/" : "", i, ";2;", percent(16), ';', percent(8), ';', percent(0));
    }
    t.replyDcs("2$s", table);
}

/// DECRQPSR: the cursor and its state (DECCIR), or the tab stops (DECTABSR).
void presentationReport(Emulator& t, const Sequence& s)
{
    if (s.params.at(0) == 2) {
        std::string stops;
        for (size_t column = 0; column < t.tabs.size(); ++column) {
            if (t.tabs[column])
                stops += concat(stops.empty() ? "" : "/", column + 1);
        }
        return t.replyDcs("2$u", stops);
    }
    if (s.params.at(0) != 1)
        return;
    const Style& pen = t.cursor.pen;
    const Charsets& sets = t.cursor.charsets;
    const char rendition = char(0x40 + pen.has(Style::Bold) + 2 * (pen.underline != Underline::None)
        + 4 * pen.has(Style::Blink) + 8 * pen.has(Style::Reverse));
    const char protection = char(0x40 + pen.has(Style::Protected));
    const char flags = char(
        0x40 + t.modes.has(Mode::Origin) + 2 * (sets.single == 2) + 4 * (sets.single == 3) + 8 * t.cursor.pendingWrap);
    char are96 = 0x40;
    std::string designations;
    for (int i = 0; i < 4; ++i) {
        are96 = char(are96 | sets.are96[i] << i);
        if (sets.intermediates[i])
            designations += sets.intermediates[i];
        designations += sets.finals[i];
    }
    t.replyDcs("1$u", cursorReport(t), ";1;", rendition, ';', protection, ';', flags, ';', int(sets.left), ';',
        int(sets.right), ';', are96, ';', designations);
}

namespace {

std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    while (true) {
        const size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos || parts.size() == 4096)
            return parts;
        text.remove_prefix(end + 1);
    }
}

int number(std::string_view text)
{
    int value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

}

void restorePresentation(Emulator& t, const Sequence& head, std::string_view data)
{
    if (head.params.at(0) == 2) {
        t.tabs.assign(t.tabs.size(), false);
        for (const std::string_view stop : split(data, '/')) {
            const int column = number(stop);
            if (column >= 1 && column <= t.columns())
                t.tabs[size_t(column - 1)] = true;
        }
        return;
    }
    const std::vector<std::string_view> parts = split(data, ';');
    if (head.params.at(0) != 1 || parts.size() < 10)
        return;
    const auto bits = [&](size_t part) {
        return parts[part].empty() ? 0 : parts[part].back() - 0x40;
    };
    Style& pen = t.cursor.pen;
    pen.set(Style::Bold, bits(3) & 1);
    pen.underline = bits(3) & 2 ? Underline::Single : Underline::None;
    pen.set(Style::Blink, bits(3) & 4);
    pen.set(Style::Reverse, bits(3) & 8);
    pen.set(Style::Protected, bits(4) & 1);
    t.penChanged = true;
    t.modes.set(Mode::Origin, bits(5) & 1);
    Charsets& sets = t.cursor.charsets;
    sets.single = bits(5) & 2 ? 2 : bits(5) & 4 ? 3 : 0;
    sets.left = uint8_t(number(parts[6]) & 3);
    sets.right = uint8_t(number(parts[7]) & 3);
    std::string_view designations = parts[9];
    for (int i = 0; i < 4 && !designations.empty(); ++i) {
        const bool hasIntermediate = designations[0] < 0x30 && designations.size() > 1;
        sets.intermediates[i] = hasIntermediate ? designations[0] : char(0);
        sets.finals[i] = designations[hasIntermediate];
        sets.are96[i] = bits(8) >> i & 1;
        sets.designated[i] = charsetOf(sets.intermediates[i], sets.finals[i], sets.are96[i]);
        designations.remove_prefix(hasIntermediate ? 2 : 1);
    }
    t.updatePlain();
    t.moveToAddress(number(parts[0]) - 1, number(parts[1]) - 1);
    t.cursor.pendingWrap = bits(5) & 8;
}

}
