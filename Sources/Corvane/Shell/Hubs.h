#pragma once

#include "Presentation/HubScreen.h"

#include <QUrl>

namespace corvane {

class Screens;

/// A hub of the bar: a new one is a row of `hubTable`.
struct Hub {
    QString id; ///< such as "inbox"; remembered as the chosen one, and named by notifications
    QString label;
    QString icon;
    QUrl page; ///< a `Page` of QML with a property `screen`
    HubScreen (*make)(Screens& screens, const Hub& hub); ///< calls its room's factory, once
};

/// In the order of the bar, which is that of the keys Ctrl+1, Ctrl+2, ...
const QList<Hub>& hubTable();

int hubIndex(const QString& id); ///< in the table; -1 for an unknown one
QString hubShortcut(int index); ///< such as "Ctrl+5"

}
