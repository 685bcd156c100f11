#include "Terminal/Core/Snapshot.h"

#include "Terminal/Core/Emulator.h"
#include "Terminal/Core/Terminal.h"

namespace corvane::terminal {

namespace {

constexpr uint64_t inHistory = uint64_t(1) << 63;

/// Renumbers the styles and clusters of the cells by the row's own lists.
void makeOwn(const Emulator& t, ShownRow& row)
{
    row.styles.assign(1, Style());
    row.clusters.clear();
    StyleId last = 0;
    StyleId own = 0;
    std::vector<std::pair<StyleId, StyleId>> known;
    for (Cell& cell : row.cells) {
        if (cell.style() != last) {
            last = cell.style();
            const auto found = std::ranges::find(known, last, &std::pair<StyleId, StyleId>::first);
            if (found != known.end()) {
                own = found->second;
            } else if (last == 0) {
                own = 0;
            } else {
                own = StyleId(row.styles.size());
                row.styles.push_back(t.styles[last]);
                known.emplace_back(last, own);
            }
        }
        if (cell.isCluster()) {
            row.clusters.emplace_back(t.clusters[cell.content()]);
            cell = Cell::cluster(uint32_t(row.clusters.size() - 1), own, cell.part());
        } else {
            cell = cell.withStyle(own);
        }
    }
}

std::vector<ShownPrompt> promptsOf(Emulator& t, int64_t top)
{
    std::vector<ShownPrompt> prompts;
    if (t.screen != &t.primary)
        return prompts;
    const uint64_t oldest = top < 0 ? HistoryView(t.history, t.columns()).addressOf(top).line : t.history.lineEnd();
    int exitCode = -1;
    for (auto mark = t.marks.rbegin(); mark != t.marks.rend(); ++mark) {
        if (mark->kind == PromptMark::End)
            exitCode = mark->exitCode;
        if (mark->kind != PromptMark::Prompt)
            continue;
        const int code = std::exchange(exitCode, -1);
        const Place& place = t.primary.anchors[mark->anchor];
        if (place.where == Place::Where::InHistory && place.line < oldest)
            break;
        const auto at = code < 0 ? std::nullopt : t.find(t.primary, mark->anchor);
        if (at && at->first >= top && at->first < top + t.rows())
            prompts.push_back({ int(at->first - top), code });
    }
    return prompts;
}

/// Copies the pictures that the snapshot lacks and drops those no longer shown.
void updateImages(const ImageStore& store, Snapshot& snapshot)
{
    std::map<uint32_t, ShownImage> images;
    for (const PlacementView& placement : snapshot.placements) {
        const Image* const image = store.find(placement.image);
        if (!image || images.contains(placement.image))
            continue;
        ShownImage& shown = images[placement.image];
        const auto known = snapshot.images.find(placement.image);
        if (known != snapshot.images.end() && known->second.version == image->version
            && known->second.frame == image->current)
            shown = std::move(known->second);
        else
            shown = { image->version, image->current, image->shown() };
    }
    snapshot.images = std::move(images);
}

}

void Terminal::snapshot(int64_t top, Snapshot& snapshot)
{
    Emulator& t = *m_emulator;
    if (snapshot.size != t.size)
        snapshot.rows.clear();
    snapshot.size = t.size;
    snapshot.rows.resize(size_t(t.rows()));
    snapshot.isAlternate = isAlternate();
    snapshot.historyRows = snapshot.isAlternate ? 0 : historyRows();
    snapshot.top = std::clamp<int64_t>(top, -int64_t(snapshot.historyRows), 0);
    snapshot.generation = t.generation;
    snapshot.cursor = cursor();
    snapshot.palette = t.palette.current;
    snapshot.isReversed = t.modes.has(Mode::ReverseScreen);
    snapshot.tracksMouse = terminal::tracksMouse(t.modes);
    snapshot.selection = t.selection.range();
    snapshot.prompts = promptsOf(t, snapshot.top);
    snapshot.placements = placements();
    updateImages(images(), snapshot);

    HistoryView past(t.history, t.columns());
    std::optional<HistoryView::Address> place;
    RowView view;
    for (size_t i = 0; i < snapshot.rows.size(); ++i) {
        const int64_t index = snapshot.top + int64_t(i);
        ShownRow& shown = snapshot.rows[i];
        if (index >= 0) {
            const Row& row = t.row(int(index));
            const ShownRow::Key key { row.id, row.changed };
            if (shown.key == key)
                continue;
            t.readRow(index, view);
            shown.key = key;
        } else {
            place = place ? past.next(*place) : past.addressOf(index);
            past.read(*place, view);
            // A line that is partly still on the screen grows.
            const ShownRow::Key key { inHistory | place->line, uint64_t(place->part) << 32 | view.cells.size() };
            if (shown.key == key)
                continue;
            shown.key = key;
        }
        shown.cells.swap(view.cells);
        shown.size = view.size;
        shown.continued = view.continued;
        makeOwn(t, shown);
    }
}

HistoryPlace Terminal::placeInHistory(int64_t row)
{
    Emulator& t = *m_emulator;
    if (t.history.lines() == 0)
        return {};
    HistoryView past(t.history, t.columns());
    const auto address = past.addressOf(std::max(row, -int64_t(past.rows())));
    return { address.line, uint32_t(past.startOf(address)) };
}

int64_t Terminal::rowOf(HistoryPlace place)
{
    Emulator& t = *m_emulator;
    if (place.line >= t.history.lineEnd())
        return 0;
    HistoryView past(t.history, t.columns());
    return place.line < t.history.firstLine() ? -int64_t(past.rows()) : past.placeOf(place.line, place.offset).first;
}

}
