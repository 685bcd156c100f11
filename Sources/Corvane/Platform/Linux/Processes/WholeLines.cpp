#include "Platform/Linux/Processes/WholeLines.h"

namespace corvane {

QByteArray WholeLines::take(QByteArrayView read)
{
    if (m_isTooLong) {
        const qsizetype end = read.indexOf(m_end);
        m_isTooLong = end < 0;
        read = m_isTooLong ? QByteArrayView() : read.sliced(end + 1);
    }
    QByteArray lines;
    if (const qsizetype end = read.lastIndexOf(m_end); end >= 0) {
        lines = std::exchange(m_rest, {}).append(read.first(end + 1));
        read = read.sliced(end + 1);
    }
    m_rest.append(read);
    m_isTooLong = m_isTooLong || m_rest.size() > longest;
    if (m_isTooLong)
        m_rest = {};
    return lines;
}

}
