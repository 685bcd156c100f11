#pragma once

#include "Browser/BrowserEvents.h"
#include "Browser/BrowserSteps.h"
#include "Foundation/Result.h"

#include <QImage>
#include <QRectF>

namespace corvane {

/// What a page looked like and what went wrong in it, as it is written to disk. Created by the controller, with every
/// secret masked.
struct BrowserEvidencePayload {
    qint64 capturedAt = 0; ///< milliseconds since the epoch
    QString title;
    QString url;
    QString requestedURL;
    QString note;
    QString status;
    QString lastError;
    QString screenshotPath; ///< empty without a picture
    QList<BrowserConsoleEvent> consoleEvents;
    QList<BrowserNetworkEvent> networkEvents;
    QList<BrowserStep> steps;
    QString browser; ///< its name and version
};

/// Where evidence was written.
struct SavedEvidence {
    BrowserEvidencePayload payload;
    QString folder;
    QString file() const; ///< evidence.json
    QString report() const; ///< report.html

    /// The path of the picture if there is one, else of the folder.
    QString capturePath() const { return payload.screenshotPath.isEmpty() ? folder : payload.screenshotPath; }
};

/// The folder of a project's evidence below `root`. The slug cannot lead out of it.
QString evidenceFolder(const QString& root, const QString& projectSlug);

/// Writes evidence.json, the picture if there is one, and a self-contained report.html to a new
/// folder "manual-{time}" of the project. All of it is private to the user. On failure nothing remains; the
/// error is for the user. Blocks; may run on any thread.
Result<SavedEvidence> writeEvidence(
    const QString& root, const QString& projectSlug, BrowserEvidencePayload payload, const QImage& picture);

/// What an earlier `writeEvidence` wrote; a path of the folder or of a file in it.
Result<BrowserEvidencePayload> readEvidence(const QString& path);

/// The picture with these parts blacked out; each is given in fractions of its width and height.
QImage blackedOut(QImage picture, const QList<QRectF>& parts);

}
