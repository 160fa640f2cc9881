#include "gui/frmSuchen.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QEvent>
#include <QFocusEvent>
#include <QSignalBlocker>

#include "core/catalogue.h"
#include "core/collate.h"
#include "gui/layout.h"
#include "gui/Start.h"
#include "gui/appicon.h"
#include "gui/frmHaupt.h"
#include "gui/windows.h"

namespace ct {

namespace {

frmSuchen* g_search = nullptr;

QString Q(const std::string& s) { return QString::fromStdString(s); }

QComboBox* Combo(QWidget* parent, int left, int top, int width) {
    auto* c = new QComboBox(parent);
    Place(c, left, top, width, 315);
    c->setEditable(true);
    c->setInsertPolicy(QComboBox::NoInsert);
    c->setCompleter(nullptr);
    c->setMaxVisibleItems(16);
    return c;
}

QLineEdit* TextBox(QWidget* parent, int left, int top, int width) {
    auto* t = new QLineEdit(parent);
    Place(t, left, top, width, 315);
    return t;
}

QCheckBox* Check(QWidget* parent, int left, int top, int width, int height) {
    auto* c = new QCheckBox(parent);
    Place(c, left, top, width, height);
    return c;
}

// The attribute combinations offered beside "no attributes": runs of the marks
// R H S A T C. Each is compared with the whole Attributes field.
const char* const kAttributeRows[] = {"R H",   "R H S",   "R H S A", "R H S A T", "R H S A T C",
                                      "H S",   "H S A",   "H S A T", "H S A T C", "S A",
                                      "S A T", "S A T C", "A T",     "A T C",     "T C"};

// The hit list as the engine's receiver; the list takes kHitLimit hits. The
// hits of one disc wait until the disc is done (the window shows nothing in
// between anyway) and then go in at once: a large batch sorted on keys made
// once and merged, a small one each at its sorted place.
class ListSink : public HitSink {
public:
    explicit ListSink(ListBox* list) : list_(list) {}
    bool Add(const std::string& hit) override {
        if (Count() >= kHitLimit) return false;
        pending_.push_back(hit);
        return true;
    }
    std::size_t Count() const override { return static_cast<std::size_t>(list_->count()) + pending_.size(); }
    void Flush() {
        if (pending_.size() * 8 >= static_cast<std::size_t>(list_->count())) {
            QStringList texts;
            texts.reserve(static_cast<qsizetype>(pending_.size()));
            for (const std::string& h : pending_) texts.append(Q(h));
            list_->AddItems(std::move(texts));
        } else {
            for (const std::string& h : pending_) list_->AddItem(Q(h), SortKey(h));
        }
        pending_.clear();
    }

private:
    ListBox* list_;
    std::vector<std::string> pending_;
};

}  // namespace

frmSuchen* SearchWindow() { return g_search; }

frmSuchen::frmSuchen(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint |
                          Qt::MSWindowsFixedSizeDialogHint) {
    g_search = this;
    setModal(true);
    setFixedSize(Tw(11880), Tw(7485));

    txtSuchen = TextBox(this, 5040, 1560, 1695);
    cboSuchen = Combo(this, 1800, 240, 2895);
    CheckDateiOrdner = Check(this, 240, 1590, 2655, 255);
    cboOperator = Combo(this, 3000, 1560, 1695);
    CheckDateigröße = Check(this, 240, 2310, 1455, 255);
    cboDateigröße = Combo(this, 1800, 2280, 1695);
    txtDateigröße = TextBox(this, 3840, 2280, 1695);
    CheckAttribut = Check(this, 240, 2670, 1455, 255);
    cboAttribut = Combo(this, 1800, 2640, 1695);
    CheckDatum = Check(this, 240, 3015, 1455, 270);
    cboDatum = Combo(this, 1800, 3000, 1695);
    txtDatum = TextBox(this, 3840, 3000, 1695);
    CheckBeschreibung = Check(this, 240, 3375, 1455, 270);
    cboBeschreibung = Combo(this, 1800, 3360, 1695);
    txtBeschreibung = TextBox(this, 3840, 3360, 1695);

    lstDaten = new ListBox(this);
    Place(lstDaten, 7440, 480, 3135, 3210);
    cmdAlleMarkieren = Button(this, 10680, 2400, 975, 615);
    cmdAlleNichtMarkieren = Button(this, 10680, 3120, 975, 615);

    fraDateien = new QGroupBox(this);
    Place(fraDateien, 240, 3960, 11415, 3015);
    lstDateien = new ListBox(fraDateien);
    Place(lstDateien, 120, 480, 8055, 2400);
    cmdÄndern = Button(fraDateien, 10320, 1980, 975, 315);
    txtBeschreibungText = new QTextEdit(fraDateien);
    Place(txtBeschreibungText, 8280, 2280, 3015, 600);
    txtBeschreibungText->setReadOnly(true);
    txtBeschreibungText->setAcceptRichText(false);
    txtBeschreibungText->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    txtBeschreibungText->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    txtBeschreibungText->setTabChangesFocus(true);

    cmdSuchen = Button(this, 5040, 240, 1695, 375);
    Bold(cmdSuchen);
    cmdSuchen->setDefault(true);
    cmdAbbrechen = Button(this, 5040, 720, 1695, 375);

    lblSuchen = Label(this, 240, 270, 1455, 255);
    lblDP1 = Label(this, 4800, 1590, 135, 255, Qt::AlignHCenter);
    lblWeitereSuchoptionen = Label(this, 240, 2040, 3375, 255);
    lblDP2 = Label(this, 3600, 2310, 135, 255, Qt::AlignHCenter);
    lblDP4 = Label(this, 3600, 3390, 135, 255, Qt::AlignHCenter);
    lblG = Label(fraDateien, 9720, 720, 1575, 255);
    lblGröße = Label(fraDateien, 8280, 720, 1335, 255);
    lblD = Label(fraDateien, 9720, 1200, 1575, 255);
    lblA = Label(fraDateien, 9720, 960, 1575, 255);
    lblDatum = Label(fraDateien, 8280, 1200, 1335, 255);
    lblAttribut = Label(fraDateien, 8280, 960, 1335, 255);
    lblDateien = Label(fraDateien, 120, 240, 8055, 255);
    lblInfo = Label(fraDateien, 8280, 240, 3015, 375);
    lblInfo->setWordWrap(true);
    lblBeschreibung = Label(fraDateien, 8280, 2040, 2055, 255);
    lblDaten = Label(this, 7440, 240, 3135, 255);
    // The bottom row stands 20 twips past the client area's 7485; it keeps its
    // Top and is cut to fit, so the bar shows its whole frame.
    lblAktion = Label(this, 0, 7250, 1215, 235, Qt::AlignHCenter);
    lblTreffer = Label(this, 10800, 7250, 615, 235);
    lblT = Label(this, 11400, 7250, 495, 235);
    lblDP3 = Label(this, 3600, 3030, 135, 255, Qt::AlignHCenter);

    ProgressBar = new QProgressBar(this);
    Place(ProgressBar, 1200, 7250, 9495, 235);
    ProgressBar->setTextVisible(false);
    ProgressBar->setRange(0, 1);
    ProgressBar->setValue(0);
    Line1 = new QFrame(this);
    Line1->setFrameShape(QFrame::VLine);
    Line1->setFrameShadow(QFrame::Sunken);
    Line1->setGeometry(Tw(7080) - 1, Tw(240), 3, Tw(3720 - 240));

    // Tab order as listed; labels, the frame, the bar and the line take no focus.
    QWidget* order[] = {txtSuchen,       cboSuchen,        CheckDateiOrdner, cboOperator,       CheckDateigröße,
                        cboDateigröße,   txtDateigröße,    CheckAttribut,    cboAttribut,       CheckDatum,
                        cboDatum,        txtDatum,         CheckBeschreibung, cboBeschreibung,  txtBeschreibung,
                        lstDaten,        cmdAlleMarkieren, cmdAlleNichtMarkieren, lstDateien,   cmdÄndern,
                        txtBeschreibungText, cmdSuchen,    cmdAbbrechen};
    for (std::size_t i = 0; i + 1 < std::size(order); ++i) setTabOrder(order[i], order[i + 1]);

    connect(cmdSuchen, &QPushButton::clicked, this, [this] { cmdSuchen_Click(); });
    connect(cmdAbbrechen, &QPushButton::clicked, this, [this] { cmdAbbrechen_Click(); });
    connect(cmdÄndern, &QPushButton::clicked, this, [this] { cmdÄndern_Click(); });
    connect(cmdAlleMarkieren, &QPushButton::clicked, this, [this] { cmdAlleMarkieren_Click(); });
    connect(cmdAlleNichtMarkieren, &QPushButton::clicked, this, [this] { cmdAlleNichtMarkieren_Click(); });
    connect(CheckDateiOrdner, &QCheckBox::toggled, this, [this] { CheckDateiOrdner_Click(); });
    connect(CheckDateigröße, &QCheckBox::toggled, this, [this] { CheckDateigröße_Click(); });
    connect(CheckAttribut, &QCheckBox::toggled, this, [this] { CheckAttribut_Click(); });
    connect(CheckDatum, &QCheckBox::toggled, this, [this] { CheckDatum_Click(); });
    connect(CheckBeschreibung, &QCheckBox::toggled, this, [this] { CheckBeschreibung_Click(); });
    connect(cboSuchen, &QComboBox::currentIndexChanged, this, [this] { cboSuchen_Click(); });
    lstDateien->Click = [this] { lstDateien_Click(); };
    for (QComboBox* box : {cboSuchen, cboOperator, cboDateigröße, cboAttribut, cboBeschreibung})
        RefuseTypedText(box, false);
    RefuseTypedText(cboDatum, true);
    txtDatum->installEventFilter(this);

    // The twips were measured in a narrower font than the desktop's: the
    // check boxes and the hit's values take its condensed cut, so that
    // "Beschreibung" and a full time stand in their boxes.
    for (QWidget* w : std::initializer_list<QWidget*>{CheckDateiOrdner, CheckDateigröße, CheckAttribut, CheckDatum,
                                                        CheckBeschreibung, lblG, lblA, lblD}) {
        QFont f = w->font();
        f.setStretch(qobject_cast<QLabel*>(w) ? QFont::Condensed : QFont::SemiCondensed);
        w->setFont(f);
    }
    // The two comparison boxes are 113 px wide, and "does not begin with"
    // is the longest entry of either language: they take the condensed cut.
    for (QComboBox* box : {cboOperator, cboBeschreibung}) {
        QFont f = box->font();
        f.setStretch(QFont::Condensed);
        box->setFont(f);
    }
    // A chosen item is shown from its start, not scrolled to its end.
    for (QComboBox* box : {cboSuchen, cboOperator, cboDateigröße, cboAttribut, cboDatum, cboBeschreibung})
        connect(box, &QComboBox::currentIndexChanged, box, [box] { box->lineEdit()->setCursorPosition(0); });

    InstallHelpKey(this, 10015);
    Form_Load();
}

frmSuchen::~frmSuchen() {
    if (g_search == this) g_search = nullptr;
}

void frmSuchen::RefuseTypedText(QComboBox* box, bool keepText) {
    // A typed text is no choice: the box is left with none chosen, and all but
    // the date operator box lose the text at once, so the engine sees no
    // operator rather than a text of the user's.
    connect(box->lineEdit(), &QLineEdit::textEdited, this, [box, keepText](const QString& text) {
        const QSignalBlocker block(box);
        box->setCurrentIndex(-1);
        box->setEditText(keepText ? text : QString());
    });
}

void frmSuchen::Form_Load() {
    Busy();
    if (frmHaupt* haupt = MainWindow())
        setWindowIcon(haupt->windowIcon());
    else
        setWindowIcon(AppIcon());
    setWindowTitle(ResourceText(10015));

    lblSuchen->setText(ResourceText(10064));
    {
        const QSignalBlocker block(cboSuchen);
        cboSuchen->addItems({ResourceText(10065), ResourceText(10066), ResourceText(10067)});
        cboSuchen->setCurrentIndex(-1);
    }
    cmdSuchen->setText(ResourceText(10014));
    cmdAbbrechen->setText(ResourceText(10004));
    CheckDateiOrdner->setText(ResourceText(10067));
    for (int id = 10068; id <= 10075; ++id) {
        cboOperator->addItem(ResourceText(id));
        cboBeschreibung->addItem(ResourceText(id));
    }
    for (int id : {10068, 10069, 10076, 10077}) {
        cboDateigröße->addItem(ResourceText(id));
        cboDatum->addItem(ResourceText(id));
    }
    for (const char* row : kAttributeRows) cboAttribut->addItem(QString::fromLatin1(row));
    cboAttribut->insertItem(0, ResourceText(10078));
    for (QComboBox* box : {cboBeschreibung, cboDateigröße, cboDatum, cboAttribut}) box->setCurrentIndex(-1);

    lblWeitereSuchoptionen->setText(ResourceText(10079));
    CheckDateigröße->setText(ResourceText(10080));
    CheckAttribut->setText(ResourceText(10081));
    CheckDatum->setText(ResourceText(10082));
    CheckBeschreibung->setText(ResourceText(10083));
    lblDaten->setText(ResourceText(10084));
    cmdAlleMarkieren->setText(ResourceText(10085));
    cmdAlleNichtMarkieren->setText(ResourceText(10086));
    lblDateien->setText(ResourceText(10087));
    lblInfo->setText(ResourceText(10088));
    lblGröße->setText(ResourceText(10026));
    lblAttribut->setText(ResourceText(10037));
    lblDatum->setText(ResourceText(10038));
    lblBeschreibung->setText(ResourceText(10042));
    cmdÄndern->setText(ResourceText(10003));
    lblTreffer->setText(ResourceText(10089));
    Caption(lblSuchen, txtSuchen);
    Caption(lblDaten, lstDaten);
    Caption(lblDateien, lstDateien);
    Caption(lblBeschreibung, txtBeschreibungText);
    Caption(lblGröße, lblG);
    Caption(lblAttribut, lblA);
    Caption(lblDatum, lblD);
    cboSuchen->setAccessibleName(TitleText(10064));
    for (const auto& [box, check] : {std::pair<QWidget*, QAbstractButton*>{cboDateigröße, CheckDateigröße},
                                     {cboAttribut, CheckAttribut}, {cboDatum, CheckDatum},
                                     {cboBeschreibung, CheckBeschreibung}, {txtDateigröße, CheckDateigröße},
                                     {txtDatum, CheckDatum}, {txtBeschreibung, CheckBeschreibung}})
        box->setAccessibleName(WithoutAccessKeys(check->text()));
    for (QLabel* colon : {lblDP1, lblDP2, lblDP3, lblDP4}) colon->setText(QStringLiteral(":"));
    lblT->setText(QStringLiteral("-"));

    // The discs of the main window, in its order, every one marked.
    if (frmHaupt* haupt = MainWindow()) {
        for (int i = 0; i < haupt->lstDaten->ListCount(); ++i) {
            lstDaten->AddItem(haupt->lstDaten->List(i));
        }
    }
    for (int i = 0; i < lstDaten->count(); ++i) {
        QListWidgetItem* item = lstDaten->item(i);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Checked);
    }

    // The start state: the name criterion on, the other four off.
    CheckDateiOrdner->setChecked(true);
    CheckDateiOrdner_Click();
    for (QCheckBox* box : {CheckDateigröße, CheckAttribut, CheckDatum, CheckBeschreibung}) box->setChecked(false);
    CheckDateigröße_Click();
    CheckAttribut_Click();
    CheckDatum_Click();
    CheckBeschreibung_Click();
    for (QWidget* w : std::initializer_list<QWidget*>{lstDateien, cmdÄndern, txtBeschreibungText, lblGröße,
                                                        lblDatum, lblAttribut, lblDateien, lblInfo, lblBeschreibung})
        w->setEnabled(false);

    cboSuchen->setCurrentIndex(2);  // raises cboSuchen_Click
    cboOperator->setCurrentIndex(2);
    lstDaten->SetListIndex(-1);
    StopRequested = false;
    if (Start::WideLayout) ApplyWideSearchLayout();
    txtSuchen->setFocus();
    Normal();
}

void frmSuchen::Form_Unload() {
    if (frmHaupt* haupt = MainWindow()) {
        haupt->OrdnerInfoLöschen();
        haupt->DateiInfoLöschen();
    }
}

void frmSuchen::ApplyWideSearchLayout() {
    setFixedSize(Tw(15330 - 120), Tw(7485));  // outer 15330 x 7965, less the frame
    SetWidth(lblDaten, 6495);
    SetWidth(lstDaten, 6495);
    SetLeft(cmdAlleMarkieren, 14040);
    SetLeft(cmdAlleNichtMarkieren, 14040);
    SetWidth(fraDateien, 14775);
    SetWidth(lblDateien, 11415);
    SetWidth(lstDateien, 11415);
    for (QWidget* w : std::initializer_list<QWidget*>{lblInfo, lblGröße, lblAttribut, lblDatum, lblBeschreibung,
                                                        txtBeschreibungText})
        SetLeft(w, 11640);
    for (QWidget* w : {lblG, lblA, lblD}) SetLeft(w, 13080);
    SetLeft(cmdÄndern, 13680);
    SetWidth(ProgressBar, 12855);
    SetLeft(lblTreffer, 14160);
    SetLeft(lblT, 14760);
}

// --- Criteria -----------------------------------------------------------------------

void frmSuchen::CheckDateiOrdner_Click() {
    const bool on = CheckDateiOrdner->isChecked();
    for (QWidget* w : std::initializer_list<QWidget*>{cboOperator, txtSuchen, lblDP1}) w->setEnabled(on);
}
void frmSuchen::CheckDateigröße_Click() {
    const bool on = CheckDateigröße->isChecked();
    for (QWidget* w : std::initializer_list<QWidget*>{cboDateigröße, txtDateigröße, lblDP2}) w->setEnabled(on);
}
void frmSuchen::CheckAttribut_Click() { cboAttribut->setEnabled(CheckAttribut->isChecked()); }
void frmSuchen::CheckDatum_Click() {
    const bool on = CheckDatum->isChecked();
    for (QWidget* w : std::initializer_list<QWidget*>{cboDatum, txtDatum, lblDP3}) w->setEnabled(on);
}
void frmSuchen::CheckBeschreibung_Click() {
    const bool on = CheckBeschreibung->isChecked();
    for (QWidget* w : std::initializer_list<QWidget*>{cboBeschreibung, txtBeschreibung, lblDP4}) w->setEnabled(on);
}

void frmSuchen::cboSuchen_Click() {
    // The check box names what is searched.
    if (cboSuchen->currentIndex() > -1) CheckDateiOrdner->setText(cboSuchen->itemText(cboSuchen->currentIndex()));
}

void frmSuchen::txtDatum_LostFocus() {
    txtDatum->setText(Q(FullDateText(txtDatum->text().toStdString())));
}

bool frmSuchen::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txtDatum && event->type() == QEvent::FocusOut) txtDatum_LostFocus();
    return QDialog::eventFilter(watched, event);
}

void frmSuchen::cmdAlleMarkieren_Click() {
    for (int i = 0; i < lstDaten->count(); ++i) lstDaten->item(i)->setCheckState(Qt::Checked);
    lstDaten->SetListIndex(-1);
}

void frmSuchen::cmdAlleNichtMarkieren_Click() {
    for (int i = 0; i < lstDaten->count(); ++i) lstDaten->item(i)->setCheckState(Qt::Unchecked);
    lstDaten->SetListIndex(-1);
}

SearchCriteria frmSuchen::CriteriaFromControls() const {
    SearchCriteria c;
    auto text = [](const QString& s) { return s.toStdString(); };
    c.kind = cboSuchen->currentIndex();
    c.checkName = CheckDateiOrdner->isChecked();
    // The operator texts of the language in force name the operators; a
    // text that is none of them (typed, emptied) turns its test off.
    std::array<std::string, 10> operatorTexts;
    for (int i = 0; i < 10; ++i) operatorTexts[static_cast<std::size_t>(i)] = text(ResourceText(kOperatorBaseId + i));
    c.nameOperator = TextOperator(operatorTexts, text(cboOperator->currentText()));
    c.nameTerm = text(txtSuchen->text());
    c.checkSize = CheckDateigröße->isChecked();
    c.sizeOperatorChosen = cboDateigröße->currentIndex() >= 0;
    c.sizeOperator = NumberOperator(operatorTexts, text(cboDateigröße->currentText()));
    c.sizeText = text(txtDateigröße->text());
    c.checkAttributes = CheckAttribut->isChecked();
    c.attributesChosen = cboAttribut->currentIndex() >= 0;
    c.attributes = text(cboAttribut->currentText());
    c.checkDate = CheckDatum->isChecked();
    c.dateOperatorChosen = cboDatum->currentIndex() >= 0;
    c.dateOperator = NumberOperator(operatorTexts, text(cboDatum->currentText()));
    c.dateText = text(txtDatum->text());
    c.checkDescription = CheckBeschreibung->isChecked();
    c.descriptionOperatorChosen = cboBeschreibung->currentIndex() >= 0;
    c.descriptionOperator = TextOperator(operatorTexts, text(cboBeschreibung->currentText()));
    c.descriptionText = text(txtBeschreibung->text());
    c.noAttributesText = text(ResourceText(kNoAttributesBaseId));
    for (int i = 0; i < lstDaten->count(); ++i)
        c.discs.push_back({text(lstDaten->item(i)->text()), lstDaten->item(i)->checkState() == Qt::Checked});
    return c;
}

// --- The run ------------------------------------------------------------------------

void frmSuchen::cmdSuchen_Click() {
    // The button stays enabled while the engine lets events run; a press then
    // must not start a second run inside the first.
    if (running_ || unloaded_) return;
    Busy();
    const SearchCriteria criteria = CriteriaFromControls();
    if (const int topic = CheckCriteria(criteria)) {
        HilfeZeigen(ResourceText(topic));
        Normal();
        return;
    }
    int marked = 0;
    for (const SearchDisc& d : criteria.discs) marked += d.marked ? 1 : 0;

    running_ = true;
    lblAktion->setText(QStringLiteral("Suche läuft:"));
    lblT->setText(QStringLiteral("0"));
    ProgressBar->setMaximum(marked);
    QCoreApplication::processEvents();
    if (StopRequested) {  // closed while the window caught up
        running_ = false;
        Normal();
        return;
    }
    lstDateien->Clear();

    ListSink sink(lstDateien);
    SearchHooks hooks;
    hooks.stopRequested = &StopRequested;
    hooks.afterDisc = [this, &sink](int discCounter, std::size_t hits) {
        sink.Flush();
        ProgressBar->setValue(discCounter);
        lblT->setText(QString::number(hits));
        QCoreApplication::processEvents();
    };
    const SearchEnd end = RunSearch(Start::DataFolder, criteria, sink, hooks);
    sink.Flush();
    running_ = false;
    if (end == SearchEnd::Stopped) {
        Normal();
        return;
    }
    if (end == SearchEnd::HitLimit) {
        // The hits so far stay; nothing is enabled or chosen.
        HilfeZeigen(ResourceText(kTopicHitLimit));
        Normal();
        return;
    }
    EndOfRun();
}

void frmSuchen::EndOfRun() {
    if (lstDateien->count() > 0) {
        for (QWidget* w : std::initializer_list<QWidget*>{lblDateien, lstDateien, lblInfo, lblGröße, lblAttribut,
                                                            lblDatum, lblBeschreibung, cmdÄndern,
                                                            txtBeschreibungText})
            w->setEnabled(true);
        lstDateien->SetListIndex(0);  // shows the first hit
    }
    ProgressBar->setValue(0);
    lblAktion->setText(QStringLiteral("Fertig!"));
    Normal();
}

void frmSuchen::cmdAbbrechen_Click() {
    if (!unloaded_) {
        unloaded_ = true;
        Form_Unload();
        QDialog::done(QDialog::Rejected);
    }
    StopRequested = true;
}

void frmSuchen::reject() { cmdAbbrechen_Click(); }

void frmSuchen::closeEvent(QCloseEvent* event) {
    // The close box ends a running search as cmdAbbrechen does.
    cmdAbbrechen_Click();
    event->accept();
}

// --- Hit details ------------------------------------------------------------------------

void frmSuchen::lstDateien_Click() {
    Busy();
    const std::string hit = lstDateien->Text().toStdString();
    const std::size_t split = hit.find("\\\\");
    if (split == std::string::npos) {  // a disc: the details stay as they are
        Normal();
        return;
    }
    HitDisc = hit.substr(0, split);
    const std::string catalogue = CataloguePath(Start::DataFolder, HitDisc);
    std::string line;
    if (hit.back() == '\\') {
        FolderPath = hit.substr(split + 1, hit.size() - split - 2);
        if (FindRecordLine(catalogue, FolderPath, line)) {
            const FolderRecord r = SplitFolder(line);
            lblA->setText(Q(r.Attributes));
            lblD->setText(Q(r.Time));
            txtBeschreibungText->setPlainText(Q(r.Description));
            lblG->setText(QStringLiteral("-"));
        }
    } else {
        FileName = hit.substr(split + 1);
        if (FindRecordLine(catalogue, FileName, line)) {
            const FileRecord r = SplitFile(line);
            lblG->setText(r.Size.empty() ? QStringLiteral("-") : Q(r.Size));
            lblA->setText(Q(r.Attributes));
            lblD->setText(Q(r.Time));
            txtBeschreibungText->setPlainText(Q(r.Description));
        }
    }
    // A record gone from its catalogue leaves the details as they were.
    if (lblA->text().isEmpty()) lblA->setText(QStringLiteral("-"));
    if (lblD->text().isEmpty()) lblD->setText(QStringLiteral("-"));
    Normal();
}

void frmSuchen::cmdÄndern_Click() {
    Start::EditTarget = "Suchen";
    ShowBeschreibungAendern();
}

void ShowSuchen() {
    frmSuchen dialog(MainWindow());
    dialog.exec();
}

}  // namespace ct
