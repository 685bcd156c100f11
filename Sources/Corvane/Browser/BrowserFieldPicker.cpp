#include "Browser/BrowserFieldPicker.h"

#include "Foundation/Literals.h"
#include "Foundation/Scheduler.h"
#include "Presentation/DateWords.h"

namespace corvane {

namespace {

using Kind = BrowserFieldKind;

QString example(Kind kind)
{
    switch (kind) {
    case Kind::Date:
        return u"a date, such as 2026-11-22"_s;
    case Kind::DateTime:
        return u"a date and a time, such as 2026-11-22 14:30"_s;
    case Kind::Month:
        return u"a month, such as 2026-11"_s;
    case Kind::Week:
        return u"a week, such as 2026-W47"_s;
    case Kind::Time:
        return u"a time, such as 14:30"_s;
    case Kind::Color:
        return u"a colour, such as #3366cc"_s;
    }
    return {};
}

}

BrowserFieldPicker::BrowserFieldPicker(Scheduler& scheduler, Take take, QObject* parent)
    : QObject(parent)
    , m_scheduler(scheduler)
    , m_take(std::move(take))
{
}

void BrowserFieldPicker::open(const BrowserField& field, const QString& value, QPointF place)
{
    m_field = field;
    m_text = value;
    m_place = place;
    m_isOpen = true;
    m_shown = browserFieldDay(field.kind, value);
    if (!m_shown.isValid())
        m_shown = DateWords(m_scheduler.nowMs()).today();
    refresh();
}

QString BrowserFieldPicker::heading() const
{
    if (m_field.kind == Kind::Time || m_field.kind == Kind::Color)
        return {};
    const QString year = QString::number(m_shown.year());
    return m_field.kind == Kind::Month ? year : QLocale().standaloneMonthName(m_shown.month()) + u' ' + year;
}

QStringList BrowserFieldPicker::columns() const
{
    constexpr int ofMonths = 3;
    constexpr int ofTimes = 6;
    constexpr int ofColors = 8;
    if (m_field.kind == Kind::Month || m_field.kind == Kind::Time || m_field.kind == Kind::Color)
        return QStringList(m_field.kind == Kind::Month ? ofMonths : m_field.kind == Kind::Time ? ofTimes : ofColors);
    const QLocale locale;
    QStringList days;
    for (int n = 0; n < 7; ++n)
        days.append(locale.standaloneDayName((locale.firstDayOfWeek() - 1 + n) % 7 + 1, QLocale::ShortFormat));
    return days;
}

void BrowserFieldPicker::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    refresh();
}

void BrowserFieldPicker::turn(int pages)
{
    m_shown = m_field.kind == Kind::Month ? m_shown.addYears(pages) : m_shown.addMonths(pages);
    refresh();
}

void BrowserFieldPicker::choose(const QString& value)
{
    if (m_field.kind == Kind::DateTime)
        setText(value);
    else
        finish(value);
}

void BrowserFieldPicker::accept()
{
    const auto value = browserFieldValue(m_field.kind, m_text);
    if (!value)
        m_refusal = u"Type %1."_s.arg(example(m_field.kind));
    else if (!m_field.least.isEmpty() && *value < m_field.least)
        m_refusal = u"The page takes nothing before %1."_s.arg(m_field.least);
    else if (!m_field.most.isEmpty() && *value > m_field.most)
        m_refusal = u"The page takes nothing after %1."_s.arg(m_field.most);
    else
        return finish(*value);
    Q_EMIT changed();
}

void BrowserFieldPicker::clear()
{
    finish({});
}

void BrowserFieldPicker::close()
{
    if (std::exchange(m_isOpen, false))
        Q_EMIT changed();
}

void BrowserFieldPicker::finish(const QString& value)
{
    close();
    m_take(value);
}

void BrowserFieldPicker::refresh()
{
    m_refusal.clear();
    m_options = browserFieldOptions(m_field, m_shown, browserFieldValue(m_field.kind, m_text).value_or(QString()));
    Q_EMIT changed();
}

}
