#include "Terminal/Graphics/Graphics.h"

#include "Terminal/Core/Emulator.h"
#include "Terminal/Graphics/ImageFile.h"
#include "Terminal/Graphics/PictureHeader.h"
#include "Terminal/Graphics/Png.h"

namespace corvane::terminal {

namespace {

std::unexpected<std::string> error(std::string text)
{
    return std::unexpected(std::move(text));
}

std::vector<uint8_t> withAlpha(const std::vector<uint8_t>& rgb)
{
    std::vector<uint8_t> rgba;
    rgba.reserve(rgb.size() / 3 * 4);
    for (size_t at = 0; at + 3 <= rgb.size(); at += 3)
        rgba.insert(rgba.end(), { rgb[at], rgb[at + 1], rgb[at + 2], 255 });
    return rgba;
}

int cellsFor(int pixels, int cell)
{
    return std::max(1, (pixels + cell - 1) / cell);
}

}

Graphics::Graphics(Emulator& terminal, size_t budget)
    : t(terminal)
    , m_store(budget)
{
    m_store.setReleaser([this](const Placement& placement) {
        if (placement.isVirtual || placement.parentImage)
            return;
        (placement.onAlternate ? t.alternate : t.primary).anchors.remove(placement.anchor);
    });
}

void Graphics::begin()
{
    m_first = true;
    m_inPayload = false;
    m_control.clear();
}

void Graphics::data(std::string_view data)
{
    if (m_first && !data.empty()) {
        m_isGraphics = data[0] == 'G';
        m_first = false;
        data.remove_prefix(1);
    }
    if (!m_isGraphics)
        return;
    if (!m_inPayload) {
        const size_t end = std::min(data.find(';'), data.size());
        if (m_control.size() + end <= maxControl)
            m_control.append(data.substr(0, end));
        if (end == data.size())
            return;
        data.remove_prefix(end + 1);
        m_inPayload = true;
    }
    // A little more than the budget is accepted, so that the reply can name the error.
    m_tooLarge |= m_payload.size() > m_store.budget();
    if (!m_tooLarge)
        m_decoder.decode(data, m_payload);
}

void Graphics::end(bool complete)
{
    if (!m_isGraphics || m_first)
        return;
    m_isGraphics = false;
    const GraphicsCommand part = GraphicsCommand::parse(m_control);
    if (!complete || part.number('m') == 0 || m_tooLarge) {
        const GraphicsCommand command = m_hasPending ? m_pending : part;
        m_hasPending = false;
        m_decoder.finish(m_payload);
        if (complete)
            run(command);
        m_payload = {};
        m_decoder = {};
        m_tooLarge = false;
    } else if (!m_hasPending) {
        m_pending = part;
        m_hasPending = true;
    }
}

void Graphics::run(const GraphicsCommand& command)
{
    const char action = command.letter('a', 't');
    uint32_t id = command.number('i');
    GraphicsResult result;
    if (command.has('i') && command.has('I') && id && command.number('I')) {
        result = error("EINVAL:both an id and a number");
    } else if (m_tooLarge) {
        result = error("EFBIG:too large");
    } else if (action == 't' || action == 'T' || action == 'q') {
        result = transmit(command, action == 'q', &id);
        if (result && action == 'T')
            result = put(command, id);
    } else if (action == 'p') {
        const Image* image = imageOf(command);
        id = image ? image->id : id;
        result = image ? put(command, id) : error("ENOENT:no such image");
    } else if (action == 'f') {
        result = addFrame(command, &id);
    } else if (action == 'a') {
        result = animate(command, &id);
    } else if (action == 'c') {
        result = compose(command, &id);
    } else if (action == 'd') {
        return remove(command);
    } else {
        result = error("EINVAL:no such action");
    }
    if (action == 'a' && result)
        return;
    answer(command, id, result);
}

void Graphics::answer(const GraphicsCommand& command, uint32_t id, const GraphicsResult& result)
{
    const uint32_t quiet = command.number('q');
    if ((result && quiet >= 1) || quiet >= 2 || (!command.number('i') && !command.number('I')))
        return;
    std::string keys = concat("i=", id);
    if (command.number('I'))
        keys += concat(",I=", command.number('I'));
    if (command.number('p'))
        keys += concat(",p=", command.number('p'));
    t.reply(concat("\x1b_G", keys, ';', result ? std::string("OK") : result.error(), "\x1b\\"));
}

Image* Graphics::imageOf(const GraphicsCommand& command)
{
    if (command.number('i'))
        return m_store.find(command.number('i'));
    return command.number('I') ? m_store.findNumber(command.number('I')) : nullptr;
}

/// The bitmap that the command contains or refers to.
std::expected<Bitmap, std::string> Graphics::load(const GraphicsCommand& command)
{
    std::vector<uint8_t> bytes = std::move(m_payload);
    m_payload = {};
    const char medium = command.letter('t', 'd');
    if (medium != 'd') {
        if (!t.config.allowImageFiles)
            return error("EPERM:files are not allowed");
        const auto source = medium == 'f' ? ImageSource::File
            : medium == 't'               ? ImageSource::TemporaryFile
                                          : ImageSource::SharedMemory;
        if (source == ImageSource::SharedMemory && medium != 's')
            return error("EINVAL:no such medium");
        auto read = readImageSource(source, { reinterpret_cast<const char*>(bytes.data()), bytes.size() },
            size_t(command.amount('O')), command.number('S'), m_store.budget());
        if (!read)
            return error(read.error());
        bytes = std::move(*read);
    }
    if (command.letter('o', ' ') == 'z') {
        auto inflated = inflateAll(bytes, m_store.budget());
        if (!inflated)
            return error("EINVAL:not a zlib stream");
        bytes = std::move(*inflated);
    }
    const uint32_t format = command.has('f') ? command.number('f') : 32;
    if (format == 100) {
        auto bitmap = decodePng(bytes);
        if (!bitmap)
            return error("EBADPNG:not a PNG within the limits");
        return std::move(*bitmap);
    }
    if (format != 24 && format != 32)
        return error("EINVAL:no such format");
    const int width = command.amount('s');
    const int height = command.amount('v');
    if (!Bitmap::isAllowed(width, height))
        return error("EINVAL:bad dimensions");
    const size_t expected = size_t(width) * size_t(height) * (format / 8);
    if (bytes.size() < expected)
        return error("ENODATA:less data than the dimensions say");
    bytes.resize(expected);
    return Bitmap { width, height, format == 24 ? withAlpha(bytes) : std::move(bytes) };
}

GraphicsResult Graphics::transmit(const GraphicsCommand& command, bool query, uint32_t* id)
{
    auto bitmap = load(command);
    if (!bitmap)
        return error(bitmap.error());
    if (query)
        return {};
    Image image;
    image.id = *id;
    image.number = command.number('I');
    image.frames.push_back({ std::move(*bitmap), 0 });
    if (!m_store.add(std::move(image), id))
        return error("EFBIG:larger than all images may be");
    return {};
}

GraphicsResult Graphics::put(const GraphicsCommand& command, uint32_t id)
{
    Image* const image = m_store.find(id);
    if (!image)
        return error("ENOENT:no such image");
    m_store.touch(*image);
    const Bitmap& bitmap = image->frames.front().bitmap;
    Placement placement;
    placement.image = id;
    placement.id = command.number('p');
    placement.sourceX = std::min(command.amount('x'), bitmap.width - 1);
    placement.sourceY = std::min(command.amount('y'), bitmap.height - 1);
    const int width = command.amount('w') ? command.amount('w') : bitmap.width;
    const int height = command.amount('h') ? command.amount('h') : bitmap.height;
    placement.sourceWidth = std::min(width, bitmap.width - placement.sourceX);
    placement.sourceHeight = std::min(height, bitmap.height - placement.sourceY);
    placement.offsetX = std::min(command.amount('X'), t.size.cellWidth - 1);
    placement.offsetY = std::min(command.amount('Y'), t.size.cellHeight - 1);
    placement.columns = std::min(command.amount('c'), Size::maxColumns);
    placement.rows = std::min(command.amount('r'), Size::maxRows);
    placement.z = command.integer('z');
    if (command.number('U') == 1) {
        placement.isVirtual = true;
        m_store.place(placement);
        return {};
    }
    if (command.number('P')) {
        const Placement* parent = m_store.findPlacement(command.number('P'), command.number('Q'));
        if (!parent)
            return error("ENOPARENT:no such placement");
        // Chains of parents that are too long or circular are refused.
        constexpr int maxDepth = 8;
        int depth = 1;
        for (const Placement* above = parent; above && above->parentImage; ++depth) {
            if (depth >= maxDepth)
                return error("ETOODEEP:too many relations");
            above = m_store.findPlacement(above->parentImage, above->parentPlacement);
        }
        for (const Placement* above = parent; above;) {
            if (above->image == id && above->id == placement.id)
                return error("ECYCLE:relative to itself");
            above = above->parentImage ? m_store.findPlacement(above->parentImage, above->parentPlacement) : nullptr;
        }
        placement.parentImage = command.number('P');
        placement.parentPlacement = command.number('Q');
        placement.parentColumns = std::clamp(command.integer('H'), -Size::maxColumns, Size::maxColumns);
        placement.parentRows = std::clamp(command.integer('V'), -Size::maxRows, Size::maxRows);
        m_store.place(placement);
        return {};
    }
    placeAtCursor(placement, *image, command.number('C') != 1, false);
    return {};
}

void Graphics::placeAtCursor(Placement placement, const Image& image, bool movesCursor, bool leavesBelow)
{
    const Bitmap& bitmap = image.frames.front().bitmap;
    if (placement.sourceWidth == 0) {
        placement.sourceWidth = bitmap.width;
        placement.sourceHeight = bitmap.height;
    }
    // If only one side is given, the aspect ratio determines the other.
    const int cellWidth = t.size.cellWidth;
    const int cellHeight = t.size.cellHeight;
    const bool isFree = placement.columns == 0 && placement.rows == 0;
    if (isFree) {
        placement.columns = cellsFor(placement.sourceWidth + placement.offsetX, cellWidth);
        placement.rows = cellsFor(placement.sourceHeight + placement.offsetY, cellHeight);
    } else if (placement.rows == 0) {
        const int64_t scaled = int64_t(placement.columns) * cellWidth * placement.sourceHeight / placement.sourceWidth;
        placement.rows = cellsFor(int(std::min<int64_t>(scaled, Bitmap::maxSide)), cellHeight);
    } else if (placement.columns == 0) {
        const int64_t scaled = int64_t(placement.rows) * cellHeight * placement.sourceWidth / placement.sourceHeight;
        placement.columns = cellsFor(int(std::min<int64_t>(scaled, Bitmap::maxSide)), cellWidth);
    }
    placement.onAlternate = t.screen == &t.alternate;
    dropLost(placement.onAlternate);
    placement.anchor = t.screen->anchors.add(t.cursorRow(), t.cursor.column);
    t.touchAll();
    const int column = t.cursor.column;
    m_store.place(placement);
    if (!movesCursor)
        return;
    for (int row = 1; row < placement.rows + leavesBelow; ++row)
        t.lineFeed();
    if (leavesBelow)
        t.moveTo(t.cursor.row, column);
    else
        t.moveTo(t.cursor.row, column + placement.columns);
}

void Graphics::beginSixel(const std::vector<int>& params)
{
    std::optional<uint32_t> background;
    if (params.size() < 2 || params[1] != 1)
        background = t.palette.current.dynamic[size_t(DynamicColor::Background)];
    const bool own = t.modes.has(Mode::PrivateColorRegisters);
    if (own)
        m_ownColors = SixelDecoder::vtColors();
    m_sixel.emplace(own ? m_ownColors : m_sharedColors, background);
}

void Graphics::sixelData(std::string_view data)
{
    if (m_sixel)
        m_sixel->feed(data);
}

void Graphics::endSixel(bool complete)
{
    if (!m_sixel)
        return;
    auto bitmap = m_sixel->finish();
    m_sixel.reset();
    uint32_t id = 0;
    if (!complete || !bitmap)
        return;
    Image image;
    image.frames.push_back({ std::move(*bitmap), 0 });
    if (!m_store.add(std::move(image), &id))
        return;
    // In display mode the picture is at the top left and the cursor does not move.
    const Cursor before = t.cursor;
    const bool display = t.modes.has(Mode::SixelDisplay);
    if (display)
        t.moveTo(0, 0);
    Placement placement;
    placement.image = id;
    placeAtCursor(placement, *m_store.find(id), !display, !t.modes.has(Mode::SixelCursorRight));
    if (display)
        t.cursor = before;
}

void Graphics::inlineImage(std::string_view arguments, std::string_view base64)
{
    bool isInline = false;
    bool movesCursor = true;
    Placement placement;
    const auto cells = [&](std::string_view value, int cell, int page) {
        int number = 0;
        const auto end = std::from_chars(value.data(), value.data() + value.size(), number).ptr;
        const std::string_view unit = value.substr(size_t(end - value.data()));
        number = std::clamp(number, 0, Bitmap::maxSide);
        return unit == "px" ? cellsFor(number, cell)
            : unit == "%"   ? std::max(1, page * std::min(number, 100) / 100)
                            : number;
    };
    while (!arguments.empty()) {
        const size_t end = std::min(arguments.find(';'), arguments.size());
        const std::string_view argument = arguments.substr(0, end);
        arguments.remove_prefix(std::min(end + 1, arguments.size()));
        const size_t equals = std::min(argument.find('='), argument.size() - !argument.empty());
        const std::string_view name = argument.substr(0, equals);
        const std::string_view value = argument.substr(std::min(equals + 1, argument.size()));
        if (name == "inline")
            isInline = value == "1";
        else if (name == "width" && value != "auto")
            placement.columns = std::min(cells(value, t.size.cellWidth, t.columns()), Size::maxColumns);
        else if (name == "height" && value != "auto")
            placement.rows = std::min(cells(value, t.size.cellHeight, t.rows()), Size::maxRows);
        else if (name == "doNotMoveCursor")
            movesCursor = value != "1";
    }
    if (!isInline)
        return;
    std::vector<uint8_t> bytes;
    Base64Decoder decoder;
    decoder.decode(base64, bytes);
    decoder.finish(bytes);
    auto bitmap = decodePng(bytes);
    const auto claimed = bitmap ? std::nullopt : pictureSize(bytes);
    if (!bitmap && (!claimed || !Bitmap::isAllowed(claimed->width, claimed->height)))
        return;
    // A picture that is decoded elsewhere has its place at once and is a transparent pixel meanwhile.
    Image image;
    image.frames.push_back({ bitmap ? std::move(*bitmap) : Bitmap { 1, 1, std::vector<uint8_t>(4) }, 0 });
    if (!m_store.add(std::move(image), &placement.image))
        return;
    const uint32_t id = placement.image;
    if (claimed) {
        placement.sourceWidth = claimed->width;
        placement.sourceHeight = claimed->height;
    }
    placeAtCursor(placement, *m_store.find(id), movesCursor, false);
    if (!claimed)
        return;
    m_store.showWhole(id);
    t.out().imageToDecode(id, claimed->width, claimed->height, bytes);
}

void Graphics::beginInlineImage(std::string_view arguments)
{
    m_inline = { arguments.size() <= maxControl, std::string(arguments.substr(0, maxControl)), {} };
}

void Graphics::addToInlineImage(std::string_view base64)
{
    m_inline.isComing &= m_inline.base64.size() + base64.size() <= maxInline;
    if (m_inline.isComing)
        m_inline.base64.append(base64);
}

void Graphics::endInlineImage()
{
    const auto whole = std::exchange(m_inline, {});
    if (whole.isComing)
        inlineImage(whole.arguments, whole.base64);
}

void Graphics::decoded(uint32_t id, Bitmap bitmap)
{
    Image* const image = m_store.find(id);
    if (!image || !Bitmap::isAllowed(bitmap.width, bitmap.height)
        || bitmap.bytes() != size_t(bitmap.width) * size_t(bitmap.height) * 4)
        return;
    image->frames.assign(1, { std::move(bitmap), 0 });
    image->current = 0;
    m_store.pixelsChanged(*image);
    m_store.showWhole(id);
    if (!m_store.fit(*image))
        m_store.remove(id);
    ++t.generation;
    t.touchAll();
}

void Graphics::clear()
{
    m_store.clear();
    m_inline = {};
    m_payload = {};
    m_hasPending = false;
}

void Graphics::dropLost(bool alternate)
{
    const Anchors& anchors = (alternate ? t.alternate : t.primary).anchors;
    const auto isLost = [&](const Placement& placement) {
        if (placement.isVirtual || placement.parentImage || placement.onAlternate != alternate)
            return false;
        const Place& place = anchors[placement.anchor];
        return place.where == Place::Where::Gone
            || (place.where == Place::Where::InHistory && place.line < t.history.firstLine());
    };
    m_store.removePlacements(isLost, false);
}

}
