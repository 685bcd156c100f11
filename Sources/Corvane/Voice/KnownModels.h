#pragma once

#include <QList>
#include <QString>
#include <QUrl>

namespace corvane {

/// A published speech model.
struct KnownModel {
    QString name; ///< such as "Base"
    QString fileName; ///< such as "ggml-base.bin"
    qint64 sizeMiB = 0; ///< approximate
    bool englishAlone = false;
    QString note; ///< what it is suited for
};

/// From small to large: larger ones are more accurate and slower.
const QList<KnownModel>& knownModels();

/// The default download address of the model; the user can enter another one.
QUrl publishedAt(const KnownModel& model);

/// The display name of a model file: "Whisper base", or the file name if it is unknown.
QString modelName(const QString& fileName);

}
