#pragma once

#include "Foundation/Result.h"

#include <QList>
#include <QObject>
#include <QUrl>
#include <functional>

namespace corvane {

enum class ColourScheme { Light, Dark };

/// What the program asks of the desktop. Every part may be missing; then nothing happens.
class Desktop : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    virtual void openInBrowser(const QUrl& url) = 0;

    /// Opens it in the desktop's default program; false if none starts.
    virtual bool openFile(const QString& path) = 0;
    virtual bool openLink(const QUrl& link) = 0;

    /// Lets the user choose files in the desktop's dialog. Unless `context` is destroyed first, `done` is called once:
    /// with the files (none if the user cancelled), or with the reason, for the user, why there is no dialog.
    virtual void chooseFiles(
        const QString& title, QObject* context, std::function<void(const Result<QList<QUrl>>& files)> done)
        = 0;

    /// The same for one folder.
    virtual void chooseFolder(
        const QString& title, QObject* context, std::function<void(const Result<QList<QUrl>>& folder)> done)
        = 0;

    virtual QString hostName() const = 0; ///< empty if the machine has none

    /// The badge on the program's icon; 0 clears it.
    virtual void setBadge(int count) = 0;

    virtual ColourScheme colourScheme() const = 0;
    virtual bool prefersReducedMotion() const = 0;

Q_SIGNALS:
    void appearanceChanged();
};

}
