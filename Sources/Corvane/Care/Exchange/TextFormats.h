#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QStringList>

namespace corvane {

/// A line of a CSV file (RFC 4180), with its line end.
QByteArray csvLine(const QStringList& fields);

/// A person, written as vCard 4.0.
struct CardPerson {
    QString id;
    QString name;
    QStringList emails;
    QStringList phones;
    QStringList handles; ///< "whatsapp:346…"
};
QByteArray vCard(const CardPerson& person);

/// A calendar file of events with the columns "id", "title", "start_ms", "end_ms", "all_day", "location", "notes".
QByteArray calendarFile(const QList<QJsonObject>& events);

/// A message, written as an e-mail.
struct MailText {
    QString from;
    QString to;
    QString subject;
    QString body;
    QString messageId; ///< without brackets; may be empty
    qint64 atMs = 0;
    QString attachmentName; ///< empty if there is none
    QByteArray attachment;
};
QByteArray mailFile(const MailText& mail);

}
