#include "gui/frmStatistik.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <algorithm>

#include "core/statistics.h"
#include "gui/Start.h"
#include "gui/appicon.h"
#include "gui/frmHaupt.h"
#include "gui/layout.h"
#include "gui/windows.h"

namespace ct {

namespace {

// The figures' column: all one width.
QLabel* Figure(QWidget* parent, int left, int top, int width = 3135) {
    auto* l = new QLabel(parent);
    Place(l, left, top, width, 255);
    return l;
}

}  // namespace

frmStatistik::frmStatistik(QWidget* owner) : QDialog(owner) {
    setWindowFlags(Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint | Qt::WindowTitleHint |
                   Qt::WindowCloseButtonHint);
    setModal(true);
    setFixedSize(Tw(8295), Tw(3705));

    cmdStatistikErstellen = Button(this, 240, 240, 2295, 615);
    cmdStatistikErstellen->setDefault(true);
    Bold(cmdStatistikErstellen);
    cmdAbbrechen = Button(this, 5760, 240, 2295, 615);

    const int tops[] = {1200, 1560, 1800, 2040, 2400, 2640, 2880};
    QLabel** captions[] = {&lblAnzahl, &lblGesamtgröße, &lblGesamtanzahlO, &lblGesamtanzahlD,
                           &lblDurchschnittsgröße, &lblDurchschnittsanzahlO, &lblDurchschnittsanzahlD};
    QLabel** values[] = {&lblA, &lblGG, &lblGAO, &lblGAD, &lblDG, &lblDAO, &lblDAD};
    for (int i = 0; i < 7; ++i) {
        *captions[i] = Figure(this, 960, tops[i]);
        *values[i] = Figure(this, 4200, tops[i]);
    }

    // The status line would reach 30 twips past the client area's bottom and
    // lose its lower edge; it stands that much higher, whole.
    lblAktion = Figure(this, 0, 3450, 1815);
    lblAktion->setAlignment(Qt::AlignCenter);
    // The narrow status label was made for a narrower font than today's
    // desktops use: its font shrinks until the longer of its two texts fits.
    QFont small = lblAktion->font();
    while (small.pointSizeF() > 6 &&
           QFontMetrics(small).horizontalAdvance(QStringLiteral("Statistik wird erstellt:")) > lblAktion->width() - 4)
        small.setPointSizeF(small.pointSizeF() - 0.5);
    lblAktion->setFont(small);
    ProgressBar = new QProgressBar(this);
    Place(ProgressBar, 1800, 3450, 6495, 255);
    ProgressBar->setTextVisible(false);
    ProgressBar->setRange(0, 1);
    ProgressBar->setValue(0);

    setTabOrder(cmdStatistikErstellen, cmdAbbrechen);
    connect(cmdStatistikErstellen, &QPushButton::clicked, this, [this] { cmdStatistikErstellen_Click(); });
    connect(cmdAbbrechen, &QPushButton::clicked, this, [this] { cmdAbbrechen_Click(); });
    InstallHelpKey(this, 10018);
    Form_Load();
}

void frmStatistik::Form_Load() {
    setWindowIcon(AppIcon());
    setWindowTitle(ResourceText(10018));
    cmdStatistikErstellen->setText(ResourceText(10056));
    cmdAbbrechen->setText(ResourceText(10004));
    const int ids[] = {10057, 10058, 10059, 10060, 10061, 10062, 10063};
    QLabel* captions[] = {lblAnzahl, lblGesamtgröße, lblGesamtanzahlO, lblGesamtanzahlD,
                          lblDurchschnittsgröße, lblDurchschnittsanzahlO, lblDurchschnittsanzahlD};
    for (int i = 0; i < 7; ++i) captions[i]->setText(ResourceText(ids[i]));
    for (QLabel* v : {lblA, lblGG, lblGAO, lblGAD, lblDG, lblDAO, lblDAD}) v->setText(QStringLiteral("-"));
    lblAktion->clear();
}

void frmStatistik::cmdStatistikErstellen_Click() {
    // The run lets events in once per disc; a click that comes in then would
    // start a run inside the run and double nothing but the work.
    if (running_) return;
    frmHaupt* main = MainWindow();
    if (!main) return;
    running_ = true;
    const BusyScope busy;
    lblAktion->setText(QStringLiteral("Statistik wird erstellt:"));
    std::vector<std::string> labels;
    for (int i = 0; i < main->lstDaten->ListCount(); ++i) labels.push_back(main->lstDaten->List(i).toStdString());
    lblA->setText(QString::number(labels.size()));
    ProgressBar->setRange(0, std::max<int>(1, static_cast<int>(labels.size())));

    const StatisticsTotals totals =
        CollectStatistics(Start::DataFolder, labels, [this](std::size_t disc, std::size_t) {
            ProgressBar->setValue(static_cast<int>(disc));
            QCoreApplication::processEvents();
            return !closing_;
        });
    running_ = false;
    if (!totals.complete) {
        QDialog::done(Rejected);
        return;
    }
    const StatisticsFigures f = FormatStatistics(totals, QLocale::system().decimalPoint().toStdString());
    lblA->setText(QString::fromStdString(f.discs));
    lblGG->setText(QString::fromStdString(f.totalSize));
    lblGAO->setText(QString::fromStdString(f.folders));
    lblGAD->setText(QString::fromStdString(f.files));
    lblDG->setText(QString::fromStdString(f.averageSize));
    lblDAO->setText(QString::fromStdString(f.averageFolders));
    lblDAD->setText(QString::fromStdString(f.averageFiles));
    ProgressBar->setValue(0);
    lblAktion->setText(QStringLiteral("Fertig!"));
}

void frmStatistik::cmdAbbrechen_Click() { reject(); }

void frmStatistik::done(int result) {
    // Closing in the middle of a run stops it at the next disc; the window
    // goes when the run has let go of it.
    if (running_) {
        closing_ = true;
        return;
    }
    QDialog::done(result);
}

void ShowStatistik() {
    frmStatistik dialog(MainWindow());
    dialog.exec();
}

}  // namespace ct
