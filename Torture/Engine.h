#pragma once

#include <QStringList>

class QProcessEnvironment;

namespace corvane::torture {

/// The records that the simulated engine and the tests share: append-only files of lines in a folder. An engine sends
/// numbered messages, starting at the first unacknowledged one, and "sends" drafts.
class EngineBooks {
public:
    explicit EngineBooks(const QString& folder)
        : m_folder(folder)
    {
    }

    qint64 acknowledged() const; ///< the highest number that Corvane acknowledged as stored
    QStringList sent() const; ///< the draft's id for each time that it was sent
    qsizetype lives() const; ///< how often the engine was started

    QStringList lines(const QString& book) const;

    void note(const QString& book, const QString& line);
    void noteAcknowledged(qint64 number);
    void noteSent(const QString& draftId);
    void noteLife();

private:
    QString m_folder;
};

/// What the engine does in one run; passed in the environment.
struct EngineOrders {
    int messages = 0; ///< how many it sends
    int pauseMs = 0; ///< between two messages
    int bytes = 40; ///< approximate size of a body
    int atOnce = 0; ///< how many of the first ones are sent without a pause
};

void giveOrders(QProcessEnvironment& environment, const QString& books, const EngineOrders& orders);

/// The id of a message from the engine.
QString messageId(qint64 number);

/// Runs as the program that Corvane starts in place of Node.
int runEngine(const QString& script);

}
