#include "gui/ListBox.h"

#include <QMouseEvent>
#include <algorithm>
#include <vector>

#include "core/collate.h"

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

namespace {
constexpr int kKeyRole = Qt::UserRole + 7;
}

QByteArray ListBox::keyFor(const QString& text) const {
    // '\0' sorts before every key's first byte but another '\0'; a pinned
    // item gets "\0\0", every other key begins with "\1".
    if (!pinned_.isEmpty() && text == pinned_) return QByteArray(2, '\0');
    const std::string sortKey = SortKey(text.toStdString());
    QByteArray key;
    key.reserve(static_cast<qsizetype>(sortKey.size() + 1));
    key.append('\1');
    key.append(sortKey.data(), static_cast<qsizetype>(sortKey.size()));
    return key;
}

QByteArray ListBox::keyOf(int row) const { return item(row)->data(kKeyRole).toByteArray(); }

int ListBox::sortedPlace(const QByteArray& key) const {
    // Behind any equal item: a name added twice keeps the order it came in.
    int lo = 0, hi = count();
    while (lo < hi) {
        const int mid = (lo + hi) / 2;
        if (key < keyOf(mid))
            hi = mid;
        else
            lo = mid + 1;
    }
    return lo;
}

void ListBox::insertKeyed(const QString& text, const QByteArray& key) {
    auto* it = new QListWidgetItem(text);
    it->setData(kKeyRole, key);
    insertItem(sortedPlace(key), it);
}

void ListBox::AddItem(const QString& text) {
    Quiet q(quiet_);
    insertKeyed(text, keyFor(text));
}

void ListBox::AddItems(QStringList texts) {
    if (texts.isEmpty()) return;
    Quiet q(quiet_);
    // A few items against a long list: each at its sorted place costs less
    // than rebuilding every row.
    if (static_cast<std::size_t>(texts.size()) * 8 < static_cast<std::size_t>(count())) {
        for (const QString& t : texts) insertKeyed(t, keyFor(t));
        return;
    }
    // Each text's key once: a large disc's root lists tens of thousands of names.
    struct Keyed {
        QByteArray key;
        QString text;
    };
    std::vector<Keyed> keyed;
    keyed.reserve(static_cast<std::size_t>(texts.size()));
    for (QString& t : texts) {
        QByteArray k = keyFor(t);
        keyed.push_back({std::move(k), std::move(t)});
    }
    // Stable, so equal keys keep the order they came in, as one by one.
    std::stable_sort(keyed.begin(), keyed.end(), [](const Keyed& a, const Keyed& b) { return a.key < b.key; });
    // Merge with what stands in the list (the keys kept on its items),
    // keeping the choice on its item.
    const int chosen = ListIndex();
    std::vector<Keyed> merged;
    merged.reserve(static_cast<std::size_t>(count()) + keyed.size());
    int newChosen = -1;
    int a = 0;
    auto b = keyed.begin();
    while (a < count() || b != keyed.end()) {
        const bool takeOld = b == keyed.end() || (a < count() && !(b->key < keyOf(a)));
        if (takeOld) {
            if (a == chosen) newChosen = static_cast<int>(merged.size());
            merged.push_back({keyOf(a), item(a)->text()});
            ++a;
        } else {
            merged.push_back(std::move(*b++));
        }
    }
    // One insertion of all rows, then each row's key back on its item, so
    // later single additions find them.
    texts.clear();
    texts.reserve(static_cast<qsizetype>(merged.size()));
    for (const Keyed& k : merged) texts.append(k.text);
    QListWidget::clear();
    addItems(texts);
    for (int i = 0; i < count(); ++i) item(i)->setData(kKeyRole, merged[static_cast<std::size_t>(i)].key);
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
