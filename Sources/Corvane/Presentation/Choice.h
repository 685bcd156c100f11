#pragma once

#include <QList>
#include <QObject>

namespace corvane {

/// One of a few options or actions, with its label.
class Choice {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString label MEMBER label)
public:
    QString id;
    QString label;

    bool operator==(const Choice&) const = default;
};

/// A tab, and the number of things in it.
class TabItem {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(int count MEMBER count)
public:
    QString id;
    QString label;
    int count = 0; ///< 0 is not shown

    bool operator==(const TabItem&) const = default;
};

/// A person to choose.
class ContactChoice {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString channel MEMBER channel)
    Q_PROPERTY(QString detail MEMBER detail)
public:
    QString id;
    QString name;
    QString channel; ///< such as "WHATSAPP"; may be empty
    QString detail; ///< the labels of their channels

    bool operator==(const ContactChoice&) const = default;
};

}
