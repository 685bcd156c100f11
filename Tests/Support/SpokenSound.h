#pragma once

#include "Foundation/Literals.h"

#include <QFile>

namespace corvane {

/// A sentence of an English novel, read aloud, of three seconds.
inline const QString spokenSound
    = u"/usr/share/pocketsphinx/test/data/librivox/sense_and_sensibility_01_austen_64kb-0880.wav"_s;

inline QByteArray spokenBytes()
{
    QFile file(spokenSound);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}
