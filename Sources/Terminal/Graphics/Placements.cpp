// The placements of images, and deleting them.

#include "Terminal/Core/Emulator.h"
#include "Terminal/Graphics/Graphics.h"
#include "Terminal/Graphics/Placeholders.h"

namespace corvane::terminal {

namespace {

/// The box of a placement, from its anchor or parent; nothing if it is not on the current screen.
std::optional<PlacementView> viewOf(Emulator& t, const Placement& placement, int depth)
{
    PlacementView view { placement.image, placement.id, placement.z, 0, 0, 0, 0, placement.sourceX, placement.sourceY,
        placement.sourceWidth, placement.sourceHeight };
    int columns = placement.columns;
    int rows = placement.rows;
    if (placement.parentImage) {
        const Placement* parent = t.graphics.store().findPlacement(placement.parentImage, placement.parentPlacement);
        const auto above = parent && depth > 0 && !parent->isVirtual ? viewOf(t, *parent, depth - 1) : std::nullopt;
        if (!above)
            return {};
        view.top = above->top + placement.parentRows;
        view.left = above->left + placement.parentColumns;
        columns = columns ? columns : (placement.sourceWidth + t.size.cellWidth - 1) / t.size.cellWidth;
        rows = rows ? rows : (placement.sourceHeight + t.size.cellHeight - 1) / t.size.cellHeight;
    } else {
        if (placement.onAlternate != (t.screen == &t.alternate))
            return {};
        const auto place = t.find(*t.screen, placement.anchor);
        if (!place)
            return {};
        view.top = place->first;
        view.left = place->second;
    }
    view.bottom = view.top + rows;
    view.right = view.left + columns;
    return view;
}

}

std::vector<PlacementView> placementViews(Emulator& t)
{
    std::vector<PlacementView> views;
    constexpr int maxDepth = 8;
    for (const Placement& placement : t.graphics.store().placements()) {
        if (placement.isVirtual)
            continue;
        if (const auto view = viewOf(t, placement, maxDepth))
            views.push_back(*view);
    }
    addPlaceholderViews(t, views);
    std::ranges::sort(
        views, {}, [](const PlacementView& view) { return std::tuple(view.z, view.image, view.placement); });
    return views;
}

/// A lower-case letter keeps the image data; an upper-case one frees images that are no longer shown.
void Graphics::remove(const GraphicsCommand& command)
{
    const char what = command.letter('d', 'a');
    const bool withImages = what >= 'A' && what <= 'Z';
    const uint32_t placementId = command.number('p');
    const auto isShown = [&](const Placement& placement, auto covers) {
        if (placement.isVirtual)
            return false;
        const auto view = viewOf(t, placement, 8);
        return view && view->bottom > 0 && covers(*view);
    };
    const auto removeWhere = [&](auto covers) {
        m_store.removePlacements([&](const Placement& placement) { return isShown(placement, covers); }, withImages);
    };
    const auto row = [&](char key) {
        return int64_t(command.amount(key)) - 1;
    };
    const auto hasCell = [](const PlacementView& view, int64_t y, int64_t x) {
        return y >= view.top && y < view.bottom && x >= view.left && x < view.right;
    };
    t.touchAll();
    switch (what | 0x20) {
    case 'a':
        return removeWhere([](const PlacementView&) { return true; });
    case 'i':
    case 'n': {
        const Image* image
            = (what | 0x20) == 'i' ? m_store.find(command.number('i')) : m_store.findNumber(command.number('I'));
        if (!image)
            return;
        const uint32_t id = image->id;
        m_store.removePlacements(
            [&](const Placement& placement) {
                return placement.image == id && (placementId == 0 || placement.id == placementId);
            },
            withImages);
        if (withImages && placementId == 0)
            m_store.remove(id);
        return;
    }
    case 'c':
        return removeWhere([&](const PlacementView& view) { return hasCell(view, t.cursor.row, t.cursor.column); });
    case 'f':
        if (Image* image = imageOf(command); image && image->frames.size() > 1) {
            image->frames.resize(1);
            image->current = 0;
            image->running = false;
            m_store.fit(*image);
        }
        return;
    case 'p':
        return removeWhere([&](const PlacementView& view) { return hasCell(view, row('y'), row('x')); });
    case 'q':
        return removeWhere([&](const PlacementView& view) {
            return hasCell(view, row('y'), row('x')) && view.z == command.integer('z');
        });
    case 'r':
        for (uint64_t id = command.number('x'); id <= command.number('y') && m_store.count() > 0; ++id) {
            // Visits only ids that exist.
            const auto next = m_store.images().lower_bound(uint32_t(id));
            if (next == m_store.images().end() || next->first > command.number('y'))
                return;
            id = next->first;
            m_store.removePlacements([&](const Placement& placement) { return placement.image == id; }, withImages);
            if (withImages)
                m_store.remove(uint32_t(id));
        }
        return;
    case 'x':
        return removeWhere([&](const PlacementView& view) { return row('x') >= view.left && row('x') < view.right; });
    case 'y':
        return removeWhere([&](const PlacementView& view) { return row('y') >= view.top && row('y') < view.bottom; });
    case 'z':
        return removeWhere([&](const PlacementView& view) { return view.z == command.integer('z'); });
    default:
        return;
    }
}

}
