#include "Engine.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QProcessEnvironment>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace corvane::torture {

namespace {

constexpr auto booksVariable = "CORVANE_TORTURE";
constexpr auto ordersVariable = "CORVANE_TORTURE_ORDERS";
constexpr int repeatedSends = 200; // acknowledged again at each start
constexpr int conversations = 50;

/// A single system call, so that a kill happens either before or after the write.
void append(const QString& path, const QByteArray& line)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0 || ::write(file, line.constData(), size_t(line.size())) != line.size())
        qFatal("%s cannot be written", qPrintable(path));
    ::close(file);
}

QByteArray lineOf(const QJsonObject& event)
{
    return "@@CORVANE@@" + compactJson(event) + '\n';
}

QByteArray message(qint64 number, int bytes)
{
    const QString body = u"Message %1 says that the kiln is at %2 degrees"_s.arg(number).arg(number * 7919 % 1300);
    return lineOf({ { u"type"_s, u"message"_s }, { u"ack"_s, number },
        { u"convExternalId"_s, u"chat%1@torture"_s.arg(number % conversations) },
        { u"providerMsgId"_s, messageId(number) }, { u"direction"_s, u"IN"_s }, { u"ts"_s, 1'760'000'000'000 + number },
        { u"body"_s, body.leftJustified(bytes, u'.') } });
}

QByteArray acknowledgment(const QString& draftId)
{
    return lineOf({ { u"type"_s, u"sendAck"_s }, { u"draftId"_s, draftId }, { u"status"_s, u"sent"_s },
        { u"providerMsgId"_s, u"out:"_s + draftId } });
}

class Engine {
public:
    Engine(const QString& books, const EngineOrders& orders)
        : m_books(books)
        , m_orders(orders)
        , m_next(m_books.acknowledged() + 1)
        , m_paced(m_next + orders.atOnce)
        , m_last(m_next + orders.messages - 1)
        , m_out(lineOf({ { u"type"_s, u"status"_s }, { u"state"_s, u"open"_s } }))
    {
        m_books.noteLife();
        const QStringList sent = m_books.sent();
        for (const QString& draft : sent.sliced(std::max<qsizetype>(0, sent.size() - repeatedSends)))
            m_out += acknowledgment(draft);
    }

    int run()
    {
        ::fcntl(STDOUT_FILENO, F_SETFL, O_NONBLOCK);
        for (;;) {
            const bool hasMore = m_next <= m_last;
            if (m_out.isEmpty() && hasMore && m_pause.hasExpired()) {
                m_out = message(m_next++, m_orders.bytes);
                m_pause.setRemainingTime(m_next < m_paced ? 0 : m_orders.pauseMs);
            }
            pollfd files[] { { STDIN_FILENO, POLLIN, 0 }, { STDOUT_FILENO, short(m_out.isEmpty() ? 0 : POLLOUT), 0 } };
            ::poll(files, 2, m_out.isEmpty() && hasMore ? int(m_pause.remainingTime()) : -1);
            if (files[1].revents != 0 && !write())
                return 1;
            if (files[0].revents != 0 && !read())
                return 0;
        }
    }

private:
    bool write()
    {
        const ssize_t count = ::write(STDOUT_FILENO, m_out.constData(), size_t(m_out.size()));
        if (count > 0)
            m_out.remove(0, count);
        return count >= 0 || errno == EAGAIN || errno == EINTR;
    }

    bool read()
    {
        QByteArray piece(65536, Qt::Uninitialized);
        const ssize_t count = ::read(STDIN_FILENO, piece.data(), size_t(piece.size()));
        if (count <= 0)
            return count < 0 && errno == EINTR;
        m_in += piece.first(count);
        for (qsizetype end = m_in.indexOf('\n'); end >= 0; end = m_in.indexOf('\n')) {
            obey(jsonObject(m_in.first(end)).value_or(QJsonObject()));
            m_in.remove(0, end + 1);
        }
        return true;
    }

    void obey(const QJsonObject& command)
    {
        const QString word = command[u"cmd"_s].toString();
        if (word == "ack"_L1)
            m_books.noteAcknowledged(command[u"n"_s].toInteger());
        if (word != "send"_L1)
            return;
        const QString draft = command[u"draftId"_s].toString();
        m_books.noteSent(draft);
        m_out += acknowledgment(draft);
    }

    EngineBooks m_books;
    const EngineOrders m_orders;
    qint64 m_next;
    const qint64 m_paced; ///< the first message followed by a pause
    const qint64 m_last;
    QByteArray m_out;
    QByteArray m_in;
    QDeadlineTimer m_pause { 0 };
};

}

qint64 EngineBooks::acknowledged() const
{
    constexpr qint64 longestLine = 32;
    QFile file(m_folder + u"/acknowledged"_s);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    file.seek(std::max<qint64>(0, file.size() - longestLine));
    return file.readAll().trimmed().split('\n').last().toLongLong();
}

QStringList EngineBooks::lines(const QString& book) const
{
    QFile file(m_folder + u'/' + book);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)
                                          : QStringList();
}

QStringList EngineBooks::sent() const
{
    return lines(u"sent"_s);
}

qsizetype EngineBooks::lives() const
{
    return lines(u"lives"_s).size();
}

void EngineBooks::note(const QString& book, const QString& line)
{
    append(m_folder + u'/' + book, line.toUtf8() + '\n');
}

void EngineBooks::noteAcknowledged(qint64 number)
{
    note(u"acknowledged"_s, QString::number(number));
}

void EngineBooks::noteSent(const QString& draftId)
{
    note(u"sent"_s, draftId);
}

void EngineBooks::noteLife()
{
    note(u"lives"_s, QString::number(::getpid()));
}

void giveOrders(QProcessEnvironment& environment, const QString& books, const EngineOrders& orders)
{
    environment.insert(QString::fromLatin1(booksVariable), books);
    environment.insert(QString::fromLatin1(ordersVariable),
        u"%1 %2 %3 %4"_s.arg(orders.messages).arg(orders.pauseMs).arg(orders.bytes).arg(orders.atOnce));
}

QString messageId(qint64 number)
{
    return u"m%1"_s.arg(number);
}

int runEngine(const QString& script)
{
    EngineOrders orders;
    const QStringList words = qEnvironmentVariable(ordersVariable).split(u' ');
    if (script.endsWith("/src/main.ts"_L1) && words.size() == 4)
        orders = { words[0].toInt(), words[1].toInt(), words[2].toInt(), words[3].toInt() };
    return Engine(qEnvironmentVariable(booksVariable), orders).run();
}

}
