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

QByteArray ListBox::keyFor(const QString& text, const std::string& sortKey) const {
    // '\0' sorts before every key's first byte but another '\0'; a pinned
    // item gets "\0\0", every other key begins with "\1".
    if (!pinned_.isEmpty() && text == pinned_) return QByteArray(2, '\0');
    QByteArray key(1, '\1');
    key.append(sortKey.data(), static_cast<qsizetype>(sortKey.size()));
    return key;
}

QByteArray ListBox::keyOf(int row) const {
    const QListWidgetItem* it = item(row);
    const QVariant stored = it->data(kKeyRole);
    if (stored.isValid()) return stored.toByteArray();
    return keyFor(it->text(), SortKey(it->text().toStdString()));
}

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

void ListBox::AddItem(const QString& text) { AddItem(text, SortKey(text.toStdString())); }

void ListBox::AddItem(const QString& text, const std::string& sortKey) {
    Quiet q(quiet_);
    const QByteArray key = keyFor(text, sortKey);
    auto* it = new QListWidgetItem(text);
    it->setData(kKeyRole, key);
    insertItem(sortedPlace(key), it);
}

void ListBox::AddItems(QStringList texts) {
    if (texts.isEmpty()) return;
    Quiet q(quiet_);
    // Each text's key once: a large disc's root lists tens of thousands of names.
    struct Keyed {
        std::string key;
        QString text;
    };
    std::vector<Keyed> keyed;
    keyed.reserve(static_cast<std::size_t>(texts.size()));
    for (QString& t : texts) {
        const QByteArray k = keyFor(t, SortKey(t.toStdString()));
        keyed.push_back({k.toStdString(), std::move(t)});
    }
    std::sort(keyed.begin(), keyed.end(), [](const Keyed& a, const Keyed& b) { return a.key < b.key; });
    texts.clear();
    if (count() == 0) {
        for (Keyed& k : keyed) texts.append(std::move(k.text));
        addItems(texts);
        return;
    }
    // Merge with what stands in the list, keeping the choice on its item.
    const int chosen = ListIndex();
    std::vector<Keyed> old;
    old.reserve(static_cast<std::size_t>(count()));
    for (int i = 0; i < count(); ++i) old.push_back({keyOf(i).toStdString(), item(i)->text()});
    texts.reserve(static_cast<qsizetype>(old.size() + keyed.size()));
    int newChosen = -1;
    auto a = old.begin();
    auto b = keyed.begin();
    while (a != old.end() || b != keyed.end()) {
        const bool takeOld = b == keyed.end() || (a != old.end() && !(b->key < a->key));
        if (takeOld) {
            if (a - old.begin() == chosen) newChosen = static_cast<int>(texts.size());
            texts.append(std::move((a++)->text));
        } else {
            texts.append(std::move((b++)->text));
        }
    }
    // One insertion of all rows, without their keys: setting a key on each
    // row cost more than making the keys again where they are needed (a few
    // per binary search of a single item, each row's at the next merge).
    QListWidget::clear();
    addItems(texts);
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
