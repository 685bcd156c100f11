#pragma once

#include <QObject>

namespace corvane {

class UserDefaults;

/// The font size of terminals; the last one chosen is kept.
class TerminalFontSize : public QObject {
    Q_OBJECT
    Q_PROPERTY(int pixels READ pixels NOTIFY changed)
public:
    explicit TerminalFontSize(UserDefaults& defaults, QObject* parent = nullptr); ///< `defaults` outlive it

    int pixels() const { return m_pixels; }
    Q_INVOKABLE void enlarge(int steps);
    Q_INVOKABLE void reset();

Q_SIGNALS:
    void changed();

private:
    void set(int pixels);

    UserDefaults& m_defaults;
    int m_pixels;
};

}
