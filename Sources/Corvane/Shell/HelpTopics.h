#pragma once

#include <QList>
#include <QObject>

namespace corvane {

/// A page of the help.
class HelpTopic {
    Q_GADGET
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString text MEMBER text)
public:
    QString title;
    QString text; ///< Markdown, without the title

    bool operator==(const HelpTopic&) const = default;
};

/// The pages in the folder "help" of the resources, in the order of their file names.
QList<HelpTopic> readHelp(const QString& resources);

}
