#pragma once

#include <QJsonArray>
#include <QList>
#include <QString>
#include <optional>

namespace corvane {

/// One thing that a person did in a page, so that another can do it again.
struct BrowserStep {
    enum class Kind { Open, Click, Type, Choose, Press };

    Kind kind = Kind::Open;
    QString selector = {}; ///< of the element; empty for Open
    QString label = {}; ///< what the element is called on the page
    QString text = {}; ///< the address, the text typed, the choice or the key
    bool isWithheld = false; ///< what was typed may be a secret, and is not here

    bool operator==(const BrowserStep&) const = default;
};

/// Such as "Type “ana” in “Name”".
QString stepLine(const BrowserStep& step);

QJsonArray stepsToJson(const QList<BrowserStep>& steps);
QList<BrowserStep> stepsFromJson(const QJsonArray& steps); ///< what does not read is left out

/// What a person did since the page was opened, as the page reports it.
class BrowserSteps {
public:
    static constexpr qsizetype kept = 200;

    void opened(const QString& url); ///< by the address field: what was done before no longer counts
    void reported(const QJsonObject& report); ///< by the script in the page

    const QList<BrowserStep>& steps() const { return m_steps; }
    /// What stood in fields that are secret, or whose kind is not known.
    const QStringList& secrets() const { return m_secrets; }
    void addSecret(const QString& value);

private:
    void add(const BrowserStep& step);

    QList<BrowserStep> m_steps;
    QStringList m_secrets;
    qint64 m_secretField = -1; ///< whose value is the last of the secrets, and may still grow
};

}
