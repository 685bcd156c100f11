#pragma once

#include <QObject>
#include <functional>

namespace corvane {

/// How text reaches other programs.
enum class InsertionWay {
    None, ///< this desktop lets no program do so
    PasteKeys, ///< the clipboard, and the keys that paste
    Typing, ///< typed keys, which the desktop asks the user about, or the accessibility of the program in front
};

enum class InsertionOutcome {
    Inserted,
    Copied, ///< it lies on the clipboard
    Password, ///< the field in front takes a password, and got nothing
    Missed, ///< no way led anywhere, and the clipboard has not got it either
};

/// Puts text where the user writes, in whichever program that is. The clipboard keeps what it held.
class TextInsertion : public QObject {
    Q_OBJECT
public:
    using Done = std::function<void(InsertionOutcome)>;
    using QObject::QObject;

    virtual InsertionWay way() const = 0;

    /// Windows come with the focus on this desktop, and the clipboard is open to the program that has it.
    virtual bool isBoundToFocus() const = 0;

    /// The program that is in front now gets the next text.
    virtual void aim() = 0;

    /// One line of text. `done` is called later, within six seconds; never once this object is gone. A second text
    /// while one is on its way is missed.
    virtual void insert(const QString& text, Done done) = 0;

Q_SIGNALS:
    void wayChanged();
};

}
