// A list box that keeps its items sorted by itself in the list order of the
// core (SortKey: case ignored, Ä beside A, ß as ss), each item's key made once,
// holds one choice at a time, and runs its click handler on a user's click
// (the already chosen item included), on a move by keyboard, and at once,
// inside the setter, when code sets the current index.
#pragma once

#include <QListWidget>
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <string>

namespace ct {

class ListBox : public QListWidget {
public:
    explicit ListBox(QWidget* parent = nullptr);

    // The click handler (lstDaten_Click and its kind).
    std::function<void()> Click;

    // An item that always stands first, whatever the sort says ("." in the
    // folder list). Empty: none.
    void SetPinnedFirst(const QString& text) { pinned_ = text; }

    // Adds one item at its sorted place. Doesn't change the choice or run
    // the handler.
    void AddItem(const QString& text);
    // The same with the item's SortKey made already (the hit list has the
    // UTF-8 text at hand).
    void AddItem(const QString& text, const std::string& key);
    // Adds many items at once, as if each were added by AddItem; much faster
    // for the thousands of names of a large disc.
    void AddItems(QStringList texts);
    // Removes every item; no choice is left and the handler doesn't run.
    void Clear();

    int ListCount() const { return count(); }
    QString List(int index) const;
    // The chosen item's index, -1 without a choice.
    int ListIndex() const;
    // The chosen item's text, empty without a choice.
    QString Text() const;
    // Chooses `index` (-1: no choice) and runs the handler at once for a valid
    // index, even when that item was chosen already.
    void SetListIndex(int index);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event = nullptr) const override;

private:
    // Keys as kept on the items: a pinned item's key sorts before all others.
    QByteArray keyFor(const QString& text, const std::string& sortKey) const;
    QByteArray keyOf(int row) const;
    int sortedPlace(const QByteArray& key) const;
    void userChanged();
    void runClick();

    QString pinned_;
    int quiet_ = 0;  // > 0 while code changes the list: no handler from signals
};

}  // namespace ct
