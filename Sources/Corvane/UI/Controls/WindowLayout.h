#pragma once

#include <QObject>
#include <QSize>
#include <QtQmlIntegration>

namespace corvane {

class UserDefaults;

/// The pane widths, the open sections and the window size; all are remembered.
class WindowLayout : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window makes it.")
    Q_PROPERTY(int listWidth READ listWidth WRITE setListWidth NOTIFY panesChanged)
    Q_PROPERTY(int contactWidth READ contactWidth WRITE setContactWidth NOTIFY panesChanged)
public:
    /// The defaults outlive the object.
    explicit WindowLayout(UserDefaults& defaults, QObject* parent = nullptr);

    /// In pixels, clamped to the limits of each pane.
    int listWidth() const;
    void setListWidth(int width);
    int contactWidth() const;
    void setContactWidth(int width);

    /// Whether a section of the contact pane is open ("identity", "info", "actions"); open by default.
    Q_INVOKABLE bool sectionOpen(const QString& section) const;
    Q_INVOKABLE void setSectionOpen(const QString& section, bool open);

    /// 1320 x 820 if the remembered size is missing or below 1100 x 700; never larger than the screen.
    QSize windowSize(const QSize& available) const;
    bool hasWindowSize() const; ///< false until a window was closed
    void setWindowSize(const QSize& size);

Q_SIGNALS:
    void panesChanged();

private:
    int paneWidth(const QString& key, int usual) const;
    void setPaneWidth(const QString& key, int width);

    UserDefaults& m_defaults;
};

}
