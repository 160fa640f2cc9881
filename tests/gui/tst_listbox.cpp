// The list box under the three panes: sorted without regard to case with the
// root pinned first, and the click handler run once per click and at once
// (nested) when code sets the index.
#include <QtTest>

#include "gui/ListBox.h"
#include "support/GuiFixture.h"

using namespace ct;
using ct::test::Items;

class TstListBox : public QObject {
    Q_OBJECT
private slots:
    void sorting_data() {
        QTest::addColumn<QStringList>("added");
        QTest::addColumn<QString>("pinned");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("case is ignored") << QStringList{"beta", "Alpha", "gamma", "ALPHA2"} << ""
                                         << QStringList{"Alpha", "ALPHA2", "beta", "gamma"};
        QTest::newRow("root stays first") << QStringList{"\\b", "!x", "-", "."} << "."
                                          << QStringList{".", "!x", "-", "\\b"};
    }
    void sorting() {
        QFETCH(QStringList, added);
        QFETCH(QString, pinned);
        QFETCH(QStringList, expected);
        ListBox list;
        list.SetPinnedFirst(pinned);
        list.AddItem(added.first());
        list.AddItems(added.mid(1));
        QCOMPARE(Items(&list), expected);
    }

    void handlersNestInsideTheSetter() {
        ListBox outer, inner;
        QStringList trace;
        outer.AddItems({"x", "y"});
        outer.Click = [&] {
            trace << "outer in";
            inner.Clear();
            inner.AddItem("i");
            inner.SetListIndex(0);
            trace << "outer out";
        };
        inner.Click = [&] { trace << "inner"; };
        outer.SetListIndex(0);
        QCOMPARE(trace, (QStringList{"outer in", "inner", "outer out"}));
        outer.AddItem("a");  // adding keeps the choice and runs nothing
        QCOMPARE(outer.Text(), QString("x"));
        QCOMPARE(trace.size(), 3);
    }
};

QTEST_MAIN(TstListBox)
#include "tst_listbox.moc"
