#include "Presentation/SizeWords.h"

#include <QLocale>

namespace corvane {

QString sizeWords(qint64 bytes)
{
    const int decimals = bytes < 1024 * 1024 ? 0 : 1;
    return QLocale().formattedDataSize(bytes, decimals, QLocale::DataSizeTraditionalFormat);
}

}
