#pragma once

#include "Presentation/HubScreen.h"

#include <QUrl>

namespace corvane {

class Screens;

/// A hub of the bar: to add one, add a row to `hubTable`.
struct Hub {
    QString id; ///< such as "inbox"; stored as the selection, and used in notifications
    QString label;
    QString icon;
    QUrl page; ///< a QML `Page` with a property `screen`
    HubScreen (*make)(Screens& screens, const Hub& hub); ///< calls its room's factory, once
};

/// In bar order, which is also the order of the keys Ctrl+1, Ctrl+2, ...
const QList<Hub>& hubTable();

int hubIndex(const QString& id); ///< in the table; -1 if unknown
QString hubShortcut(int index); ///< such as "Ctrl+5"

}
