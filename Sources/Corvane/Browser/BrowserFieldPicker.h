#pragma once

#include "Browser/BrowserFieldValue.h"

#include <QPointF>
#include <functional>

namespace corvane {

class Scheduler;

/// Picks the value of a date, time or colour field of the page. It replaces the browser's own picker, which is not part
/// of the frames. A value is typed, or chosen from those offered.
class BrowserFieldPicker : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    Q_PROPERTY(QPointF place READ place NOTIFY changed) ///< under the field, from 0 to 1 of the frame
    Q_PROPERTY(QString label READ label NOTIFY changed) ///< of the field
    Q_PROPERTY(QString heading READ heading NOTIFY changed) ///< the month or year shown; empty if there is none
    Q_PROPERTY(QStringList columns READ columns NOTIFY changed) ///< headings of the columns, which may be empty
    Q_PROPERTY(QList<corvane::BrowserFieldOption> options READ options NOTIFY changed) ///< row by row
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY changed) ///< what is typed
    Q_PROPERTY(QString refusal READ refusal NOTIFY changed) ///< why the typed value is not accepted; empty if it is
    Q_PROPERTY(bool canClear READ canClear NOTIFY changed)
public:
    using Take = std::function<void(const QString& value)>;
    BrowserFieldPicker(Scheduler& scheduler, Take take, QObject* parent); ///< the scheduler outlives it

    void open(const BrowserField& field, const QString& value, QPointF place);

    bool isOpen() const { return m_isOpen; }
    QPointF place() const { return m_place; }
    const QString& label() const { return m_field.label; }
    QString heading() const;
    QStringList columns() const;
    const QList<BrowserFieldOption>& options() const { return m_options; }
    const QString& text() const { return m_text; }
    void setText(const QString& text);
    const QString& refusal() const { return m_refusal; }
    bool canClear() const { return !m_field.isRequired && m_field.kind != BrowserFieldKind::Color; }

    Q_INVOKABLE void turn(int pages); ///< months or years
    Q_INVOKABLE void choose(const QString& value); ///< one of `options`; a time beside the date must be typed
    Q_INVOKABLE void accept(); ///< what is typed
    Q_INVOKABLE void clear(); ///< the field
    Q_INVOKABLE void close();

Q_SIGNALS:
    void changed();

private:
    void finish(const QString& value);
    void refresh();

    Scheduler& m_scheduler;
    const Take m_take;
    BrowserField m_field;
    QDate m_shown;
    QString m_text;
    QString m_refusal;
    QPointF m_place;
    QList<BrowserFieldOption> m_options;
    bool m_isOpen = false;
};

}
