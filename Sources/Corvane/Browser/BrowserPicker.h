#pragma once

#include "Browser/BrowserFieldPicker.h"
#include "Presentation/Choice.h"

namespace corvane {

class ChromiumBrowserController;

/// Replaces the browser's pop-ups, which are not part of the frames: the choice from a drop-down list, or the value of
/// a field. The latest request is answered.
class BrowserPicker : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::Choice> choices READ choices NOTIFY opened) ///< the enabled options of the list
    Q_PROPERTY(QString chosen READ chosen NOTIFY opened) ///< an id of `choices`
    Q_PROPERTY(QPointF place READ place NOTIFY opened) ///< under the list, from 0 to 1 of the frame
    Q_PROPERTY(corvane::BrowserFieldPicker* field READ field CONSTANT)
public:
    BrowserPicker(ChromiumBrowserController& browser, Scheduler& scheduler, QObject* parent); ///< both outlive it

    const QList<Choice>& choices() const { return m_choices; }
    const QString& chosen() const { return m_chosen; }
    QPointF place() const { return m_place; }
    BrowserFieldPicker* field() { return &m_field; }

    Q_INVOKABLE void choose(const QString& id);

Q_SIGNALS:
    void opened(); ///< the list

private:
    void openList(const QJsonObject& report);
    void openField(const QJsonObject& report);
    void answer(const QJsonValue& value);

    ChromiumBrowserController& m_browser;
    BrowserFieldPicker m_field;
    QList<Choice> m_choices;
    QString m_chosen;
    QPointF m_place;
    int m_context = 0; ///< of the page's script
};

}
