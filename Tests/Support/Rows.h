#pragma once

#include <QAbstractItemModel>
#include <gtest/gtest.h>

namespace corvane {

/// The values of a role in all rows of a model, as text.
inline QStringList column(const QAbstractItemModel& model, const QByteArray& role)
{
    const int id = model.roleNames().key(role, -1);
    EXPECT_NE(id, -1) << role.constData();
    QStringList values;
    for (int row = 0; row < model.rowCount(); ++row)
        values.append(model.index(row, 0).data(id).toString());
    return values;
}

}
