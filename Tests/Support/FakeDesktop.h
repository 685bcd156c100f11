#pragma once

#include "Foundation/Literals.h"
#include "Platform/Desktop.h"

#include <QList>

namespace corvane {

/// A desktop that records the requests made to it. The test sets its answers and its appearance.
class FakeDesktop final : public Desktop {
public:
    void openInBrowser(const QUrl& url) override { opened.append(url); }
    bool openFile(const QString& path) override
    {
        openedFiles.append(path);
        return opens;
    }
    bool openLink(const QUrl& link) override
    {
        openedLinks.append(link);
        return opens;
    }
    void chooseFiles(const QString&, QObject*, std::function<void(const Result<QList<QUrl>>& files)> done) override
    {
        done(chosen);
    }
    void chooseFolder(const QString&, QObject*, std::function<void(const Result<QList<QUrl>>& folder)> done) override
    {
        done(chosen);
    }
    QString hostName() const override { return host; }
    void setBadge(int count) override { badge = count; }
    ColourScheme colourScheme() const override { return scheme; }
    bool prefersReducedMotion() const override { return reducedMotion; }

    void setAppearance(ColourScheme newScheme, bool newReducedMotion)
    {
        scheme = newScheme;
        reducedMotion = newReducedMotion;
        Q_EMIT appearanceChanged();
    }

    QList<QUrl> opened;
    QStringList openedFiles;
    QList<QUrl> openedLinks;
    Result<QList<QUrl>> chosen; ///< what the user chooses
    bool opens = true; ///< whether there is a program for files and links
    QString host = u"studio+1"_s;
    int badge = -1; ///< -1 until it is set
    ColourScheme scheme = ColourScheme::Light;
    bool reducedMotion = false;
};

}
