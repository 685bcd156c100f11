// Operating system commands: the table, then the handlers.

#include "Terminal/Core/Emulator.h"
#include "Terminal/Text/Base64.h"

namespace corvane::terminal {

namespace {

/// `text` follows the number and its semicolon.
using OscFunction = void(Emulator& t, int number, std::string_view text);

OscFunction oscTitle, oscPalette, oscSpecial, oscDirectory, oscLink, oscNotify, oscDynamic, oscPointer, oscClipboard,
    oscKittyNotify, oscResetPalette, oscResetSpecial, oscResetDynamic, oscPrompt, oscRxvtNotify, oscIterm,
    oscPushColors, oscPopColors;

constexpr struct {
    int first;
    int last;
    OscFunction* function;
} functions[] = {
    { 0, 2, oscTitle },
    { 4, 4, oscPalette },
    { 5, 5, oscSpecial },
    { 7, 7, oscDirectory },
    { 8, 8, oscLink },
    { 9, 9, oscNotify },
    { 10, 19, oscDynamic },
    { 22, 22, oscPointer },
    { 52, 52, oscClipboard },
    { 99, 99, oscKittyNotify },
    { 104, 104, oscResetPalette },
    { 105, 105, oscResetSpecial },
    { 110, 119, oscResetDynamic },
    { 133, 133, oscPrompt },
    { 777, 777, oscRxvtNotify },
    { 1337, 1337, oscIterm },
    { 30001, 30001, oscPushColors },
    { 30101, 30101, oscPopColors },
};

std::string_view takePart(std::string_view& text, char separator = ';')
{
    const size_t end = std::min(text.find(separator), text.size());
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

int toNumber(std::string_view text, int fallback = -1)
{
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? value : fallback;
}

/// Removes C0 and C1 control characters and replaces invalid UTF-8. `text` must not be part of `clean`.
void cleanInto(std::string& clean, std::string_view text, size_t most)
{
    text = text.substr(0, most);
    const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data());
    if (Kernels::instance().printable(bytes, text.size()) == text.size()) {
        clean.assign(text);
        return;
    }
    clean.clear();
    for (const char32_t point : decodeUtf8(text)) {
        if (point >= 0x20 && (point < 0x7f || point >= 0xa0))
            appendUtf8(clean, point);
    }
}

std::string cleaned(std::string_view text, size_t most)
{
    std::string clean;
    cleanInto(clean, text, most);
    return clean;
}

void paletteChanged(Emulator& t)
{
    t.out().paletteChanged();
    t.touchAll();
}

void oscTitle(Emulator& t, int number, std::string_view text)
{
    std::string decoded;
    if (t.titleCoding.setHex) {
        if (!bytesOfHex(text, decoded))
            return;
        text = decoded;
    }
    if (number == 1)
        return t.setIcon(text);
    t.setTitle(text);
    if (number == 0) {
        t.icon = t.title;
        t.out().iconChanged(t.icon);
    }
}

/// Numbers from 256 are the special colours.
Rgb* paletteEntry(Emulator& t, int index)
{
    PaletteState& colors = t.palette.current;
    if (index >= 0 && index < 256)
        return &colors.indexed[size_t(index)];
    if (index >= 256 && index < 256 + specialColors)
        return &colors.special[size_t(index - 256)];
    return nullptr;
}

void setPalette(Emulator& t, int number, int base, std::string_view text)
{
    bool changed = false;
    while (!text.empty()) {
        const int index = toNumber(takePart(text));
        const std::string_view spec = takePart(text);
        Rgb* const entry = index < 0 ? nullptr : paletteEntry(t, index + base);
        if (!entry)
            continue;
        if (spec == "?") {
            t.replyOsc(number, ';', index, ';', colorSpec(*entry));
        } else if (const auto color = parseColor(spec)) {
            changed |= *entry != *color;
            *entry = *color;
        }
    }
    if (changed)
        paletteChanged(t);
}

void oscPalette(Emulator& t, int number, std::string_view text)
{
    setPalette(t, number, 0, text);
}

void oscSpecial(Emulator& t, int number, std::string_view text)
{
    setPalette(t, number, 256, text);
}

void resetPalette(Emulator& t, int base, int count, std::string_view text)
{
    PaletteState& now = t.palette.current;
    const PaletteState& then = t.palette.initial;
    const auto reset = [&](int index) {
        if (index < 256)
            now.indexed[size_t(index)] = then.indexed[size_t(index)];
        else
            now.special[size_t(index - 256)] = then.special[size_t(index - 256)];
    };
    if (text.empty()) {
        for (int index = base; index < base + count; ++index)
            reset(index);
    }
    while (!text.empty()) {
        const int index = toNumber(takePart(text));
        if (index >= 0 && index + base < 256 + specialColors)
            reset(index + base);
    }
    paletteChanged(t);
}

void oscResetPalette(Emulator& t, int, std::string_view text)
{
    resetPalette(t, 0, 256, text);
}

void oscResetSpecial(Emulator& t, int, std::string_view text)
{
    resetPalette(t, 256, specialColors, text);
}

/// Additional colours in one command apply to the next numbers.
void oscDynamic(Emulator& t, int number, std::string_view text)
{
    bool changed = false;
    for (; number <= 19 && !text.empty(); ++number) {
        Rgb& entry = t.palette.current.dynamic[size_t(number - 10)];
        const std::string_view spec = takePart(text);
        if (spec == "?") {
            t.replyOsc(number, ';', colorSpec(entry));
        } else if (const auto color = parseColor(spec)) {
            changed |= entry != *color;
            entry = *color;
        }
    }
    if (changed)
        paletteChanged(t);
}

void oscResetDynamic(Emulator& t, int number, std::string_view)
{
    const auto index = size_t(number - 110);
    t.palette.current.dynamic[index] = t.palette.initial.dynamic[index];
    paletteChanged(t);
}

void oscPushColors(Emulator& t, int, std::string_view)
{
    Palette& palette = t.palette;
    if (palette.stackTop >= Palette::maxStack)
        return;
    palette.stack.resize(size_t(palette.stackTop), palette.initial);
    palette.stack.push_back(palette.current);
    ++palette.stackTop;
}

void oscPopColors(Emulator& t, int, std::string_view)
{
    Palette& palette = t.palette;
    if (palette.stackTop == 0)
        return;
    palette.current = palette.stack[size_t(--palette.stackTop)];
    paletteChanged(t);
}

void oscDirectory(Emulator& t, int, std::string_view text)
{
    t.out().directoryChanged(cleaned(text, LinkTable::maxAddress));
}

void oscLink(Emulator& t, int, std::string_view text)
{
    std::string_view id;
    std::string_view params;
    if (text.starts_with(';'))
        text.remove_prefix(1); // the usual case, without a search
    else
        params = takePart(text);
    while (!params.empty()) {
        const std::string_view param = takePart(params, ':');
        if (param.starts_with("id="))
            id = param.substr(3);
    }
    t.cursor.pen.link = t.links.intern(id, text);
    t.penChanged = true;
    t.out().link(text.size() <= LinkTable::maxAddress ? text : std::string_view());
}

/// iTerm2's notification, or ConEmu's progress if it starts with "4".
void oscNotify(Emulator& t, int, std::string_view text)
{
    constexpr size_t most = 4096;
    std::string_view rest = text;
    const std::string_view kind = takePart(rest);
    if (kind == "4") {
        const int state = toNumber(takePart(rest), 0);
        const int percent = std::clamp(toNumber(takePart(rest), 0), 0, 100);
        if (state >= 0 && state <= 4)
            t.out().progress(ProgressState(state), percent);
        return;
    }
    if (kind == "9" && !rest.empty())
        return t.out().directoryChanged(cleaned(rest, LinkTable::maxAddress));
    t.out().notification({ {}, {}, cleaned(text, most) });
}

void oscRxvtNotify(Emulator& t, int, std::string_view text)
{
    if (takePart(text) != "notify")
        return;
    const std::string title = cleaned(takePart(text), 1024);
    t.out().notification({ {}, title, cleaned(text, 4096) });
}

/// Kitty's notification; title and body may arrive in chunks.
void oscKittyNotify(Emulator& t, int, std::string_view text)
{
    std::string_view metadata = takePart(text);
    std::string_view id;
    std::string_view kind = "title";
    bool done = true;
    bool encoded = false;
    while (!metadata.empty()) {
        const std::string_view part = takePart(metadata, ':');
        if (part.size() < 2 || part[1] != '=')
            continue;
        const std::string_view value = part.substr(2);
        if (part[0] == 'i')
            id = value.substr(0, 128);
        else if (part[0] == 'p')
            kind = value;
        else if (part[0] == 'd')
            done = value != "0";
        else if (part[0] == 'e')
            encoded = value == "1";
    }
    if (kind == "?")
        return t.replyOsc("99;i=", cleaned(id, 128), ":p=?;o=always:p=title,body");
    Emulator::PendingNotification& pending = t.pendingNotification;
    if (pending.id != id)
        pending = { std::string(id), {}, {} };
    if (kind == "title" || kind == "body") {
        std::string& target = kind == "title" ? pending.title : pending.body;
        if (target.size() < 4096)
            target += cleaned(encoded ? decodeBase64(text) : std::string(text), 4096);
    }
    if (!done)
        return;
    const Emulator::PendingNotification whole = std::exchange(pending, {});
    if (!whole.title.empty() || !whole.body.empty())
        t.out().notification({ whole.id, whole.title, whole.body });
}

void oscPointer(Emulator& t, int, std::string_view text)
{
    if (text == "?__current__")
        return t.replyOsc("22;", t.pointerShape);
    if (text.starts_with('?'))
        return;
    const std::string shape = cleaned(text, 64);
    t.pointerShape = shape;
    t.out().pointerShape(shape);
}

/// The listener decides about writes. Reads get no answer.
void oscClipboard(Emulator& t, int, std::string_view text)
{
    const std::string_view selection = takePart(text);
    if (text == "?" || !t.config.allowClipboardWrite)
        return;
    t.out().clipboardWrite(cleaned(selection, 16), decodeBase64(text));
}

void oscPrompt(Emulator& t, int, std::string_view text)
{
    const std::string_view kind = takePart(text);
    if (kind == "A" || kind == "N")
        t.addMark(PromptMark::Prompt, -1,
            text.find("redraw=0") == std::string_view::npos ? Emulator::Redraw::Prompt : Emulator::Redraw::Nothing);
    else if (kind == "B" || kind == "I")
        t.addMark(PromptMark::Input, -1);
    else if (kind == "C")
        t.addMark(PromptMark::Output, -1);
    else if (kind == "D")
        t.addMark(PromptMark::End, toNumber(takePart(text), -1));
}

void oscIterm(Emulator& t, int, std::string_view text)
{
    if (text.starts_with("CurrentDir="))
        return t.out().directoryChanged(cleaned(text.substr(11), LinkTable::maxAddress));
    if (text.starts_with("File=")) {
        const size_t colon = std::min(text.find(':'), text.size());
        return t.graphics.inlineImage(text.substr(5, colon - 5), text.substr(std::min(colon + 1, text.size())));
    }
    if (text.starts_with("MultipartFile="))
        return t.graphics.beginInlineImage(text.substr(14));
    if (text.starts_with("FilePart="))
        return t.graphics.addToInlineImage(text.substr(9));
    if (text == "FileEnd")
        return t.graphics.endInlineImage();
    if (text == "SetMark")
        return t.addMark(PromptMark::Prompt, -1);
    if (text.starts_with("ReportCellSize"))
        return t.replyOsc("1337;ReportCellSize=", t.size.cellHeight, ".0;", t.size.cellWidth, ".0;1.0");
}

}

void Emulator::osc(std::string_view text, StringEnd end)
{
    constexpr int tooLarge = 1'000'000;
    size_t digits = 0;
    int number = 0;
    for (; digits < text.size() && uint8_t(text[digits] - '0') < 10; ++digits)
        number = std::min(number * 10 + (text[digits] - '0'), tooLarge);
    if (digits == 0 || (digits < text.size() && text[digits] != ';'))
        return;
    text.remove_prefix(std::min(digits + 1, text.size()));
    for (const auto& entry : functions) {
        if (number < entry.first || number > entry.last)
            continue;
        answersWithBell = end == StringEnd::Bell;
        return entry.function(*this, number, text);
    }
}

void Emulator::setTitle(std::string_view text)
{
    cleanInto(title, text, maxTitle);
    listener->titleChanged(title);
}

void Emulator::setIcon(std::string_view text)
{
    cleanInto(icon, text, maxTitle);
    listener->iconChanged(icon);
}

void Emulator::addMark(PromptMark kind, int exitCode, Redraw redraw)
{
    listener->promptMark(kind, exitCode);
    if (screen != &primary)
        return;
    if (marks.size() == maxMarks) {
        primary.anchors.remove(marks.front().anchor);
        marks.pop_front();
    }
    marks.push_back({ kind, exitCode, redraw, primary.anchors.add(cursorRow(), cursor.column) });
}

}
