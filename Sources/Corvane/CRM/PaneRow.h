#pragma once

#include <QMetaType>
#include <QString>

namespace corvane {

/// A line in a section of the contact pane; unused fields are empty.
class PaneRow {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString timeText MEMBER timeText)
    Q_PROPERTY(QString channel MEMBER channel)
    Q_PROPERTY(QString icon MEMBER icon)
    Q_PROPERTY(QString stage MEMBER stage)
public:
    QString id; ///< the argument of the section's actions
    QString label; ///< the kind of line: "Email", "Call", "WhatsApp"
    QString text;
    QString detail; ///< secondary text: "matching email", "Proposal · $12.5k"
    QString timeText;
    QString channel; ///< such as "WHATSAPP", for its mark
    QString icon; ///< for a line without a channel
    QString stage; ///< of a deal

    static constexpr const char* role = "entry";
    const QString& key() const { return id; }
    bool operator==(const PaneRow&) const = default;
};

}
