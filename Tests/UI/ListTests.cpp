#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/InboxView.h"
#include "UI/WindowTest.h"

#include <QTest>

namespace corvane {

using ListTest = WindowTest;

TEST_F(ListTest, rowsArePickedWithCtrlAndShiftAndHaveAMenu)
{
    showInbox();
    const auto row = [this](int index) {
        const QAbstractItemModel* const rows = contacts.contacts();
        return u"contact:"_s + rows->index(index, 0).data(rows->roleNames().key("id")).toString();
    };
    const auto press = [&](int index, Qt::MouseButton button, Qt::KeyboardModifiers modifiers) {
        const QQuickItem* target = item(row(index));
        const QPoint at = target->mapToScene(QPointF(target->width() / 2, target->height() / 2)).toPoint();
        QTest::mouseClick(front(), button, modifiers, at);
        rest();
    };
    const auto picked = [&] {
        return inbox.actions()->bulk()->ids().size();
    };
    press(0, Qt::LeftButton, Qt::NoModifier);
    const QString open = person.selectedId();
    press(2, Qt::LeftButton, Qt::ControlModifier);
    EXPECT_EQ(picked(), 2) << "the open one and this one";
    EXPECT_EQ(person.selectedId(), open);
    press(4, Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_EQ(picked(), 4);
    press(2, Qt::LeftButton, Qt::ControlModifier);
    EXPECT_EQ(picked(), 3);
    QTest::keyClick(front(), Qt::Key_Escape);
    rest();
    EXPECT_EQ(picked(), 0);
    press(2, Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_EQ(picked(), 3) << "from the open one";
    inbox.actions()->bulk()->clear();

    press(0, Qt::RightButton, Qt::NoModifier);
    click(u"contactMenu.read"_s);
    EXPECT_EQ(engines.unreadTotal() > 0, true);
    EXPECT_EQ(person.selectedId(), u""_s) << "an open thread would count as read again";
    EXPECT_EQ(contacts.contacts()->index(0, 0).data(contacts.contacts()->roleNames().key("unread")).toString(), u"1"_s);
}

TEST_F(ListTest, theListKeepsItsPlaceAndSaysWhatCameInAboveIt)
{
    showInbox();
    FakeChild& engine = *launcher.children.first();
    for (int i = 0; i < 30; ++i)
        receive(engine, u"4930%1@s.whatsapp.net"_s.arg(i), u"Person %1"_s.arg(i), u"hello"_s);
    rest();
    QQuickItem* list = item(u"inbox.list"_s);
    list->setProperty("contentY", list->property("contentY").toReal() + 900);
    rest();
    EXPECT_FALSE(contacts.atTop());
    const auto place = [this](const QString& name) {
        const QQuickItem* row = item(u"contact:ct:WHATSAPP:"_s + name);
        return row ? row->mapToScene(QPointF(0, 0)).y() : -1;
    };
    const double before = place(u"493012@s.whatsapp.net"_s);
    receive(engine, u"49301@s.whatsapp.net"_s, u"Person 1"_s, u"from below"_s);
    receive(engine, u"49999@s.whatsapp.net"_s, u"Somebody new"_s, u"hi"_s);
    rest();
    EXPECT_EQ(place(u"493012@s.whatsapp.net"_s), before);
    EXPECT_EQ(contacts.newAbove(), u"2 new above"_s);
    click(u"inbox.newAbove"_s);
    EXPECT_TRUE(contacts.atTop());
    EXPECT_EQ(contacts.newAbove(), QString());
}

}
