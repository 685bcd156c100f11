#pragma once

#include "Foundation/Literals.h"

#include <QFile>

namespace corvane {

/// A recording of a sentence from an English novel, three seconds long.
inline const QString spokenSound
    = u"/usr/share/pocketsphinx/test/data/librivox/sense_and_sensibility_01_austen_64kb-0880.wav"_s;

inline QByteArray spokenBytes()
{
    QFile file(spokenSound);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}
