#pragma once

#include <QColor>
#include <QList>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

namespace corvane {

/// The waveform of a call: the microphone above the axis, the other side below it.
class CallWaveItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(CallWave)
    Q_PROPERTY(QList<float> above MEMBER m_above NOTIFY lookChanged) ///< from 0 to 1
    Q_PROPERTY(QList<float> below MEMBER m_below NOTIFY lookChanged) ///< empty: mirrors the upper ones
    Q_PROPERTY(QList<double> marks MEMBER m_marks NOTIFY lookChanged) ///< from 0 to 1
    Q_PROPERTY(qreal progress MEMBER m_progress NOTIFY lookChanged) ///< from 0 to 1: the accented part
    Q_PROPERTY(QColor ink MEMBER m_ink NOTIFY lookChanged)
    Q_PROPERTY(QColor accent MEMBER m_accent NOTIFY lookChanged)
    Q_PROPERTY(QColor markInk MEMBER m_markInk NOTIFY lookChanged)
public:
    explicit CallWaveItem(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void lookChanged();

private:
    QList<float> m_above;
    QList<float> m_below;
    QList<double> m_marks;
    qreal m_progress = 0;
    QColor m_ink;
    QColor m_accent;
    QColor m_markInk;
};

}
