#pragma once

#include <QObject>
#include <functional>

namespace corvane {

/// How text gets into other programs.
enum class InsertionWay {
    None, ///< not possible on this desktop
    PasteKeys, ///< by the clipboard and the paste shortcut
    Typing, ///< by synthetic keys, which the desktop asks the user about, or by the accessibility of the focused one
};

enum class InsertionOutcome {
    Inserted,
    Copied, ///< it is on the clipboard
    Password, ///< the focused field is a password field and got nothing
    Missed, ///< every way failed, and it is not on the clipboard either
};

/// Inserts text at the cursor of whichever program has the focus. The clipboard keeps its content.
class TextInsertion : public QObject {
    Q_OBJECT
public:
    using Done = std::function<void(InsertionOutcome)>;
    using QObject::QObject;

    virtual InsertionWay way() const = 0;

    /// New windows take the focus on this desktop, and only the focused program can use the clipboard.
    virtual bool isBoundToFocus() const = 0;

    /// The currently focused program gets the next text.
    virtual void aim() = 0;

    /// One line of text. `done` is called within six seconds, later only while a long text is typed; never after this
    /// object is destroyed. A second text during an insertion fails.
    virtual void insert(const QString& text, Done done) = 0;

Q_SIGNALS:
    void wayChanged();
};

}
