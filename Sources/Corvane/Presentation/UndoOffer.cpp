#include "Presentation/UndoOffer.h"

namespace corvane {

namespace {

constexpr Milliseconds undoTime { 10'000 };

}

UndoOffer::UndoOffer(Scheduler& scheduler, std::function<void()> changed)
    : m_scheduler(scheduler)
    , m_changed(std::move(changed))
{
}

void UndoOffer::offer(const QString& text, std::function<void()> undo)
{
    m_text = text;
    m_undo = std::move(undo);
    m_end = m_scheduler.after(undoTime, [this] { dismiss(); });
    m_changed();
}

void UndoOffer::take()
{
    const auto undo = std::exchange(m_undo, nullptr);
    dismiss();
    if (undo)
        undo();
}

void UndoOffer::dismiss()
{
    m_text.clear();
    m_undo = nullptr;
    m_end.reset();
    m_changed();
}

}
