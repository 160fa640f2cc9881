// The list box under the three panes: sorting without regard to case, the
// pinned root, and the click handler: once per click, on the chosen item too,
// on keyboard moves, and at once when code sets the index.
#include <QtTest>

#include "gui/ListBox.h"
#include "support/GuiFixture.h"
#include "support/TestRunner.h"

using namespace ct;
using ct::test::Items;

struct SortRow {
    const char* name;
    QStringList added;
    const char* pinned;
    QStringList expected;
};
CT_TEST_ROWS(sorting, SortRow, {
    {"case is ignored", {"beta", "Alpha", "gamma", "ALPHA2"}, "", {"Alpha", "ALPHA2", "beta", "gamma"}},
    {"equal but for case keeps both", {"a", "A"}, "", {"A", "a"}},
    {"root stays first", {"\\b", "!x", "-", "."}, ".", {".", "!x", "-", "\\b"}},
    {"paths", {"\\Bilder\\Urlaub", "\\bilder", "\\Bilder"}, "", {"\\Bilder", "\\bilder", "\\Bilder\\Urlaub"}},
}) {
    // One at a time and all at once give the same list.
    ListBox one, many;
    one.SetPinnedFirst(QString::fromUtf8(row.pinned));
    many.SetPinnedFirst(QString::fromUtf8(row.pinned));
    for (const QString& s : row.added) one.AddItem(s);
    many.AddItem(row.added.first());
    many.AddItems(row.added.mid(1));
    CT_COMPARE(Items(&one), row.expected);
    CT_COMPARE(Items(&many), row.expected);
}

CT_TEST(codeSetRunsHandlerAtOnce) {
    ListBox list;
    int clicks = 0;
    list.Click = [&] { ++clicks; };
    list.AddItems({"c", "a", "b"});
    CT_COMPARE(clicks, 0);
    CT_COMPARE(list.ListIndex(), -1);
    list.SetListIndex(1);
    CT_COMPARE(clicks, 1);
    CT_COMPARE(list.Text(), "b");
    list.SetListIndex(1);
    CT_COMPARE(clicks, 2);
    // Adding keeps the choice on its item and runs nothing.
    list.AddItem("0");
    CT_COMPARE(list.Text(), "b");
    list.AddItems({"1", "bb"});
    CT_COMPARE(list.Text(), "b");
    CT_COMPARE(clicks, 2);
    list.Clear();
    CT_COMPARE(list.ListIndex(), -1);
    CT_COMPARE(clicks, 2);
}

CT_TEST(handlersNestInsideTheSetter) {
    ListBox outer, inner;
    std::vector<std::string> trace;
    outer.AddItems({"x", "y"});
    outer.Click = [&] {
        trace.push_back("outer in");
        inner.Clear();
        inner.AddItem("i");
        inner.SetListIndex(0);
        trace.push_back("outer out");
    };
    inner.Click = [&] { trace.push_back("inner"); };
    outer.SetListIndex(0);
    CT_COMPARE(trace, (std::vector<std::string>{"outer in", "inner", "outer out"}));
}

CT_TEST(userClicksRunOnce) {
    ListBox list;
    list.resize(200, 200);
    list.show();
    int clicks = 0;
    list.Click = [&] { ++clicks; };
    list.AddItems({"a", "b", "c"});
    auto at = [&](int row) { return list.visualItemRect(list.item(row)).center(); };
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, at(0));
    CT_COMPARE(clicks, 1);
    CT_COMPARE(list.ListIndex(), 0);
    // The chosen item again: a click all the same.
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, at(0));
    CT_COMPARE(clicks, 2);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, at(2));
    CT_COMPARE(clicks, 3);
    CT_COMPARE(list.ListIndex(), 2);
    // Ctrl+click doesn't take the choice away.
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::ControlModifier, at(2));
    CT_COMPARE(list.ListIndex(), 2);
    // Below the last item: nothing changes.
    const int before = clicks;
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, QPoint(5, 190));
    CT_COMPARE(list.ListIndex(), 2);
    CT_COMPARE(clicks, before);
    // Keyboard moves.
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_Up);
    CT_COMPARE(list.ListIndex(), 1);
    CT_COMPARE(clicks, before + 1);
    QTest::keyClick(&list, Qt::Key_Home);
    CT_COMPARE(list.ListIndex(), 0);
    CT_COMPARE(clicks, before + 2);
}

CT_TEST(focusAloneChoosesNothing) {
    ListBox list;
    int clicks = 0;
    list.Click = [&] { ++clicks; };
    list.AddItems({"a", "b"});
    list.show();
    list.setFocus(Qt::TabFocusReason);
    QFocusEvent in(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(&list, &in);
    CT_COMPARE(list.ListIndex(), -1);
    CT_COMPARE(clicks, 0);
}

CT_TEST_MAIN()
