#pragma once

#include <QStringList>

namespace corvane {

/// One step that turns a list of keys into another. Steps are applied in order, each to the list as the steps
/// before left it.
struct ListEdit {
    enum class Kind { Remove, Insert, Move };
    Kind kind = Kind::Insert;
    qsizetype at = 0; ///< the first row removed, the place of the first row inserted, or the row that moves
    qsizetype count = 1;
    qsizetype to = 0; ///< Move: before which row, counted before the move
    qsizetype source = 0; ///< Insert: the first inserted row in the new list

    bool operator==(const ListEdit&) const = default;
};

/// The fewest removals, insertions and moves. Keys are unique within each list; where they are not, everything
/// is replaced.
QList<ListEdit> listEdits(const QStringList& before, const QStringList& after);

}
