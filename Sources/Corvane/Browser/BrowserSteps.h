#pragma once

#include <QJsonArray>
#include <QList>
#include <QString>
#include <optional>

namespace corvane {

/// One action of the user in a page, described so that it can be repeated.
struct BrowserStep {
    enum class Kind { Open, Click, Type, Choose, Press };

    Kind kind = Kind::Open;
    QString selector = {}; ///< of the element; empty for Open
    QString label = {}; ///< the element's label on the page
    QString text = {}; ///< the address, the text typed, the choice or the key
    bool isWithheld = false; ///< the typed text may be secret and is not stored

    bool operator==(const BrowserStep&) const = default;
};

/// Such as "Type “ana” in “Name”".
QString stepLine(const BrowserStep& step);

QJsonArray stepsToJson(const QList<BrowserStep>& steps);
QList<BrowserStep> stepsFromJson(const QJsonArray& steps); ///< skips unreadable ones

/// The user's actions since the page was opened, as the page reports them.
class BrowserSteps {
public:
    static constexpr qsizetype kept = 200;

    void opened(const QString& url); ///< from the address field: discards earlier steps
    void reported(const QJsonObject& report); ///< by the script in the page

    const QList<BrowserStep>& steps() const { return m_steps; }
    /// The content of fields that are secret or of unknown kind.
    const QStringList& secrets() const { return m_secrets; }
    void addSecret(const QString& value);

private:
    void add(const BrowserStep& step);

    QList<BrowserStep> m_steps;
    QStringList m_secrets;
    qint64 m_secretField = -1; ///< its value is the last of the secrets, and may still grow
};

}
