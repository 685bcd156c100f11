#pragma once

#include "Presentation/Choice.h"

#include <QPointF>

namespace corvane {

class ChromiumBrowserController;

/// The drop-down list of the page that was opened last. A browser opens it in a window of its own, which no frame
/// shows, so its choices are shown here.
class BrowserPicker : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::Choice> choices READ choices NOTIFY opened) ///< those that may be chosen
    Q_PROPERTY(QString chosen READ chosen NOTIFY opened) ///< an id of `choices`
    Q_PROPERTY(QPointF place READ place NOTIFY opened) ///< under the list, from 0 to 1 of the frame
public:
    BrowserPicker(ChromiumBrowserController& browser, QObject* parent); ///< the browser outlives it

    const QList<Choice>& choices() const { return m_choices; }
    const QString& chosen() const { return m_chosen; }
    QPointF place() const { return m_place; }

    Q_INVOKABLE void choose(const QString& id);

Q_SIGNALS:
    void opened();

private:
    ChromiumBrowserController& m_browser;
    QList<Choice> m_choices;
    QString m_chosen;
    QPointF m_place;
    int m_context = 0; ///< of the page's script
};

}
