#pragma once

#include <QObject>
#include <QQuickItem>
#include <QUrl>
#include <QtQmlIntegration>

namespace corvane {

/// Functions of the desktop that QML lacks.
class WindowTools : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// Whether the last input was a key rather than a mouse button: then the keyboard focus is shown.
    Q_PROPERTY(bool lastInputWasKey READ lastInputWasKey NOTIFY lastInputWasKeyChanged)
public:
    explicit WindowTools(QObject* parent = nullptr);

    bool lastInputWasKey() const { return m_lastInputWasKey; }

    Q_INVOKABLE void copy(const QString& text) const; ///< to the clipboard

    // Other content of the clipboard: local files, or a picture without text, as PNG.
    Q_INVOKABLE bool clipboardHoldsFiles() const;
    Q_INVOKABLE QList<QUrl> clipboardFiles() const;
    Q_INVOKABLE QByteArray clipboardPicture() const;

    Q_INVOKABLE void open(const QString& path) const; ///< a file, in the desktop's default program

    /// Makes the screen reader say the item's accessible name when idle, without moving the focus.
    Q_INVOKABLE void announce(QQuickItem* item) const;

    bool eventFilter(QObject* object, QEvent* event) override;

Q_SIGNALS:
    void lastInputWasKeyChanged();

private:
    bool m_lastInputWasKey = false;
};

}
