#include "Presentation/ListEdits.h"

#include <QHash>
#include <QSet>
#include <algorithm>
#include <optional>

namespace corvane {

namespace {

QList<ListEdit> replacement(const QStringList& before, const QStringList& after)
{
    QList<ListEdit> edits;
    if (!before.isEmpty())
        edits.append({ .kind = ListEdit::Kind::Remove, .at = 0, .count = before.size() });
    if (!after.isEmpty())
        edits.append({ .kind = ListEdit::Kind::Insert, .at = 0, .count = after.size() });
    return edits;
}

/// Removes what is not in `stays`, run by run from the end.
void removeRuns(QStringList& work, const QHash<QString, qsizetype>& stays, QList<ListEdit>& edits)
{
    for (qsizetype end = work.size(); end > 0;) {
        if (stays.contains(work.at(end - 1))) {
            --end;
            continue;
        }
        qsizetype begin = end - 1;
        while (begin > 0 && !stays.contains(work.at(begin - 1)))
            --begin;
        edits.append({ .kind = ListEdit::Kind::Remove, .at = begin, .count = end - begin });
        work.remove(begin, end - begin);
        end = begin;
    }
}

/// The keys of a longest subsequence of `work` that is already in the order of `places`: they need not move.
QSet<QString> steadyKeys(const QStringList& work, const QHash<QString, qsizetype>& places)
{
    QList<qsizetype> ends; // ends[n]: the row that ends the best run of length n + 1 found so far
    QList<qsizetype> previous(work.size(), -1);
    QList<qsizetype> place;
    place.reserve(work.size());
    for (const QString& key : work)
        place.append(places.value(key));
    for (qsizetype row = 0; row < work.size(); ++row) {
        const auto slot
            = std::ranges::lower_bound(ends, place.at(row), {}, [&](qsizetype end) { return place.at(end); });
        if (slot != ends.begin())
            previous[row] = *(slot - 1);
        if (slot == ends.end())
            ends.append(row);
        else
            *slot = row;
    }
    QSet<QString> steady;
    for (qsizetype row = ends.isEmpty() ? -1 : ends.last(); row >= 0; row = previous.at(row))
        steady.insert(work.at(row));
    return steady;
}

/// The usual change: one row rises or falls, or one comes as one goes. Found without looking any key up; nothing for
/// other changes.
std::optional<QList<ListEdit>> editsOfOneRow(const QStringList& before, const QStringList& after)
{
    if (before.size() != after.size())
        return std::nullopt;
    const auto [differsBefore, differsAfter] = std::ranges::mismatch(before, after);
    const qsizetype first = differsBefore - before.begin();
    qsizetype last = before.size() - 1;
    while (last > first && before.at(last) == after.at(last))
        --last;
    const auto shifted = [&](const QStringList& up, const QStringList& down) {
        return std::equal(up.begin() + first + 1, up.begin() + last + 1, down.begin() + first);
    };
    qsizetype from = 0;
    qsizetype to = 0;
    if (shifted(after, before)) {
        from = last;
        to = first;
    } else if (shifted(before, after)) {
        from = first;
        to = last;
    } else {
        return std::nullopt;
    }
    if (before.at(from) == after.at(to))
        return QList { ListEdit { .kind = ListEdit::Kind::Move, .at = from, .to = to > from ? to + 1 : to } };
    return QList { ListEdit { .kind = ListEdit::Kind::Remove, .at = from },
        ListEdit { .kind = ListEdit::Kind::Insert, .at = to, .source = to } };
}

}

QList<ListEdit> listEdits(const QStringList& before, const QStringList& after)
{
    if (before == after)
        return {};
    if (const auto edits = editsOfOneRow(before, after))
        return *edits;
    QHash<QString, qsizetype> places;
    places.reserve(after.size());
    for (qsizetype i = 0; i < after.size(); ++i)
        places.insert(after.at(i), i);
    const QSet<QString> old(before.begin(), before.end());
    if (places.size() != after.size() || old.size() != before.size())
        return replacement(before, after);

    QList<ListEdit> edits;
    QStringList work = before;
    removeRuns(work, places, edits);
    const QSet<QString> steady = steadyKeys(work, places);

    // From the end, so that each key's successor is already in place.
    for (qsizetype i = after.size() - 1; i >= 0;) {
        const QString& key = after.at(i);
        if (steady.contains(key)) {
            --i;
            continue;
        }
        const qsizetype anchor = i + 1 < after.size() ? work.indexOf(after.at(i + 1)) : work.size();
        if (old.contains(key)) {
            const qsizetype from = work.indexOf(key);
            if (from + 1 != anchor) {
                edits.append({ .kind = ListEdit::Kind::Move, .at = from, .to = anchor });
                work.move(from, anchor > from ? anchor - 1 : anchor);
            }
            --i;
            continue;
        }
        qsizetype first = i;
        while (first > 0 && !old.contains(after.at(first - 1)))
            --first;
        const qsizetype count = i - first + 1;
        edits.append({ .kind = ListEdit::Kind::Insert, .at = anchor, .count = count, .source = first });
        for (qsizetype n = 0; n < count; ++n)
            work.insert(anchor + n, after.at(first + n));
        i = first - 1;
    }
    return edits;
}

}
