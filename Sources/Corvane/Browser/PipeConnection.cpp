#include "Browser/PipeConnection.h"

#include <QPointer>

namespace corvane {

void PipeConnection::take(const OutputChunk& chunk)
{
    const QPointer<PipeConnection> self(this);
    for (qsizetype from = 0, end = 0; self && (end = chunk.lines.indexOf(messageEnd, from)) >= 0; from = end + 1)
        receive(chunk.lines.sliced(from, end - from));
}

void PipeConnection::write(const QByteArray& message)
{
    if (m_child && !m_child->write(message + messageEnd))
        fail(QString());
}

}
