#pragma once

#include <QObject>
#include <QQuickItem>
#include <QUrl>
#include <QtQmlIntegration>

namespace corvane {

/// What the screens ask of the desktop at the press of a button, and cannot say in QML.
class WindowTools : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// Whether the person last pressed a key rather than a button of the mouse: then the keyboard's place shows.
    Q_PROPERTY(bool lastInputWasKey READ lastInputWasKey NOTIFY lastInputWasKeyChanged)
public:
    explicit WindowTools(QObject* parent = nullptr);

    bool lastInputWasKey() const { return m_lastInputWasKey; }

    Q_INVOKABLE void copy(const QString& text) const; ///< to the clipboard

    // What the clipboard holds besides text: files of this machine, or a picture with no text beside it, as PNG.
    Q_INVOKABLE bool clipboardHoldsFiles() const;
    Q_INVOKABLE QList<QUrl> clipboardFiles() const;
    Q_INVOKABLE QByteArray clipboardPicture() const;

    Q_INVOKABLE void open(const QString& path) const; ///< a file, in the program that the desktop has for it

    /// Says the item's accessible name when the reader has a moment, without moving the focus.
    Q_INVOKABLE void announce(QQuickItem* item) const;

    bool eventFilter(QObject* object, QEvent* event) override;

Q_SIGNALS:
    void lastInputWasKeyChanged();

private:
    bool m_lastInputWasKey = false;
};

}
