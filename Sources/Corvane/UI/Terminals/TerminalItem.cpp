#include "UI/Terminals/TerminalItem.h"

#include "Foundation/Literals.h"
#include "UI/Terminals/TerminalAccessible.h"
#include "UI/Terminals/TerminalScene.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QQuickWindow>

namespace corvane {

using namespace terminal;

TerminalItem::TerminalItem(QQuickItem* parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    setFlag(ItemAcceptsInputMethod);
    setAcceptedMouseButtons(Qt::AllButtons);
    setAcceptHoverEvents(true);
    setActiveFocusOnTab(true);
    setCursor(Qt::IBeamCursor);
    installTerminalAccessibility();
}

TerminalItem::~TerminalItem() = default;

void TerminalItem::setSession(LumoTerminalSession* session)
{
    if (m_session == session)
        return;
    if (m_session)
        m_session->disconnect(this);
    m_session = session;
    m_snapshot = {};
    m_strips.clear();
    m_pressed.reset();
    setHover({}, {});
    if (session) {
        connect(session, &LumoTerminalSession::changed, this, &TerminalItem::look);
        applyColors();
    }
    Q_EMIT sessionChanged();
    look();
}

void TerminalItem::setFontSize(int size)
{
    if (std::exchange(m_fontSize, size) == size)
        return;
    updateFont();
    Q_EMIT fontSizeChanged();
}

void TerminalItem::setColors(const QList<QColor>& colors)
{
    if (m_colors == colors)
        return;
    m_colors = colors;
    applyColors();
    Q_EMIT colorsChanged();
}

void TerminalItem::setDark(bool dark)
{
    if (std::exchange(m_dark, dark) == dark)
        return;
    applyColors();
    Q_EMIT colorsChanged();
}

void TerminalItem::applyColors()
{
    constexpr qsizetype named = 16;
    if (!m_session || m_colors.size() < named + 3)
        return;
    const auto color = [this](qsizetype index) {
        return Rgb(m_colors.at(index).rgb() & 0xffffff);
    };
    PaletteState palette = Palette().initial;
    for (qsizetype i = 0; i < named; ++i)
        palette.indexed[size_t(i)] = color(i);
    palette.dynamic.fill(color(named));
    for (const DynamicColor ground : { DynamicColor::Background, DynamicColor::PointerBackground,
             DynamicColor::TekBackground, DynamicColor::HighlightText })
        palette.dynamic[size_t(ground)] = color(named + 1);
    palette.dynamic[size_t(DynamicColor::Cursor)] = color(named + 2);
    m_session->setColors(palette, m_dark);
}

void TerminalItem::setCursorOn(bool on)
{
    if (std::exchange(m_cursorOn, on) == on)
        return;
    update();
    Q_EMIT cursorOnChanged();
}

void TerminalItem::setTextOn(bool on)
{
    if (std::exchange(m_textOn, on) == on)
        return;
    for (Strip& strip : m_strips) {
        if (strip.blinks)
            strip.key = {}; // is painted anew
    }
    look();
    Q_EMIT textOnChanged();
}

bool TerminalItem::isSeen() const
{
    return isVisible() && window() && window()->isVisible() && width() > 0 && height() > 0;
}

void TerminalItem::look()
{
    if (isSeen())
        polish();
}

void TerminalItem::updateFont()
{
    if (!window())
        return;
    m_ratio = window()->effectiveDevicePixelRatio();
    m_painter = std::make_unique<TerminalPainter>(terminalFontFamily(), qRound(m_fontSize * m_ratio));
    m_strips.clear();
    look();
}

void TerminalItem::geometryChange(const QRectF& now, const QRectF& before)
{
    QQuickItem::geometryChange(now, before);
    look();
}

void TerminalItem::itemChange(ItemChange change, const ItemChangeData& data)
{
    QQuickItem::itemChange(change, data);
    if (change == ItemDevicePixelRatioHasChanged || (change == ItemSceneChange && data.window)) {
        if (change == ItemSceneChange)
            connect(data.window, &QWindow::visibleChanged, this, &TerminalItem::look);
        updateFont();
    } else if (change == ItemVisibleHasChanged && data.boolValue) {
        look();
    }
}

/// Updates what is shown. A new size is passed to the program here, once per frame.
void TerminalItem::updatePolish()
{
    if (!m_session || !m_painter || !isSeen())
        return;
    const QSize cell = m_painter->cell();
    const int columns = int(width() * m_ratio) / cell.width();
    const int rows = int(height() * m_ratio) / cell.height();
    if (columns < 1 || rows < 1)
        return;
    if (!m_session->view(Size { columns, rows, cell.width(), cell.height() }) || !m_session->snapshot(m_snapshot))
        return;
    paintStrips();
    updatePointer();
    m_session->search()->update();
    update();
    announceText();
    updateInputMethod(Qt::ImCursorRectangle);
    Q_EMIT viewChanged();
}

void TerminalItem::paintStrips()
{
    const TerminalLook look = TerminalLook::of(m_snapshot);
    const bool isFull = m_painter->atlas().isFull();
    if (isFull)
        m_painter->atlas().clear();
    if (m_look != look || m_stripColumns != m_snapshot.size.columns || isFull)
        m_strips.clear();
    m_look = look;
    m_stripColumns = m_snapshot.size.columns;
    m_drawsQuads = QSGRendererInterface::isApiRhiBased(window()->rendererInterface()->graphicsApi());
    std::vector<Strip> strips(m_snapshot.rows.size());
    for (size_t i = 0; i < strips.size(); ++i) {
        const ShownRow& row = m_snapshot.rows[i];
        const bool stays = i < m_strips.size() && m_strips[i].key == row.key;
        const auto known = stays ? m_strips.begin() + qsizetype(i) : std::ranges::find(m_strips, row.key, &Strip::key);
        if (known != m_strips.end())
            strips[i] = *known;
        else
            strips[i] = paintStrip(row);
    }
    m_strips = std::move(strips);
}

TerminalItem::Strip TerminalItem::paintStrip(const ShownRow& row)
{
    const bool blinks = std::ranges::any_of(row.styles, [](const Style& style) { return style.has(Style::Blink); });
    if (blinks && !m_textOn) {
        ShownRow hidden = row;
        for (Style& style : hidden.styles) {
            style.set(Style::Conceal, style.has(Style::Conceal) || style.has(Style::Blink));
            style.set(Style::Blink, false);
        }
        Strip strip = paintStrip(hidden);
        strip.blinks = true;
        return strip;
    }
    Strip strip { row.key, ++m_lastStrip, blinks };
    if (m_drawsQuads) {
        auto quads = m_painter->quads(row, m_stripColumns, m_look);
        if (quads && quads->size() <= TerminalTextNode::maxQuads) {
            strip.quads = std::move(*quads);
            return strip;
        }
    }
    strip.picture = m_painter->row(row, m_stripColumns, m_look);
    return strip;
}

QSGNode* TerminalItem::updatePaintNode(QSGNode* node, UpdatePaintNodeData*)
{
    auto* scene = static_cast<TerminalScene*>(node);
    if (!m_painter || m_strips.empty()) {
        delete scene;
        return nullptr;
    }
    if (!scene)
        scene = new TerminalScene;
    scene->update(*this);
    return scene;
}

QRectF TerminalItem::cellRect(int row, int column) const
{
    if (!m_painter)
        return {};
    const QSizeF cell = QSizeF(m_painter->cell()) / m_ratio;
    return { QPointF(column * cell.width(), row * cell.height()), cell };
}

QPoint TerminalItem::cellAt(QPointF position) const
{
    if (!m_painter)
        return {};
    const QPointF place = position * m_ratio;
    return { std::clamp(int(std::floor(place.x() / m_painter->cell().width())), 0, m_snapshot.size.columns - 1),
        std::clamp(int(std::floor(place.y() / m_painter->cell().height())), 0, m_snapshot.size.rows - 1) };
}

qreal TerminalItem::scrollSize() const
{
    const auto rows = qreal(m_snapshot.rows.size());
    return rows == 0 ? 1 : rows / (rows + qreal(m_snapshot.historyRows));
}

qreal TerminalItem::scrollPosition() const
{
    const auto rows = qreal(m_snapshot.rows.size());
    return rows == 0 ? 0
                     : (qreal(m_snapshot.historyRows) + qreal(m_snapshot.top)) / (rows + qreal(m_snapshot.historyRows));
}

void TerminalItem::scrollToPosition(qreal position)
{
    const auto all = qreal(m_snapshot.rows.size() + m_snapshot.historyRows);
    if (m_session)
        m_session->scrollTo(int64_t(std::lround(position * all)) - int64_t(m_snapshot.historyRows));
}

void TerminalItem::scrollByPages(int pages)
{
    if (m_session)
        m_session->scrollTo(m_session->scrollTop() + int64_t(pages) * std::max(1, m_snapshot.size.rows - 1));
}

void TerminalItem::scrollToEnd(bool oldest)
{
    if (m_session)
        m_session->scrollTo(oldest ? -int64_t(m_snapshot.historyRows) : 0);
}

void TerminalItem::copy() const
{
    if (!m_session || !m_session->terminal())
        return;
    const std::string text = m_session->terminal()->terminal()->selection().text();
    if (!text.empty())
        QGuiApplication::clipboard()->setText(QString::fromStdString(text));
}

void TerminalItem::selectAll()
{
    if (!m_session || !m_session->terminal())
        return;
    m_session->terminal()->terminal()->selection().set(SelectionMode::Line, { -int64_t(m_snapshot.historyRows), 0 },
        { m_snapshot.size.rows - 1, m_snapshot.size.columns - 1 });
    look();
}

QString TerminalItem::clipboardText() const
{
    return QGuiApplication::clipboard()->text();
}

QString TerminalItem::shownText() const
{
    QString text;
    for (const ShownRow& row : m_snapshot.rows) {
        QString line;
        for (const Cell cell : row.cells) {
            if (cell.isCluster())
                line += QString::fromUcs4(
                    row.clusters[cell.content()].data(), qsizetype(row.clusters[cell.content()].size()));
            else if (cell.width() > 0)
                line += cell.content() ? QString::fromUcs4(std::array { char32_t(cell.content()) }.data(), 1) : u" "_s;
        }
        while (line.endsWith(u' '))
            line.chop(1);
        text += line + u'\n';
    }
    return text;
}

int TerminalItem::cursorOffset() const
{
    const QStringList lines = shownText().split(u'\n');
    const auto row = std::clamp<qsizetype>(m_snapshot.cursor.row - m_snapshot.top, 0, lines.size() - 1);
    qsizetype offset = 0;
    for (qsizetype i = 0; i < row; ++i)
        offset += lines.at(i).size() + 1;
    return int(offset + std::min<qsizetype>(m_snapshot.cursor.column, lines.at(row).size()));
}

/// Reports changes to screen readers, as for an edited text.
void TerminalItem::announceText()
{
    if (!QAccessible::isActive())
        return;
    const QString text = shownText();
    if (text != m_announced) {
        const auto same = qsizetype(std::ranges::mismatch(m_announced, text).in1 - m_announced.begin());
        QAccessibleTextUpdateEvent event(this, int(same), m_announced.mid(same), text.mid(same));
        event.setCursorPosition(cursorOffset());
        QAccessible::updateAccessibility(&event);
        m_announced = text;
    }
    QAccessibleTextCursorEvent event(this, cursorOffset());
    QAccessible::updateAccessibility(&event);
}

}
