#pragma once

#include <QDate>
#include <QObject>
#include <optional>

namespace corvane {

/// The fields for which browsers have a picker.
enum class BrowserFieldKind { Date, DateTime, Month, Week, Time, Color };

std::optional<BrowserFieldKind> browserFieldKind(const QString& type); ///< of the "type" of an input

/// As the page takes it: "2026-11-22", "2026-11-22T14:30", "2026-11", "2026-W47", "14:30" or "#3366cc". Nothing if
/// the text is not a value of this kind.
std::optional<QString> browserFieldValue(BrowserFieldKind kind, const QString& typed);

/// The day that the value is, or starts with; invalid for times and colours.
QDate browserFieldDay(BrowserFieldKind kind, const QString& value);

/// A value to choose from.
struct BrowserFieldOption {
    Q_GADGET
    Q_PROPERTY(QString value MEMBER value)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString color MEMBER color)
    Q_PROPERTY(bool chosen MEMBER isChosen)
    Q_PROPERTY(bool aside MEMBER isAside)
    Q_PROPERTY(bool offered MEMBER isOffered)
public:
    QString value;
    QString label; ///< empty for a colour
    QString name; ///< accessible name
    QString color; ///< only for a colour
    bool isChosen = false;
    bool isAside = false; ///< a day of the previous or next month
    bool isOffered = true; ///< the page allows it

    bool operator==(const BrowserFieldOption&) const = default;
};

/// What the page specifies for a field.
struct BrowserField {
    BrowserFieldKind kind = BrowserFieldKind::Date;
    QString label = {};
    QString least = {}; ///< empty for any
    QString most = {}; ///< empty for any
    bool isRequired = false;
};

bool allows(const BrowserField& field, const QString& value);

/// Six weeks around the month of `shown`; the months of its year; half hours; colours. `value` is the field's.
QList<BrowserFieldOption> browserFieldOptions(const BrowserField& field, QDate shown, const QString& value);

}
