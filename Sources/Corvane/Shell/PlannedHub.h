#pragma once

#include <QObject>
#include <QStringList>

namespace corvane {

struct Hub;

/// A hub whose room is not furnished yet: what it is for, and what will stand in it.
class PlannedHub : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString label READ label CONSTANT)
    Q_PROPERTY(QString icon READ icon CONSTANT)
    Q_PROPERTY(QString purpose READ purpose CONSTANT)
    Q_PROPERTY(QStringList parts READ parts CONSTANT)
public:
    PlannedHub(const Hub& hub, QObject* parent);

    const QString& label() const { return m_label; }
    const QString& icon() const { return m_icon; }
    const QString& purpose() const { return m_purpose; }
    const QStringList& parts() const { return m_parts; }

private:
    QString m_label;
    QString m_icon;
    QString m_purpose;
    QStringList m_parts;
};

}
