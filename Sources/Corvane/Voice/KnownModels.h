#pragma once

#include <QList>
#include <QString>
#include <QUrl>

namespace corvane {

/// A model that others publish.
struct KnownModel {
    QString name; ///< such as "Base"
    QString fileName; ///< such as "ggml-base.bin"
    qint64 sizeMiB = 0; ///< about
    bool englishAlone = false;
    QString note; ///< what it is good for
};

/// From small to large: a larger one hears better and takes longer.
const QList<KnownModel>& knownModels();

/// Where the project that makes the models publishes this one; a person may name another place.
QUrl publishedAt(const KnownModel& model);

/// What a model's file is called on the screen: "Whisper base", or the file's name where it is not known.
QString modelName(const QString& fileName);

}
