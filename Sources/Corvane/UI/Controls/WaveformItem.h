#pragma once

#include "Platform/MediaDecoder.h"

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

namespace corvane {

/// The waveform and the length of a sound file, before it is played.
class WaveformItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(Waveform)
    Q_PROPERTY(QString path READ path WRITE setPath NOTIFY pathChanged)
    Q_PROPERTY(qreal progress MEMBER m_progress NOTIFY lookChanged) ///< from 0 to 1: the accented part
    Q_PROPERTY(QColor ink MEMBER m_ink NOTIFY lookChanged)
    Q_PROPERTY(QColor accent MEMBER m_accent NOTIFY lookChanged)
    Q_PROPERTY(QString durationText READ durationText NOTIFY statusChanged) ///< "1:20"; empty if unknown
    Q_PROPERTY(QString problem READ problem NOTIFY statusChanged) ///< why it can't be played; empty for none
public:
    explicit WaveformItem(QQuickItem* parent = nullptr);

    const QString& path() const { return m_path; }
    void setPath(const QString& path);
    QString durationText() const;
    const QString& problem() const { return m_problem; }

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void pathChanged();
    void lookChanged();
    void statusChanged();

protected:
    void componentComplete() override;

private:
    void ask();

    QString m_path;
    qreal m_progress = 0;
    QColor m_ink;
    QColor m_accent;
    MediaDecoder::Handle m_request;
    SoundShape m_shape;
    QString m_problem;
};

}
