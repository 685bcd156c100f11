#pragma once

#include "Foundation/Result.h"

#include <QList>
#include <QObject>
#include <QUrl>
#include <functional>

namespace corvane {

enum class ColourScheme { Light, Dark };

/// What the program asks of the desktop around it. Each part may be missing; then nothing happens.
class Desktop : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    virtual void openInBrowser(const QUrl& url) = 0;

    /// In the program that the desktop keeps for such a file, or for such a link; false where none starts.
    virtual bool openFile(const QString& path) = 0;
    virtual bool openLink(const QUrl& link) = 0;

    /// Lets the person choose files, in the desktop's own window. Unless `context` goes first, `done` is called once:
    /// with the files, none where the person gave up, or with why there is no such window, in words for them.
    virtual void chooseFiles(
        const QString& title, QObject* context, std::function<void(const Result<QList<QUrl>>& files)> done)
        = 0;

    /// The same for one folder.
    virtual void chooseFolder(
        const QString& title, QObject* context, std::function<void(const Result<QList<QUrl>>& folder)> done)
        = 0;

    virtual QString hostName() const = 0; ///< empty where the machine has none

    /// The number at the program's icon; 0 clears it.
    virtual void setBadge(int count) = 0;

    virtual ColourScheme colourScheme() const = 0;
    virtual bool prefersReducedMotion() const = 0;

Q_SIGNALS:
    void appearanceChanged();
};

}
