#include "Presentation/Form.h"

#include "Foundation/UserDefaults.h"
#include "Presentation/SendKeys.h"
#include "Presentation/UndoOffer.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

class NameForm final : public corvane::Form {
public:
    bool isOpen() const override { return true; }
    QString title() const override { return "Name"; }
    QString buttonLabel() const override { return "Save"; }
    bool complete() const override { return !field("name").trimmed().isEmpty(); }
    void submit() override { }
    void close() override { }
    using Form::setFields;
};

}

TEST(Form, itsFieldsBeginFilledAndTellWhatIsTyped)
{
    NameForm form;
    const QSignalSpy fields(&form, &Form::fieldsChanged);
    const QSignalSpy changed(&form, &Form::changed);
    form.setFields({ { .id = "name", .label = "Name" }, { .id = "note", .label = "Note" } }, { { "name", "Ana" } });
    EXPECT_EQ(fields.size(), 2) << "the old ones are let go first";
    EXPECT_EQ(form.fieldCount(), 2);
    EXPECT_EQ(form.messageKind(), "bad");
    FormField& name = form.field("name");
    EXPECT_EQ(form.fieldAt(0), &name);
    EXPECT_FALSE(name.isTyped());
    EXPECT_EQ(changed.size(), 0);
    const QSignalSpy text(&name, &FormField::textChanged);
    name.type("Ana");
    EXPECT_TRUE(name.isTyped());
    EXPECT_EQ(text.size() + changed.size(), 0) << "the text is the same";
    name.type(" Ben ");
    EXPECT_EQ(text.size() + changed.size(), 2);
    EXPECT_EQ(name.trimmed(), "Ben");
    EXPECT_EQ(form.values(), (QHash<QString, QString> { { "name", " Ben " }, { "note", "" } }));
    name.type("");
    EXPECT_FALSE(name.isTyped()) << "nothing is left of it";
    EXPECT_FALSE(form.complete());
    const QSignalSpy readOnly(&name, &FormField::readOnlyChanged);
    name.setReadOnly(true);
    name.setReadOnly(true);
    EXPECT_TRUE(name.readOnly());
    EXPECT_EQ(readOnly.size(), 1);
    form.setFields({ { .id = "name", .label = "Name" } });
    EXPECT_EQ(form.fieldCount(), 1);
    EXPECT_EQ(form.field("name").text(), "");
}

TEST(UndoOffer, itIsTakenOnceOrEndsAfterTenSeconds)
{
    VirtualScheduler clock;
    int changes = 0;
    QString undone;
    UndoOffer offer(clock, [&] { ++changes; });
    const auto undoing = [&](const char* word) {
        return [&undone, word] {
            undone += word;
        };
    };
    offer.take();
    EXPECT_EQ(undone, "");
    changes = 0;
    offer.offer("Moved", undoing("a"));
    EXPECT_EQ(offer.text(), "Moved");
    EXPECT_EQ(changes, 1);
    clock.advance(Milliseconds(9999));
    offer.offer("Deleted", undoing("b"));
    clock.advance(Milliseconds(9999));
    EXPECT_EQ(offer.text(), "Deleted") << "each has its own ten seconds";
    offer.take();
    offer.take();
    EXPECT_EQ(undone + offer.text(), "b");
    offer.offer("Moved", undoing("c"));
    changes = 0;
    clock.advance(Milliseconds(10'000));
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(offer.text(), "");
    offer.take();
    EXPECT_EQ(undone, "b");
    EXPECT_EQ(clock.pendingTimers(), 0);
}

TEST(SendKeys, returnSendsOnlyIfSomebodyChoseIt)
{
    const TemporaryHome home;
    UserDefaults defaults(home.paths().defaultsFile);
    EXPECT_FALSE(returnSends(defaults));
    EXPECT_EQ(sendKeys(defaults), "Ctrl+Return");
    setReturnSends(defaults, true);
    EXPECT_TRUE(returnSends(defaults));
    EXPECT_EQ(sendKeys(defaults), "Return");
    setReturnSends(defaults, false);
    EXPECT_FALSE(returnSends(defaults));
}
