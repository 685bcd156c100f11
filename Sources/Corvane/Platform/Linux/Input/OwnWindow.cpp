#include "Platform/Linux/Input/OwnWindow.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>

namespace corvane {

std::optional<InsertionOutcome> insertIntoOwnWindow(const QString& text)
{
    QObject* const field = QGuiApplication::focusObject();
    if (!field || !QGuiApplication::focusWindow())
        return std::nullopt;
    QInputMethodQueryEvent query(Qt::ImEnabled | Qt::ImHints);
    QCoreApplication::sendEvent(field, &query);
    if (query.value(Qt::ImHints).toInt() & Qt::ImhHiddenText)
        return InsertionOutcome::Password;
    if (!query.value(Qt::ImEnabled).toBool()) {
        QGuiApplication::clipboard()->setText(text);
        return InsertionOutcome::Copied;
    }
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(field, &event);
    return InsertionOutcome::Inserted;
}

}
