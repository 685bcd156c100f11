#pragma once

#include "Platform/TextInsertion.h"

namespace corvane {

/// Records inserted texts and reports the outcome set by the test.
class FakeTextInsertion final : public TextInsertion {
public:
    InsertionWay way() const override { return current; }
    bool isBoundToFocus() const override { return bound; }
    void aim() override { ++aims; }
    void insert(const QString& text, Done done) override
    {
        texts.append(text);
        QMetaObject::invokeMethod(this, [this, done = std::move(done)] { done(outcome); }, Qt::QueuedConnection);
    }

    InsertionWay current = InsertionWay::PasteKeys;
    InsertionOutcome outcome = InsertionOutcome::Inserted;
    bool bound = false;
    int aims = 0;
    QStringList texts;
};

}
