#include "gui/ListBox.h"

#include <QMouseEvent>
#include <algorithm>

namespace ct {

namespace {
struct Quiet {
    explicit Quiet(int& n) : n_(n) { ++n_; }
    ~Quiet() { --n_; }
    int& n_;
};
}  // namespace

ListBox::ListBox(QWidget* parent) : QListWidget(parent) {
    setSelectionMode(QAbstractItemView::SingleSelection);
    setUniformItemSizes(true);
    setSortingEnabled(false);
    connect(this, &QListWidget::itemSelectionChanged, this, [this] { userChanged(); });
}

bool ListBox::lessThan(const QString& a, const QString& b) const {
    if (!pinned_.isEmpty()) {
        const bool pa = a == pinned_, pb = b == pinned_;
        if (pa != pb) return pa;
    }
    const int c = a.toCaseFolded().compare(b.toCaseFolded());
    if (c != 0) return c < 0;
    return a.compare(b) < 0;
}

int ListBox::sortedPlace(const QString& text) const {
    // Behind any equal item: a name added twice keeps the order it came in.
    int lo = 0, hi = count();
    while (lo < hi) {
        const int mid = (lo + hi) / 2;
        if (lessThan(text, item(mid)->text()))
            hi = mid;
        else
            lo = mid + 1;
    }
    return lo;
}

void ListBox::AddItem(const QString& text) {
    Quiet q(quiet_);
    insertItem(sortedPlace(text), text);
}

void ListBox::AddItems(QStringList texts) {
    if (texts.isEmpty()) return;
    Quiet q(quiet_);
    // The case-folded key of each text once, rather than twice per comparison:
    // a large disc's root lists tens of thousands of names.
    struct Keyed {
        bool pinned;
        QString key;
        QString text;
    };
    std::vector<Keyed> keyed;
    keyed.reserve(static_cast<std::size_t>(texts.size()));
    for (QString& t : texts) {
        const bool pinned = !pinned_.isEmpty() && t == pinned_;
        keyed.push_back({pinned, t.toCaseFolded(), std::move(t)});
    }
    std::stable_sort(keyed.begin(), keyed.end(), [](const Keyed& a, const Keyed& b) {
        if (a.pinned != b.pinned) return a.pinned;
        const int c = a.key.compare(b.key);
        if (c != 0) return c < 0;
        return a.text.compare(b.text) < 0;
    });
    texts.clear();
    for (Keyed& k : keyed) texts.append(std::move(k.text));
    if (count() == 0) {
        addItems(texts);
        return;
    }
    // Merge with what stands in the list, keeping the choice on its item.
    const int chosen = ListIndex();
    QStringList old;
    old.reserve(count());
    for (int i = 0; i < count(); ++i) old.append(item(i)->text());
    QStringList merged;
    merged.reserve(old.size() + texts.size());
    int newChosen = -1;
    auto a = old.cbegin();
    auto b = texts.cbegin();
    while (a != old.cend() || b != texts.cend()) {
        const bool takeOld = b == texts.cend() || (a != old.cend() && !lessThan(*b, *a));
        if (takeOld) {
            if (a - old.cbegin() == chosen) newChosen = merged.size();
            merged.append(*a++);
        } else {
            merged.append(*b++);
        }
    }
    QListWidget::clear();
    addItems(merged);
    if (newChosen >= 0) setCurrentRow(newChosen, QItemSelectionModel::ClearAndSelect);
}

void ListBox::Clear() {
    Quiet q(quiet_);
    QListWidget::clear();
}

QString ListBox::List(int index) const {
    const QListWidgetItem* it = item(index);
    return it ? it->text() : QString();
}

int ListBox::ListIndex() const {
    const QList<QListWidgetItem*> chosen = selectedItems();
    return chosen.isEmpty() ? -1 : row(chosen.first());
}

QString ListBox::Text() const { return List(ListIndex()); }

void ListBox::SetListIndex(int index) {
    {
        Quiet q(quiet_);
        if (index < 0 || index >= count()) {
            clearSelection();
            setCurrentRow(-1);
            return;
        }
        setCurrentRow(index, QItemSelectionModel::ClearAndSelect);
        scrollToItem(item(index));
    }
    runClick();
}

void ListBox::userChanged() {
    if (quiet_ > 0) return;
    if (ListIndex() >= 0) runClick();
}

void ListBox::runClick() {
    if (Click) Click();
}

void ListBox::mousePressEvent(QMouseEvent* event) {
    const int before = ListIndex();
    const QModelIndex under = indexAt(event->position().toPoint());
    QListWidget::mousePressEvent(event);
    // A press on the item that is chosen already changes no selection, so no
    // signal tells of it; it is a click all the same.
    if (event->button() == Qt::LeftButton && under.isValid() && under.row() == before &&
        ListIndex() == before)
        runClick();
}

QItemSelectionModel::SelectionFlags ListBox::selectionCommand(const QModelIndex& index,
                                                              const QEvent* event) const {
    QItemSelectionModel::SelectionFlags flags = QListWidget::selectionCommand(index, event);
    // Ctrl+click would take the choice away; a list box always keeps one.
    if (index.isValid() && (flags & (QItemSelectionModel::Deselect | QItemSelectionModel::Toggle)))
        return QItemSelectionModel::ClearAndSelect;
    if (!index.isValid() && (flags & QItemSelectionModel::Clear)) return QItemSelectionModel::NoUpdate;
    return flags;
}

}  // namespace ct
