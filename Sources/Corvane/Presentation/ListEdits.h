#pragma once

#include <QStringList>

namespace corvane {

/// One step of turning a list of keys into another. Steps are applied in order, each to the result of the previous
/// ones.
struct ListEdit {
    enum class Kind { Remove, Insert, Move };
    Kind kind = Kind::Insert;
    qsizetype at = 0; ///< the first removed row, the position of the first inserted row, or the moved row
    qsizetype count = 1;
    qsizetype to = 0; ///< Move: the target position, counted before the move
    qsizetype source = 0; ///< Insert: the first inserted row in the new list

    bool operator==(const ListEdit&) const = default;
};

/// The minimal removals, insertions and moves. Keys are unique within each list; otherwise everything is replaced.
QList<ListEdit> listEdits(const QStringList& before, const QStringList& after);

}
