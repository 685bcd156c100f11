#pragma once

#include <QStringList>

class QProcessEnvironment;

namespace corvane::torture {

/// The played engine and what it and the torture know of each other: files of lines in a folder, to which each adds. An
/// engine tells numbered messages, from the first that was never acknowledged on, and "sends" drafts.
class EngineBooks {
public:
    explicit EngineBooks(const QString& folder)
        : m_folder(folder)
    {
    }

    qint64 acknowledged() const; ///< the highest number that Corvane said is stored
    QStringList sent() const; ///< a draft's id each time that it was sent
    qsizetype lives() const; ///< how often the engine was started

    QStringList lines(const QString& book) const;

    void note(const QString& book, const QString& line);
    void noteAcknowledged(qint64 number);
    void noteSent(const QString& draftId);
    void noteLife();

private:
    QString m_folder;
};

/// What the engine does in one life; handed over in the environment.
struct EngineOrders {
    int messages = 0; ///< how many it tells
    int pauseMs = 0; ///< between two
    int bytes = 40; ///< of a body, about
    int atOnce = 0; ///< the first so many, without a pause
};

void giveOrders(QProcessEnvironment& environment, const QString& books, const EngineOrders& orders);

/// The id of a message that the engine tells.
QString messageId(qint64 number);

/// As Corvane's "Node" does.
int runEngine(const QString& script);

}
