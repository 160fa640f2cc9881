#include "gui/frmHaupt.h"

#include "core/editing.h"
#include "gui/do_neueinlesen.h"

#include <QAction>
#include <QFrame>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QStyle>

#include "core/catalogue.h"
#include "core/fileops.h"
#include "core/settings.h"
#include "gui/Start.h"
#include "gui/appicon.h"
#include "gui/frmSprache.h"
#include "gui/layout.h"
#include "gui/seams.h"
#include "gui/windows.h"
#include "platform/system.h"
#include "platform/walk.h"

namespace ct {

namespace {

frmHaupt* g_main = nullptr;

QString Q(const std::string& s) { return QString::fromStdString(s); }

QTextEdit* DescriptionBox(QWidget* parent, int left, int top, int width, int height) {
    auto* t = new QTextEdit(parent);
    Place(t, left, top, width, height);
    t->setReadOnly(true);
    t->setAcceptRichText(false);
    t->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    t->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    t->setLineWrapMode(QTextEdit::WidgetWidth);
    // A read-only box still takes Tab as a key; here it moves on, as in a form.
    t->setTabChangesFocus(true);
    return t;
}

void SetEnabled(std::initializer_list<QWidget*> widgets, bool on) {
    for (QWidget* w : widgets) w->setEnabled(on);
}

}  // namespace

frmHaupt* MainWindow() { return g_main; }

frmHaupt::frmHaupt() {
    g_main = this;
    setWindowTitle(QStringLiteral("Cartulon"));
    setWindowIcon(AppIcon());
    setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint |
                   Qt::MSWindowsFixedSizeDialogHint);
    buildMenu();
    buildControls();
    setClientSize(11880, 7185);
}

frmHaupt::~frmHaupt() {
    if (g_main == this) g_main = nullptr;
}

void frmHaupt::buildControls() {
    central = new QWidget(this);
    setCentralWidget(central);

    cmdSuchen = Button(central, 360, 240, 2895, 735);
    Bold(cmdSuchen);
    cmdSuchen->setDefault(true);
    cmdHinzufügen = Button(central, 9840, 240, 1695, 735);

    auto frame = [this](int left, int top, int width, int height) {
        auto* f = new QFrame(central);
        f->setFrameShape(QFrame::Box);
        f->setFrameShadow(QFrame::Sunken);
        Place(f, left, top, width, height);
        return f;
    };

    // Disc pane.
    fraCD = frame(120, 1200, 3255, 5895);
    lblDaten = Label(fraCD, 120, 240, 3015);
    lstDaten = new ListBox(fraCD);
    Place(lstDaten, 120, 480, 3015, 1815);
    lblInfoC = Label(fraCD, 120, 2400, 3015, 495);
    lblInfoC->setWordWrap(true);
    const int rows[] = {2880, 3120, 3360, 3600, 3840, 4080, 4320, 4560};
    QLabel** captions[] = {&lblGrößeC, &lblDateianzahlC, &lblOrdneranzahlC, &lblSeriennummerC,
                           &lblDateisystemC, &lblClusterC, &lblSektorenC, &lblBytesC};
    QLabel** values[] = {&lblGC, &lblDA, &lblOA, &lblSerC, &lblDC, &lblCC, &lblSekC, &lblBC};
    for (int i = 0; i < 8; ++i) {
        *captions[i] = Label(fraCD, 120, rows[i], 1335);
        *values[i] = Label(fraCD, 1560, rows[i], 1575);
    }
    lblBeschreibungC = Label(fraCD, 120, 4920, 2175);
    cmdÄndernC = Button(fraCD, 2280, 4860, 855, 315);
    txtBeschreibungC = DescriptionBox(fraCD, 120, 5160, 3015, 600);

    // Folder and file panes share one plan.
    fraOrdner = frame(3350, 1200, 8415, 3015);
    lblOrdner = Label(fraOrdner, 120, 240, 5055);
    lstOrdner = new ListBox(fraOrdner);
    lstOrdner->SetPinnedFirst(QStringLiteral("."));
    Place(lstOrdner, 120, 480, 5055, 2400);
    lblInfoO = Label(fraOrdner, 5280, 240, 3015);
    lblGrößeO = Label(fraOrdner, 5280, 480, 1335);
    lblGO = Label(fraOrdner, 6720, 480, 1575);
    lblDateianzahlO = Label(fraOrdner, 5280, 720, 1335);
    lblDAO = Label(fraOrdner, 6720, 720, 1575);
    lblAttributO = Label(fraOrdner, 5280, 960, 1335);
    lblAO = Label(fraOrdner, 6720, 960, 1575);
    lblDatumO = Label(fraOrdner, 5280, 1200, 1335);
    lblDO = Label(fraOrdner, 6720, 1200, 1575);
    lblBeschreibungO = Label(fraOrdner, 5280, 2040, 2055);
    cmdÄndernO = Button(fraOrdner, 7320, 1980, 975, 315);
    txtBeschreibungO = DescriptionBox(fraOrdner, 5280, 2280, 3015, 600);

    fraDateien = frame(3350, 4080, 8415, 3015);
    lblDateien = Label(fraDateien, 120, 240, 5055);
    lstDateien = new ListBox(fraDateien);
    Place(lstDateien, 120, 480, 5055, 2400);
    lblInfoD = Label(fraDateien, 5280, 240, 3015);
    lblGrößeD = Label(fraDateien, 5280, 480, 1335);
    lblGD = Label(fraDateien, 6720, 480, 1575);
    lblAttributD = Label(fraDateien, 5280, 720, 1335);
    lblAD = Label(fraDateien, 6720, 720, 1575);
    lblDatumD = Label(fraDateien, 5280, 960, 1335);
    lblDD = Label(fraDateien, 6720, 960, 1575);
    lblBeschreibungD = Label(fraDateien, 5280, 2040, 2055);
    cmdÄndernD = Button(fraDateien, 7320, 1980, 975, 315);
    txtBeschreibungD = DescriptionBox(fraDateien, 5280, 2280, 3015, 600);

    // A value column is 105 px wide and its longest value, a date with the
    // time to the second, needs a little more in any sans face: the values
    // take the semi-condensed cut, which also keeps a 12-digit size whole.
    for (QLabel* value : {lblGC, lblDA, lblOA, lblSerC, lblDC, lblCC, lblSekC, lblBC, lblGO, lblDAO, lblAO, lblDO,
                          lblGD, lblAD, lblDD}) {
        QFont f = value->font();
        f.setStretch(QFont::SemiCondensed);
        value->setFont(f);
    }

    // A focused button takes Enter; elsewhere Enter reaches keyPressEvent,
    // which presses cmdSuchen.
    for (QPushButton* b : {cmdSuchen, cmdHinzufügen, cmdÄndernC, cmdÄndernO, cmdÄndernD}) b->setAutoDefault(true);

    // Tab order as a user goes through the window.
    QWidget* order[] = {cmdSuchen, cmdHinzufügen, lstDaten, lstOrdner, lstDateien, cmdÄndernC,
                        txtBeschreibungC, cmdÄndernO, txtBeschreibungO, cmdÄndernD, txtBeschreibungD};
    for (std::size_t i = 0; i + 1 < std::size(order); ++i) setTabOrder(order[i], order[i + 1]);

    // Everything of the three panes starts disabled; value labels stay enabled.
    SetEnabled({lblDaten, lstDaten, lblInfoC, lblGrößeC, lblDateianzahlC, lblOrdneranzahlC, lblSeriennummerC,
                lblDateisystemC, lblClusterC, lblSektorenC, lblBytesC, lblBeschreibungC, cmdÄndernC,
                txtBeschreibungC, lblOrdner, lstOrdner, lblInfoO, lblGrößeO, lblDateianzahlO, lblAttributO,
                lblDatumO, lblBeschreibungO, cmdÄndernO, txtBeschreibungO, lblDateien, lstDateien, lblInfoD,
                lblGrößeD, lblAttributD, lblDatumD, lblBeschreibungD, cmdÄndernD, txtBeschreibungD},
               false);

    lstDaten->Click = [this] { lstDaten_Click(); };
    lstOrdner->Click = [this] { lstOrdner_Click(); };
    lstDateien->Click = [this] { lstDateien_Click(); };
    connect(cmdSuchen, &QPushButton::clicked, this, [this] { cmdSuchen_Click(); });
    connect(cmdHinzufügen, &QPushButton::clicked, this, [this] { cmdHinzufügen_Click(); });
    connect(cmdÄndernC, &QPushButton::clicked, this, [this] { cmdÄndernC_Click(); });
    connect(cmdÄndernO, &QPushButton::clicked, this, [this] { cmdÄndernO_Click(); });
    connect(cmdÄndernD, &QPushButton::clicked, this, [this] { cmdÄndernD_Click(); });
}

void frmHaupt::buildMenu() {
    QMenuBar* bar = menuBar();
    auto entry = [this](QMenu* menu, QKeySequence keys, auto&& action) {
        QAction* a = menu->addAction(QString());
        a->setShortcut(keys);
        a->setShortcutContext(Qt::WindowShortcut);
        connect(a, &QAction::triggered, this, action);
        return a;
    };
    mnuDatei = bar->addMenu(QString());
    mnuBeenden = entry(mnuDatei, QKeySequence(Qt::CTRL | Qt::Key_B), [this] { close(); });
    mnuBearbeiten = bar->addMenu(QString());
    mnuHinzufügen = entry(mnuBearbeiten, QKeySequence(Qt::CTRL | Qt::Key_H), [this] { cmdHinzufügen_Click(); });
    mnuNeuEinlesen = entry(mnuBearbeiten, QKeySequence(Qt::CTRL | Qt::Key_N), [] { DoNeuEinlesen(); });
    mnuBezeichnungÄndern =
        entry(mnuBearbeiten, QKeySequence(Qt::CTRL | Qt::Key_A), [] { ShowBezeichnungAendern(); });
    mnuLöschen = entry(mnuBearbeiten, QKeySequence(Qt::CTRL | Qt::Key_L), [] { DoLoeschen(); });
    mnuSuchen = bar->addMenu(QString());
    mnuDOSuchen = entry(mnuSuchen, QKeySequence(Qt::CTRL | Qt::Key_S), [this] { cmdSuchen_Click(); });
    mnuExtras = bar->addMenu(QString());
    mnuOptionen = entry(mnuExtras, QKeySequence(Qt::CTRL | Qt::Key_O), [] { ShowOptionen(); });
    mnuStatistik = entry(mnuExtras, QKeySequence(Qt::CTRL | Qt::Key_T), [] { ShowStatistik(); });
    mnuHilfe = bar->addMenu(QString());
    mnuInhalt = entry(mnuHilfe, QKeySequence(Qt::Key_F1), [] { HilfeZeigen(QStringLiteral("Inhalt")); });
    mnuIndex = entry(mnuHilfe, QKeySequence(Qt::Key_F2), [] { HilfeZeigen(QStringLiteral("Index")); });
    mnuVersionshistorie = entry(mnuHilfe, QKeySequence(Qt::Key_F3), [] { ShowHistorie(); });
    mnuInfo = entry(mnuHilfe, QKeySequence(Qt::Key_F4), [] { ShowInfo(); });
}

void frmHaupt::setClientSize(int widthTwips, int heightTwips) {
    central->setFixedSize(Tw(widthTwips), Tw(heightTwips));
    fitToClient();
}

void frmHaupt::fitToClient() {
    // The menu bar's height depends on its texts, so this runs again after
    // every change of language.
    setFixedSize(central->width(), central->height() + menuBar()->sizeHint().height());
}

void frmHaupt::centre() {
    if (QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->availableGeometry();
        move(area.center() - QPoint(width() / 2, height() / 2));
    }
}

void frmHaupt::keyPressEvent(QKeyEvent* event) {
    // Enter that no control took presses the default button; Esc does nothing.
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && cmdSuchen->isEnabled()) {
        cmdSuchen->click();
        return;
    }
    QMainWindow::keyPressEvent(event);
}

// --- Start-up -------------------------------------------------------------------

void frmHaupt::Form_Load() {
    Busy();
    const std::string folder = ProgramFolder();
    const LoadedSettings loaded = LoadSettings(folder);
    if (loaded.firstRun) {
        Start::DriveLetter = Settings{}.DriveLetter;  // the default, "C"
        Start::DataFolder = DefaultDataFolder(folder);
        Normal();
        frmSprache sprache(this);
        sprache.Form_Load();
        // The main window isn't shown yet, so the screen is what it centres on.
        if (QScreen* screen = QGuiApplication::primaryScreen())
            sprache.move(screen->availableGeometry().center() - QPoint(sprache.width() / 2, sprache.height() / 2));
        sprache.exec();
        Busy();
    } else {
        Start::Language = loaded.settings.Language;
        Start::DriveLetter = loaded.settings.DriveLetter;
        Start::DataFolder = loaded.settings.DataFolder;
    }
    Sprache_Setzen();
    // What a crash may have left behind: a catalogue set aside for a re-read
    // comes back under its label, and the scratch copy of a description
    // rewrite (never more than the catalogue already holds) goes, unless a
    // program still writes it.
    RestoreSetAsideCatalogues();
    CleanScratchFiles(seams::Files(), {folder, folder + "/Daten", Start::DataFolder});
    Aktualisieren();
    const QSize desktop = seams::DesktopSize();
    if (desktop.width() >= 1024 && desktop.height() >= 768) {
        Start::WideLayout = true;
        ApplyWideLayout();
    }
    centre();
    Normal();
}

void frmHaupt::Sprache_Setzen() {
    UseQtLanguage();
    mnuDatei->setTitle(ResourceText(10007));
    mnuBeenden->setText(ResourceText(10008));
    mnuBearbeiten->setTitle(ResourceText(10009));
    mnuHinzufügen->setText(ResourceText(10010));
    mnuNeuEinlesen->setText(ResourceText(10011));
    mnuBezeichnungÄndern->setText(ResourceText(10012));
    mnuLöschen->setText(ResourceText(10013));
    mnuSuchen->setTitle(ResourceText(10014));
    mnuDOSuchen->setText(ResourceText(10015));
    mnuExtras->setTitle(ResourceText(10016));
    mnuOptionen->setText(ResourceText(10017));
    mnuStatistik->setText(ResourceText(10018));
    mnuHilfe->setTitle(ResourceText(10019));
    mnuInhalt->setText(ResourceText(10020));
    mnuIndex->setText(ResourceText(10021));
    mnuVersionshistorie->setText(ResourceText(10022));
    mnuInfo->setText(ResourceText(10023));

    cmdSuchen->setText(ResourceText(10015));

    lblDaten->setText(ResourceText(10024));
    lblInfoC->setText(ResourceText(10025));
    lblGrößeC->setText(ResourceText(10026));
    lblDateianzahlC->setText(ResourceText(10027));
    lblOrdneranzahlC->setText(ResourceText(10028));
    lblSeriennummerC->setText(ResourceText(10029));
    lblDateisystemC->setText(ResourceText(10030));
    lblClusterC->setText(ResourceText(10031));
    lblSektorenC->setText(ResourceText(10032));
    lblBytesC->setText(ResourceText(10033));
    lblBeschreibungC->setText(ResourceText(10034));
    cmdÄndernC->setText(ResourceText(10003));
    cmdHinzufügen->setText(ResourceText(10010));

    lblOrdner->setText(ResourceText(10035));
    lblInfoO->setText(ResourceText(10036));
    lblGrößeO->setText(ResourceText(10026));
    lblDateianzahlO->setText(ResourceText(10027));
    lblAttributO->setText(ResourceText(10037));
    lblDatumO->setText(ResourceText(10038));
    lblBeschreibungO->setText(ResourceText(10039));
    cmdÄndernO->setText(ResourceText(10003));

    lblDateien->setText(ResourceText(10040));
    lblInfoD->setText(ResourceText(10041));
    lblGrößeD->setText(ResourceText(10026));
    lblAttributD->setText(ResourceText(10037));
    lblDatumD->setText(ResourceText(10038));
    lblBeschreibungD->setText(ResourceText(10042));
    cmdÄndernD->setText(ResourceText(10003));
    const std::pair<QLabel*, QWidget*> captions[] = {
        {lblDaten, lstDaten}, {lblBeschreibungC, txtBeschreibungC}, {lblGrößeC, lblGC}, {lblDateianzahlC, lblDA},
        {lblOrdneranzahlC, lblOA}, {lblSeriennummerC, lblSerC}, {lblDateisystemC, lblDC}, {lblClusterC, lblCC},
        {lblSektorenC, lblSekC}, {lblBytesC, lblBC}, {lblOrdner, lstOrdner}, {lblBeschreibungO, txtBeschreibungO},
        {lblGrößeO, lblGO}, {lblDateianzahlO, lblDAO}, {lblAttributO, lblAO}, {lblDatumO, lblDO},
        {lblDateien, lstDateien}, {lblBeschreibungD, txtBeschreibungD}, {lblGrößeD, lblGD}, {lblAttributD, lblAD},
        {lblDatumD, lblDD}};
    for (const auto& [caption, control] : captions) Caption(caption, control);
    fitToClient();
}

void frmHaupt::INI_Speichern() {
    Settings settings;
    settings.Language = Start::Language;
    settings.DriveLetter = Start::DriveLetter;
    settings.DataFolder = Start::DataFolder;
    // A settings file that can't be written leaves the old one; the settings
    // in force stay as they are for this run.
    SaveSettings(seams::Files(), ProgramFolder(), settings);
}

void frmHaupt::Aktualisieren() {
    ClearDiscPane();
    lstDaten->Clear();
    QStringList labels;
    for (const std::string& label : CatalogueLabels(Start::DataFolder)) labels.append(Q(label));
    lstDaten->AddItems(labels);
    if (lstDaten->ListCount() > 0) SetEnabled({lblDaten, lstDaten}, true);
}

// --- Layout and pane states ----------------------------------------------------------

void frmHaupt::ApplyWideLayout() {
    // The outer size of the wide window is 15330 x 7965; less the frame, the
    // client keeps its height and gains the width.
    setClientSize(15330 - 120, 7185);
    SetLeft(cmdHinzufügen, 13200);
    SetWidth(fraCD, 4995);
    for (QWidget* w : {static_cast<QWidget*>(lblDaten), static_cast<QWidget*>(lstDaten),
                       static_cast<QWidget*>(lblInfoC), static_cast<QWidget*>(txtBeschreibungC)})
        SetWidth(w, 4755);
    SetLeft(cmdÄndernC, 4020);
    for (QWidget* f : {fraOrdner, fraDateien}) {
        SetLeft(f, 5100);
        SetWidth(f, 10035);
    }
    for (QWidget* w : {static_cast<QWidget*>(lblOrdner), static_cast<QWidget*>(lstOrdner),
                       static_cast<QWidget*>(lblDateien), static_cast<QWidget*>(lstDateien)})
        SetWidth(w, 6675);
    for (QWidget* w : {static_cast<QWidget*>(lblInfoO), static_cast<QWidget*>(lblGrößeO),
                       static_cast<QWidget*>(lblDateianzahlO), static_cast<QWidget*>(lblAttributO),
                       static_cast<QWidget*>(lblDatumO), static_cast<QWidget*>(lblBeschreibungO),
                       static_cast<QWidget*>(txtBeschreibungO), static_cast<QWidget*>(lblInfoD),
                       static_cast<QWidget*>(lblGrößeD), static_cast<QWidget*>(lblAttributD),
                       static_cast<QWidget*>(lblDatumD), static_cast<QWidget*>(lblBeschreibungD),
                       static_cast<QWidget*>(txtBeschreibungD)})
        SetLeft(w, 6900);
    for (QLabel* l : {lblGO, lblDAO, lblAO, lblDO, lblGD, lblAD, lblDD}) SetLeft(l, 8340);
    SetLeft(cmdÄndernO, 8940);
    SetLeft(cmdÄndernD, 8940);
}

void frmHaupt::EnableDiscPane() {
    SetEnabled({lblDaten, lstDaten, lblInfoC, lblGrößeC, lblDateianzahlC, lblOrdneranzahlC, lblSeriennummerC,
                lblDateisystemC, lblClusterC, lblSektorenC, lblBytesC, lblBeschreibungC, cmdÄndernC,
                txtBeschreibungC},
               true);
}

void frmHaupt::ClearDiscPane() {
    for (QLabel* l : {lblGC, lblDA, lblOA, lblSerC, lblDC, lblCC, lblSekC, lblBC}) l->clear();
    txtBeschreibungC->clear();
    if (lstDaten->ListCount() == 0) SetEnabled({lblDaten, lstDaten}, false);
    SetEnabled({lblInfoC, lblGrößeC, lblDateianzahlC, lblOrdneranzahlC, lblSeriennummerC, lblDateisystemC,
                lblClusterC, lblSektorenC, lblBytesC, lblBeschreibungC, cmdÄndernC, txtBeschreibungC},
               false);
}

void frmHaupt::EnableFolderPane() {
    SetEnabled({lblOrdner, lstOrdner, lblInfoO, lblGrößeO, lblDateianzahlO, lblAttributO, lblDatumO}, true);
    const bool root = lstOrdner->Text() == QStringLiteral(".");
    SetEnabled({lblBeschreibungO, cmdÄndernO, txtBeschreibungO}, !root);
}

void frmHaupt::OrdnerInfoLöschen() {
    lstOrdner->Clear();
    for (QLabel* l : {lblGO, lblDAO, lblAO, lblDO}) l->clear();
    txtBeschreibungO->clear();
    SetEnabled({lblOrdner, lstOrdner, lblInfoO, lblGrößeO, lblDateianzahlO, lblAttributO, lblDatumO,
                lblBeschreibungO, cmdÄndernO, txtBeschreibungO},
               false);
}

void frmHaupt::EnableFilePane() {
    SetEnabled({lblDateien, lstDateien, lblInfoD, lblGrößeD, lblAttributD, lblDatumD, lblBeschreibungD,
                cmdÄndernD, txtBeschreibungD},
               true);
}

void frmHaupt::DateiInfoLöschen() {
    lstDateien->Clear();
    for (QLabel* l : {lblGD, lblAD, lblDD}) l->clear();
    txtBeschreibungD->clear();
    SetEnabled({lblDateien, lstDateien, lblInfoD, lblGrößeD, lblAttributD, lblDatumD, lblBeschreibungD,
                cmdÄndernD, txtBeschreibungD},
               false);
}

// --- The three panes ---------------------------------------------------------------

std::string frmHaupt::chosenCataloguePath() const {
    return CataloguePath(Start::DataFolder, lstDaten->Text().toStdString());
}

void frmHaupt::lstDaten_Click() {
    BusyScope busy;
    EnableDiscPane();
    const CatalogueCounts counts = CountCatalogue(chosenCataloguePath());
    CurrentLine = counts.headerLine;
    if (!counts.opened) {
        // Gone since the list was filled, or not readable (no permission, an
        // I/O error): the panes stay empty and the user learns which and why,
        // rather than seeing a disc without folders.
        for (QLabel* l : {lblGC, lblDA, lblOA, lblSerC, lblDC, lblCC, lblSekC, lblBC}) l->clear();
        txtBeschreibungC->clear();
        OrdnerInfoLöschen();
        DateiInfoLöschen();
        ReportFailure(this, windowTitle(),
                      Say("Der Datenträger „%1“ kann nicht angezeigt werden.",
                          "The disc \"%1\" cannot be shown.")
                          .arg(lstDaten->Text()),
                      Q(FailureText(counts.failure, Start::Language)));
        return;
    }
    const DiscHeader header = SplitHeader(CurrentLine);
    lblGC->setText(Q(header.HeaderSize));
    lblSerC->setText(Q(header.SerialNumber));
    lblDC->setText(Q(header.FileSystem));
    lblCC->setText(Q(header.ClusterCount));
    lblSekC->setText(Q(header.SectorsPerCluster));
    lblBC->setText(Q(header.BytesPerSector));
    txtBeschreibungC->setPlainText(Q(header.Description));
    lblOA->setText(QString::number(counts.folders));
    lblDA->setText(QString::number(counts.files));

    OrdnerInfoLöschen();
    DateiInfoLöschen();
    lstOrdner->AddItem(QStringLiteral("."));
    lstOrdner->SetListIndex(0);
}

void frmHaupt::lstOrdner_Click() {
    BusyScope busy;
    lstDateien->Clear();
    FoldersBeingListed = false;
    EnableFolderPane();
    SelectedFolder = lstOrdner->Text().toStdString();
    const bool root = SelectedFolder == ".";
    if (root) {
        lblAO->clear();
        lblDO->clear();
        txtBeschreibungO->clear();
    }
    FolderFileSize = Fixed{};
    QStringList folderItems, fileItems;
    {
        CatalogueReader reader(chosenCataloguePath());
        const bool fillFolders = root && lstOrdner->ListCount() == 1;
        while (reader.NextFolderLine(CurrentLine)) {
            const std::string_view path = FirstField(CurrentLine);
            if (root) {
                if (FoldersBeingListed || fillFolders) {
                    folderItems.append(QString::fromUtf8(path.data(), static_cast<qsizetype>(path.size())));
                    FoldersBeingListed = true;
                }
            } else if (path == SelectedFolder) {
                const FolderRecord folder = SplitFolder(CurrentLine);
                lblAO->setText(Q(folder.Attributes));
                lblDO->setText(Q(folder.Time));
                txtBeschreibungO->setPlainText(Q(folder.Description));
            }
        }
        FolderFileCount = 0;
        while (reader.NextFileLine(CurrentLine)) {
            std::string_view item;
            if (!LiesDirectlyIn(FirstField(CurrentLine), SelectedFolder, &item)) continue;
            FolderFileSize += ParseLeadingDecimal(SplitFile(CurrentLine).Size);
            ++FolderFileCount;
            fileItems.append(QString::fromUtf8(item.data(), static_cast<qsizetype>(item.size())));
        }
    }
    lstOrdner->AddItems(folderItems);
    lstDateien->AddItems(fileItems);
    lblGO->setText(Q(FixedText(FolderFileSize)));
    lblDAO->setText(QString::number(FolderFileCount));
    if (lblAO->text().isEmpty()) lblAO->setText(QStringLiteral("-"));
    if (lblDO->text().isEmpty()) lblDO->setText(QStringLiteral("-"));
    if (lstDateien->ListCount() > 0) {
        EnableFilePane();
        lstDateien->SetListIndex(0);
    } else {
        DateiInfoLöschen();
    }
}

void frmHaupt::lstDateien_Click() {
    BusyScope busy;
    const std::string item = lstDateien->Text().toStdString();
    if (SelectedFolder != ".")
        SelectedFilePath = lstOrdner->Text().toStdString() + "\\" + item;
    else
        SelectedFilePath = "\\" + item;
    FileRecord file;
    if (FindRecordLine(chosenCataloguePath(), SelectedFilePath, CurrentLine)) file = SplitFile(CurrentLine);
    lblGD->setText(Q(file.Size));
    lblAD->setText(Q(file.Attributes));
    lblDD->setText(Q(file.Time));
    txtBeschreibungD->setPlainText(Q(file.Description));
    if (lblAD->text().isEmpty()) lblAD->setText(QStringLiteral("-"));
}

// --- Buttons ------------------------------------------------------------------------

void frmHaupt::cmdSuchen_Click() { ShowSuchen(); }
void frmHaupt::cmdHinzufügen_Click() { ShowHinzufuegen(); }

void frmHaupt::cmdÄndernC_Click() {
    Start::EditTarget = "CD";
    ShowBeschreibungAendern();
}
void frmHaupt::cmdÄndernO_Click() {
    Start::EditTarget = "Ordner";
    ShowBeschreibungAendern();
}
void frmHaupt::cmdÄndernD_Click() {
    Start::EditTarget = "Datei";
    ShowBeschreibungAendern();
}

}  // namespace ct
