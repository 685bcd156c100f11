#include "Browser/BrowserFieldValue.h"

#include "Foundation/Literals.h"

#include <QColor>
#include <QHash>
#include <QLocale>
#include <QRegularExpression>
#include <algorithm>

namespace corvane {

namespace {

using Kind = BrowserFieldKind;

constexpr int weekDays = 7;
constexpr int weeksShown = 6;
constexpr QLatin1StringView usualTime = "T12:00"_L1;

QString weekOf(QDate day)
{
    int year = 0;
    const int week = day.weekNumber(&year);
    return u"%1-W%2"_s.arg(year, 4, 10, QChar(u'0')).arg(week, 2, 10, QChar(u'0'));
}

/// The Monday of "2026-W47".
QDate mondayOf(const QString& week)
{
    static const QRegularExpression form(u"^(\\d{4})-?[Ww](\\d{1,2})$"_s);
    const auto parts = form.match(week);
    if (!parts.hasMatch())
        return {};
    const int year = parts.captured(1).toInt();
    const int number = parts.captured(2).toInt();
    const QDate inFirst(year, 1, 4);
    const QDate monday = inFirst.addDays(weekDays * (number - 1) - inFirst.dayOfWeek() + 1);
    int itsYear = 0;
    return monday.weekNumber(&itsYear) == number && itsYear == year ? monday : QDate();
}

std::optional<QString> dateValue(const QString& typed)
{
    QDate day = QDate::fromString(typed, Qt::ISODate);
    if (!day.isValid())
        day = QLocale().toDate(typed, QLocale::ShortFormat);
    return day.isValid() ? std::optional(day.toString(Qt::ISODate)) : std::nullopt;
}

std::optional<QString> timeValue(const QString& typed)
{
    for (const QString& form : { u"H:mm"_s, u"H:mm:ss"_s, u"H:mm:ss.zzz"_s }) {
        if (const QTime time = QTime::fromString(typed, form); time.isValid())
            return time.toString(u'H' + form);
    }
    return std::nullopt;
}

std::optional<QString> dateTimeValue(const QString& typed)
{
    const qsizetype between = std::max(typed.indexOf(u'T'), typed.lastIndexOf(u' '));
    const auto day = dateValue(typed.first(std::max<qsizetype>(0, between)).trimmed());
    const auto time = timeValue(typed.sliced(between + 1));
    return day && time ? std::optional(*day + u'T' + *time) : std::nullopt;
}

QList<BrowserFieldOption> days(Kind kind, QDate shown, const QString& value)
{
    const QLocale locale;
    const QDate first(shown.year(), shown.month(), 1);
    const int back = (first.dayOfWeek() - locale.firstDayOfWeek() + weekDays) % weekDays;
    const QString time = value.contains(u'T') ? value.sliced(value.indexOf(u'T')) : QString(usualTime);
    QList<BrowserFieldOption> options;
    for (int n = 0; n < weekDays * weeksShown; ++n) {
        const QDate day = first.addDays(n - back);
        BrowserFieldOption option;
        option.value = kind == Kind::Week ? weekOf(day) : day.toString(Qt::ISODate);
        if (kind == Kind::DateTime)
            option.value += time;
        option.label = QString::number(day.day());
        option.name = locale.toString(day, QLocale::LongFormat);
        option.isAside = day.month() != shown.month();
        options.append(option);
    }
    return options;
}

QList<BrowserFieldOption> months(QDate shown)
{
    const QLocale locale;
    QList<BrowserFieldOption> options;
    for (int month = 1; month <= 12; ++month) {
        BrowserFieldOption option;
        option.value = QDate(shown.year(), month, 1).toString(u"yyyy-MM"_s);
        option.label = locale.standaloneMonthName(month, QLocale::ShortFormat);
        option.name = locale.standaloneMonthName(month) + u' ' + QString::number(shown.year());
        options.append(option);
    }
    return options;
}

QList<BrowserFieldOption> halfHours()
{
    QList<BrowserFieldOption> options;
    for (int minutes = 0; minutes < 24 * 60; minutes += 30) {
        BrowserFieldOption option;
        option.value = QTime(minutes / 60, minutes % 60).toString(u"HH:mm"_s);
        option.label = option.name = option.value;
        options.append(option);
    }
    return options;
}

/// Greys, then one column for each hue, from light to dark.
QList<BrowserFieldOption> colors()
{
    constexpr int hues = 8;
    constexpr int shades = 4;
    constexpr int saturation = 190;
    constexpr int brightest = 255;
    QList<BrowserFieldOption> options;
    const auto add = [&options](const QColor& color) {
        BrowserFieldOption option;
        option.value = option.name = option.color = color.name();
        options.append(option);
    };
    for (int n = 0; n < hues; ++n)
        add(QColor::fromHsl(0, 0, brightest - n * brightest / (hues - 1)));
    for (int shade = 0; shade < shades; ++shade) {
        for (int n = 0; n < hues; ++n)
            add(QColor::fromHsl(n * 360 / hues, saturation, brightest - (shade + 1) * brightest / (shades + 1)));
    }
    return options;
}

}

std::optional<Kind> browserFieldKind(const QString& type)
{
    static const QHash<QString, Kind> kinds { { u"date"_s, Kind::Date }, { u"datetime-local"_s, Kind::DateTime },
        { u"month"_s, Kind::Month }, { u"week"_s, Kind::Week }, { u"time"_s, Kind::Time },
        { u"color"_s, Kind::Color } };
    const auto known = kinds.constFind(type);
    return known == kinds.cend() ? std::nullopt : std::optional(*known);
}

std::optional<QString> browserFieldValue(Kind kind, const QString& typed)
{
    const QString text = typed.trimmed();
    switch (kind) {
    case Kind::Date:
        return dateValue(text);
    case Kind::DateTime:
        return dateTimeValue(text);
    case Kind::Month:
        if (const QDate day = QDate::fromString(text + u"-01"_s, Qt::ISODate); day.isValid())
            return day.toString(u"yyyy-MM"_s);
        return std::nullopt;
    case Kind::Week:
        if (const QDate monday = mondayOf(text); monday.isValid())
            return weekOf(monday);
        return std::nullopt;
    case Kind::Time:
        return timeValue(text);
    case Kind::Color:
        return QColor::isValidColor(text) ? std::optional(QColor(text).name()) : std::nullopt;
    }
    return std::nullopt;
}

QDate browserFieldDay(Kind kind, const QString& value)
{
    if (kind == Kind::Week)
        return mondayOf(value);
    constexpr qsizetype length = 10;
    const QString day = kind == Kind::Month ? value + u"-01"_s : value.first(std::min(length, value.size()));
    return QDate::fromString(day, Qt::ISODate);
}

bool allows(const BrowserField& field, const QString& value)
{
    // Values of one kind also sort correctly as texts.
    return (field.least.isEmpty() || value >= field.least) && (field.most.isEmpty() || value <= field.most);
}

QList<BrowserFieldOption> browserFieldOptions(const BrowserField& field, QDate shown, const QString& value)
{
    QList<BrowserFieldOption> options = field.kind == Kind::Month ? months(shown)
        : field.kind == Kind::Time                                ? halfHours()
        : field.kind == Kind::Color                               ? colors()
                                                                  : days(field.kind, shown, value);
    for (BrowserFieldOption& option : options) {
        option.isChosen = option.value == value;
        option.isOffered = allows(field, option.value);
    }
    return options;
}

}
