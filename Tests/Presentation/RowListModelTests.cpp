#include "Presentation/RowListModel.h"

#include "Support/Print.h"
#include "Support/VirtualScheduler.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

class Line {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(int value MEMBER value)
public:
    QString id;
    int value = 0;

    static constexpr const char* role = "line";
    const QString& key() const { return id; }
    bool operator==(const Line&) const = default;
};

QStringList keysOf(const std::string& letters)
{
    QStringList keys;
    for (const char letter : letters)
        keys.append(QChar::fromLatin1(letter));
    return keys;
}

QList<Line> linesOf(const std::string& letters)
{
    QList<Line> lines;
    for (const QString& key : keysOf(letters))
        lines.append(Line { key, 0 });
    return lines;
}

std::string shown(const QAbstractItemModel& model)
{
    std::string letters;
    for (int row = 0; row < model.rowCount(); ++row)
        letters += model.data(model.index(row, 0), Qt::UserRole).toString().toStdString();
    return letters;
}

using Kind = ListEdit::Kind;

}

TEST(ListEdits, aRowThatRisesOrFallsIsOneMove)
{
    EXPECT_EQ(
        listEdits(keysOf("abcde"), keysOf("eabcd")), (QList<ListEdit> { { .kind = Kind::Move, .at = 4, .to = 0 } }));
    EXPECT_EQ(
        listEdits(keysOf("abcde"), keysOf("bcdea")), (QList<ListEdit> { { .kind = Kind::Move, .at = 0, .to = 5 } }));
    EXPECT_EQ(listEdits(keysOf("abcde"), keysOf("axbcd")),
        (QList<ListEdit> { { .kind = Kind::Remove, .at = 4 }, { .kind = Kind::Insert, .at = 1, .source = 1 } }));
    EXPECT_TRUE(listEdits(keysOf("abc"), keysOf("abc")).isEmpty());
}

TEST(ListEdits, neighboursComeAndGoTogether)
{
    EXPECT_EQ(listEdits({}, keysOf("abc")), (QList<ListEdit> { { .kind = Kind::Insert, .at = 0, .count = 3 } }));
    EXPECT_EQ(listEdits(keysOf("abcdef"), keysOf("aef")),
        (QList<ListEdit> { { .kind = Kind::Remove, .at = 1, .count = 3 } }));
    EXPECT_EQ(listEdits(keysOf("ab"), keysOf("axyb")),
        (QList<ListEdit> { { .kind = Kind::Insert, .at = 1, .count = 2, .source = 1 } }));
    EXPECT_EQ(listEdits(keysOf("aa"), keysOf("ab")).size(), 2) << "keys that are not unique replace everything";
}

TEST(RowListModel, everySequenceOfListsIsShownAsItIsAndTheTesterFindsNoFault)
{
    RowListModel<Line> model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QRandomGenerator random(20'251'121);
    for (int round = 0; round < 400; ++round) {
        std::string letters = "abcdefghijklmnopqrstuvwxyz";
        for (size_t i = letters.size() - 1; i > 0; --i) {
            if (round % 3 != 0 || random.bounded(8) == 0)
                std::swap(letters[i], letters[random.bounded(quint32(i + 1))]);
        }
        letters.resize(random.bounded(27U));
        QList<Line> lines = linesOf(letters);
        for (Line& line : lines)
            line.value = int(random.bounded(2));
        model.assign(lines);
        ASSERT_EQ(shown(model), letters);
        ASSERT_EQ(model.rows(), lines);
    }
}

TEST(RowListModel, onlyTheRowsThatChangedAreTouched)
{
    RowListModel<Line> model;
    model.assign(linesOf("abcdef"));
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    QSignalSpy moves(&model, &QAbstractItemModel::rowsMoved);
    QSignalSpy counts(&model, &GadgetListModel::countChanged);
    QList<Line> next = linesOf("eabcdf");
    next[0].value = 7;
    model.assign(next);
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(changes.first().first().toModelIndex().row(), 0);
    EXPECT_EQ(moves.size(), 1);
    EXPECT_EQ(counts.size(), 0);
    model.assign(next);
    EXPECT_EQ(changes.size() + moves.size(), 2) << "the same rows again touch nothing";
    model.assignChanged(keysOf("eabgc"), { { "g", Line { "g", 1 } }, { "a", Line { "a", 2 } } });
    EXPECT_EQ(shown(model), "eabgc");
    EXPECT_EQ(changes.size(), 2) << "of those that were there only one changed";
    EXPECT_EQ(model.rows().at(3).value, 1);
    model.assign({});
    EXPECT_EQ(counts.size(), 2);
    EXPECT_EQ(model.roleNames().value(Qt::UserRole + 1), "value");
}

TEST(RowListModel, aRowThatWasActedOnKeepsItsPlaceUntilItIsReleased)
{
    VirtualScheduler clock;
    RowListModel<Line> model(clock);
    const QSignalSpy inside(&model, &HoldingListModel::pointerInsideChanged);
    const int held = model.roleNames().key("held");
    int left = 0;
    const auto leave = [&](Line& line) {
        line.value = 9;
        ++left;
    };
    model.assign(linesOf("abcd"));
    model.hold("b");
    model.assign(linesOf("acd"), leave);
    EXPECT_EQ(shown(model), "acd") << "the pointer is elsewhere";
    model.assign(linesOf("abcd"));
    model.setPointerInside(true);
    model.setPointerInside(true);
    EXPECT_EQ(inside.size(), 1);
    model.assign(linesOf("acd"), leave);
    model.assign(linesOf("xacd"), leave);
    EXPECT_EQ(shown(model), "xabcd") << "behind its neighbour";
    EXPECT_EQ(model.rows().at(2).value, 9);
    EXPECT_EQ(left, 1);
    EXPECT_TRUE(model.data(model.index(2), held).toBool());
    EXPECT_FALSE(model.data(model.index(1), held).toBool());
    clock.advance(Milliseconds(1999));
    model.hold("c");
    clock.advance(Milliseconds(1999));
    EXPECT_EQ(shown(model), "xabcd") << "the next one acted on begins the time anew";
    clock.advance(Milliseconds(1));
    EXPECT_EQ(shown(model), "xacd");
    model.assign(linesOf("ad"), leave);
    EXPECT_EQ(shown(model), "acd") << "what nobody acted on goes at once";
    model.assign(linesOf("acd"));
    EXPECT_FALSE(model.data(model.index(1), held).toBool()) << "it came back";
    model.assign(linesOf("ad"), leave);
    model.setPointerInside(false);
    EXPECT_EQ(shown(model), "ad");
    EXPECT_EQ(left, 3);

    RowListModel<Line> plain;
    plain.assign(linesOf("ab"));
    plain.setPointerInside(true);
    plain.hold("a");
    plain.assign(linesOf("b"));
    EXPECT_EQ(shown(plain), "b") << "without a clock nothing is held";
    const int line = plain.roleNames().key("line");
    EXPECT_EQ(plain.data(plain.index(0), line).value<Line>(), linesOf("b").first());
    EXPECT_FALSE(plain.data(plain.index(0), Qt::DisplayRole).isValid());
    EXPECT_FALSE(plain.data(QModelIndex(), line).isValid());
    EXPECT_EQ(plain.rowCount(plain.index(0)), 0);
}

#include "RowListModelTests.moc"
