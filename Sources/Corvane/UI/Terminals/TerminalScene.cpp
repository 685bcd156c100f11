#include "UI/Terminals/TerminalScene.h"

#include <QQuickWindow>

namespace corvane {

using namespace terminal;

namespace {

void clear(QSGNode* group)
{
    while (QSGNode* const child = group->firstChild()) {
        group->removeChildNode(child);
        delete child;
    }
}

QColor opaque(Rgb color)
{
    return QColor(QRgb(0xff000000 | color));
}

}

TerminalScene::TerminalScene()
    : m_ground(new QSGTransformNode)
    , m_below(new QSGTransformNode)
    , m_rows(new QSGTransformNode)
    , m_above(new QSGTransformNode)
    , m_marks(new QSGTransformNode)
{
    // The software renderer can only insert later children below nodes that have a geometry themselves.
    for (QSGNode* group : { m_ground, m_below, m_rows, m_above, m_marks })
        appendChildNode(group);
}

// The nodes are destroyed before the material that they share.
TerminalScene::~TerminalScene()
{
    clear(m_rows);
}

void TerminalScene::update(const TerminalItem& item)
{
    if (!m_groundRectangle) {
        m_groundRectangle = item.window()->createRectangleNode();
        m_ground->appendChildNode(m_groundRectangle);
    }
    m_groundRectangle->setRect(item.boundingRect());
    m_groundRectangle->setColor(opaque(item.m_look.ground()));
    updateAtlas(item);
    updateRows(item);
    updateImages(item);
    updateMarks(item);
}

void TerminalScene::updateAtlas(const TerminalItem& item)
{
    const TerminalAtlas& atlas = item.m_painter->atlas();
    if (!item.m_drawsQuads || (m_material.atlas && m_material.version == atlas.version()))
        return;
    m_material.atlas.reset(item.window()->createTextureFromImage(atlas.picture()));
    m_material.version = atlas.version();
    for (QSGTransformNode* const row : std::as_const(m_rowNodes))
        row->firstChild()->markDirty(QSGNode::DirtyMaterial);
}

/// Rows that are still shown keep their nodes.
void TerminalScene::updateRows(const TerminalItem& item)
{
    QHash<uint64_t, QSGTransformNode*> kept;
    for (size_t i = 0; i < item.m_strips.size(); ++i) {
        const TerminalItem::Strip& strip = item.m_strips[i];
        QSGTransformNode* node = m_rowNodes.take(strip.number);
        if (!node) {
            node = new QSGTransformNode;
            // The software renderer reads the texture as soon as the node is in the scene.
            node->appendChildNode(rowNode(item, strip));
            m_rows->appendChildNode(node);
        }
        QMatrix4x4 place;
        place.translate(0, float(item.cellRect(int(i), 0).y()));
        if (node->matrix() != place)
            node->setMatrix(place);
        kept.insert(strip.number, node);
    }
    for (QSGTransformNode* const gone : std::as_const(m_rowNodes)) {
        m_rows->removeChildNode(gone);
        delete gone;
    }
    m_rowNodes = kept;
}

QSGNode* TerminalScene::rowNode(const TerminalItem& item, const TerminalItem::Strip& strip)
{
    if (strip.picture.isNull())
        return new TerminalTextNode(m_material, strip.quads, item.m_ratio);
    QSGImageNode* const node = item.window()->createImageNode();
    node->setOwnsTexture(true);
    node->setTexture(item.window()->createTextureFromImage(strip.picture));
    node->setSourceRect(strip.picture.rect());
    node->setRect(QRectF(QPointF(), QSizeF(strip.picture.size()) / item.m_ratio));
    return node;
}

void TerminalScene::updateImages(const TerminalItem& item)
{
    clear(m_below);
    clear(m_above);
    const Snapshot& snapshot = item.m_snapshot;
    std::erase_if(m_textures, [&](const auto& entry) { return !snapshot.images.contains(entry.first); });
    for (const PlacementView& view : snapshot.placements) {
        const auto image = snapshot.images.find(view.image);
        const bool isSeen = view.bottom > snapshot.top && view.top < snapshot.top + int64_t(snapshot.rows.size());
        if (image == snapshot.images.end() || !isSeen || view.sourceWidth <= 0 || view.sourceHeight <= 0)
            continue;
        const ShownImage& shown = image->second;
        Texture& texture = m_textures[view.image];
        if (!texture.texture || texture.version != shown.version || texture.frame != shown.frame) {
            const QImage picture(shown.bitmap.pixels.data(), shown.bitmap.width, shown.bitmap.height,
                shown.bitmap.width * 4, QImage::Format_RGBA8888);
            texture = { shown.version, shown.frame,
                std::unique_ptr<QSGTexture>(item.window()->createTextureFromImage(
                    picture.convertToFormat(QImage::Format_ARGB32_Premultiplied))) };
        }
        QRectF area(item.cellRect(int(view.top - snapshot.top), view.left).topLeft(),
            item.cellRect(int(view.bottom - snapshot.top), view.right).topLeft());
        // An image that nearly fills its cells is shown unscaled.
        const QSizeF natural = QSizeF(view.sourceWidth, view.sourceHeight) / item.m_ratio;
        const QSizeF cell = item.cellRect(0, 0).size();
        const bool fits = natural.width() <= area.width() && natural.width() > area.width() - cell.width()
            && natural.height() <= area.height() && natural.height() > area.height() - cell.height();
        if (fits)
            area.setSize(natural);
        QSGImageNode* const node = item.window()->createImageNode();
        node->setTexture(texture.texture.get());
        node->setSourceRect(view.sourceX, view.sourceY, view.sourceWidth, view.sourceHeight);
        node->setRect(area);
        node->setFiltering(fits ? QSGTexture::Nearest : QSGTexture::Linear);
        (view.z < 0 ? m_below : m_above)->appendChildNode(node);
    }
}

void TerminalScene::addRectangle(const TerminalItem& item, QRectF area, QColor color)
{
    QSGRectangleNode* const node = item.window()->createRectangleNode();
    node->setRect(area);
    node->setColor(color);
    m_marks->appendChildNode(node);
}

void TerminalScene::addPicture(const TerminalItem& item, const QImage& picture, QRectF area)
{
    QSGImageNode* const node = item.window()->createImageNode();
    node->setOwnsTexture(true);
    node->setTexture(item.window()->createTextureFromImage(picture));
    node->setSourceRect(picture.rect());
    node->setRect(area);
    m_marks->appendChildNode(node);
}

void TerminalScene::updateMarks(const TerminalItem& item)
{
    clear(m_marks);
    const Snapshot& snapshot = item.m_snapshot;
    const int columns = snapshot.size.columns;
    const auto rows = int64_t(snapshot.rows.size());
    // From one position to another, inclusive; a block has the same columns in each row.
    const auto mark = [&](Position first, Position last, bool isBlock, QColor color) {
        for (int64_t row = std::max(first.row, snapshot.top); row <= std::min(last.row, snapshot.top + rows - 1);
            ++row) {
            const int from = isBlock || row == first.row ? first.column : 0;
            const int to = isBlock || row == last.row ? last.column + 1 : columns;
            const QRectF begin = item.cellRect(int(row - snapshot.top), from);
            addRectangle(
                item, QRectF(begin.x(), begin.y(), begin.width() * std::max(1, to - from), begin.height()), color);
        }
    };
    if (item.m_session && item.m_session->search()->shown()) {
        const TerminalSearch& search = *item.m_session->search();
        const auto& matches = search.matches();
        const int64_t shift = search.shift();
        const bool isCurrentScreen = search.generation() == snapshot.generation;
        const auto first = std::ranges::lower_bound(matches, snapshot.top - shift, {}, &SearchMatch::endRow);
        for (auto match = first; match != matches.end() && match->row + shift < snapshot.top + rows; ++match) {
            // What was on the screen may have been written over since.
            if (match->endRow >= 0 && !isCurrentScreen)
                break;
            QColor color = item.m_matchColor;
            color.setAlphaF(search.current() == size_t(match - matches.begin()) ? 0.6f : 0.25f);
            mark({ match->row + shift, match->column }, { match->endRow + shift, match->endColumn - 1 }, false, color);
        }
    }
    if (snapshot.selection) {
        QColor color = item.m_selectionColor;
        color.setAlphaF(0.35f);
        mark(snapshot.selection->first, snapshot.selection->last, snapshot.selection->mode == SelectionMode::Block,
            color);
    }
    for (const QRect& cells : item.m_hoveredCells) {
        const QRectF begin = item.cellRect(cells.y(), cells.x());
        const qreal thick = item.m_painter->lineWidth() / item.m_ratio;
        addRectangle(item, { begin.x(), begin.bottom() - thick, begin.width() * cells.width(), thick },
            opaque(item.m_look.text()));
    }
    for (const ShownPrompt& prompt : snapshot.prompts)
        addPrompt(item, prompt);
    addCursor(item);
}

/// Left of the text: a bar where the command failed, a dot where it did not.
void TerminalScene::addPrompt(const TerminalItem& item, const ShownPrompt& prompt)
{
    constexpr qreal thick = 3;
    constexpr qreal gap = 2;
    constexpr size_t red = 1;
    constexpr size_t green = 2;
    const bool hasFailed = prompt.exitCode != 0;
    const QRectF line = item.cellRect(prompt.row, 0);
    const qreal height = hasFailed ? line.height() : thick;
    const Rgb color = item.m_snapshot.palette.indexed[hasFailed ? red : green];
    addRectangle(item, { -gap - thick, line.center().y() - height / 2, thick, height },
        opaque(readableOn(item.m_look.ground(), color)));
}

void TerminalScene::addCursor(const TerminalItem& item)
{
    const Snapshot& snapshot = item.m_snapshot;
    const CursorState& cursor = snapshot.cursor;
    const int64_t row = cursor.row - snapshot.top;
    if (row >= int64_t(snapshot.rows.size()) || !item.m_session || !item.m_session->isRunning())
        return;
    const ShownRow& text = snapshot.rows[size_t(row)];
    const int scale = text.size == LineSize::Single ? 1 : 2;
    QRectF area = item.cellRect(int(row), cursor.column * scale);
    if (!item.m_preedit.isEmpty())
        return addPreedit(item, area);
    if (!cursor.visible || (cursor.blinks && !item.m_cursorOn && item.hasActiveFocus()))
        return;
    const Rgb color = snapshot.palette.dynamic[size_t(DynamicColor::Cursor)];
    const bool isWide
        = cursor.column < int(text.cells.size()) && text.cells[size_t(cursor.column)].part() == Cell::Part::WideHead;
    area.setWidth(area.width() * scale * (isWide ? 2 : 1));
    const qreal thick = item.m_painter->lineWidth() / item.m_ratio;
    if (!item.hasActiveFocus()) {
        addRectangle(item, { area.x(), area.y(), area.width(), thick }, opaque(color));
        addRectangle(item, { area.x(), area.bottom() - thick, area.width(), thick }, opaque(color));
        addRectangle(item, { area.x(), area.y(), thick, area.height() }, opaque(color));
        addRectangle(item, { area.right() - thick, area.y(), thick, area.height() }, opaque(color));
        return;
    }
    switch (cursor.shape) {
    case CursorShape::Block:
        addPicture(item,
            item.m_painter->underCursor(
                text, cursor.column, item.m_look, readableOn(color, item.m_look.ground()), color),
            area);
        break;
    case CursorShape::Underline:
        addRectangle(item, { area.x(), area.bottom() - 2 * thick, area.width(), 2 * thick }, opaque(color));
        break;
    case CursorShape::Bar:
        addRectangle(item, { area.x(), area.y(), 2 * thick, area.height() }, opaque(color));
        break;
    }
}

void TerminalScene::addPreedit(const TerminalItem& item, QRectF at)
{
    const QImage picture = item.m_painter->preedit(item.m_preedit, item.m_look);
    const QSizeF size = QSizeF(picture.size()) / item.m_ratio;
    // A preedit text that does not fit to the right of the cursor starts further left.
    const qreal left = std::max(0.0, std::min(at.x(), item.width() - size.width()));
    addPicture(item, picture, { QPointF(left, at.y()), size });
}

}
