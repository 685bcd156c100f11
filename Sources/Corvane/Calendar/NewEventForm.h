#pragma once

#include "Platform/CalendarSource.h"
#include "Presentation/Form.h"

#include <QDate>
#include <functional>

namespace corvane {

/// Adds an event to the calendar.
class NewEventForm final : public corvane::Form {
    Q_OBJECT
public:
    /// `add` takes an entry without id and stamp, and returns why it cannot be added; empty if it can.
    explicit NewEventForm(std::function<QString(const NewCalendarEntry&)> add, QObject* parent = nullptr);

    bool isOpen() const override { return m_isOpen; }
    QString title() const override;
    QString buttonLabel() const override;
    bool complete() const override { return true; } ///< `submit` reports what is missing
    QString message() const override { return m_error; }

    void open(const QDate& day, const QTime& from);
    void submit() override;
    void close() override;

private:
    Result<NewCalendarEntry> entry() const;

    const std::function<QString(const NewCalendarEntry&)> m_add;
    QString m_error;
    bool m_isOpen = false;
};

}
