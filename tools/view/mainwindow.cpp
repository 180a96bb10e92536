#include "mainwindow.h"

#include "countedtext_p.h"
#include "namecodec.h"
#include "runpage.h"
#include "viewexport.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr int mostRecent = 10;
constexpr int progressSteps = 1000;

const QString geometryKey = QStringLiteral("window/geometry");
const QString layoutKey = QStringLiteral("window/layout");
const QString folderKey = QStringLiteral("files/folder");
const QString recentKey = QStringLiteral("files/recent");

} // namespace

MainWindow::MainWindow(QSettings &settings, ReadingThread &thread, QWidget *parent)
    : QMainWindow(parent), settings_(settings), thread_(thread), tabs_(new QTabWidget),
      empty_(new QLabel), work_(new QLabel), progress_(new QProgressBar),
      cancel_(new QPushButton(QStringLiteral("Cancel")))
{
    setWindowTitle(QApplication::applicationName());
    setAcceptDrops(true);
    empty_->setText(QStringLiteral("Open a .cdf file with Ctrl+O, or drop it here."));
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setWordWrap(true);
    tabs_->setDocumentMode(true);
    tabs_->setTabsClosable(true);
    tabs_->setMovable(true);
    auto *stack = new QStackedWidget;
    stack->addWidget(empty_);
    stack->addWidget(tabs_);
    setCentralWidget(stack);
    progress_->setRange(0, progressSteps);
    progress_->setMaximumWidth(220);
    progress_->setTextVisible(false);
    statusBar()->addWidget(work_, 1);
    statusBar()->addPermanentWidget(progress_);
    statusBar()->addPermanentWidget(cancel_);
    connect(cancel_, &QPushButton::clicked, this, [this] {
        if (page())
            page()->model()->cancel();
    });
    connect(tabs_, &QTabWidget::tabCloseRequested, this, &MainWindow::closeTab);
    connect(tabs_, &QTabWidget::currentChanged, this, &MainWindow::showTab);
    makeMenus();
    resize(1200, 800);
    restoreGeometry(settings_.value(geometryKey).toByteArray());
    showTab();
}

RunPage *MainWindow::pageAt(int tab) const
{
    return static_cast<RunPage *>(tabs_->widget(tab));
}

RunPage *MainWindow::page() const
{
    return pageAt(tabs_->currentIndex());
}

void MainWindow::askForFiles()
{
    open(QFileDialog::getOpenFileNames(this, QStringLiteral("Open"),
                                       settings_.value(folderKey).toString(),
                                       QStringLiteral("AIA MS files (*.cdf *.CDF *.nc);;All files (*)")));
}

QString MainWindow::askForName(const QString &kinds)
{
    QString chosen;
    const QString suggested = QFileInfo(page()->model()->fileName()).completeBaseName();
    QString name = QFileDialog::getSaveFileName(
        this, QStringLiteral("Save"), QDir(settings_.value(folderKey).toString()).filePath(suggested),
        kinds, &chosen);
    if (name.isEmpty())
        return name;
    const QString lacking = lackingEnd(name, kinds, chosen);
    if (!lacking.isEmpty()) {
        name += lacking;
        // The dialog asked about the name without its ending.
        const QString question =
            QStringLiteral("The file \"%1\" exists. Write it over?").arg(shownName(name));
        if (QFileInfo::exists(name)
            && QMessageBox::question(this, QApplication::applicationName(), question) != QMessageBox::Yes)
            return QString();
    }
    settings_.setValue(folderKey, QFileInfo(name).absolutePath());
    return name;
}

void MainWindow::save(QString (RunPage::*write)(const QString &), const QString &kinds)
{
    const QString name = askForName(kinds);
    if (name.isEmpty())
        return;
    const QString failure = (page()->*write)(name);
    if (failure.isNull())
        statusBar()->showMessage(QStringLiteral("Saved to %1").arg(name), 5000);
    else
        QMessageBox::warning(this, QApplication::applicationName(), failure);
}

void MainWindow::open(const QStringList &fileNames)
{
    for (const QString &name : fileNames)
        openOne(name);
}

void MainWindow::openOne(const QString &fileName)
{
    const QString place = QFileInfo(fileName).absoluteFilePath();
    for (int tab = 0; tab < tabs_->count(); ++tab) {
        if (QFileInfo(pageAt(tab)->model()->fileName()).absoluteFilePath() == place) {
            if (pageAt(tab)->model()->state() != RunModel::State::Refused)
                return tabs_->setCurrentIndex(tab);
            closeTab(tab--); // it may be whole by now
        }
    }
    auto *page = new RunPage(thread_, fileName);
    page->restoreLayout(settings_.value(layoutKey).toByteArray());
    page->setMirrored(pinned_);
    page->setHost(host_->isChecked());
    page->showSide(side_->isChecked());
    if (modulation_ > 0.0)
        page->setModulation(modulation_);
    const auto showWork = [this, page](const QString &what, double part) {
        if (page != this->page())
            return;
        work_->setText(what);
        progress_->setValue(int(part * progressSteps));
        progress_->show();
        cancel_->show();
    };
    connect(page, &RunPage::progressed, this, showWork);
    connect(page, &RunPage::tracesAsked, this, &MainWindow::traceInRuns);
    connect(page, &RunPage::idle, this, [this, page] {
        if (page == this->page())
            showTab();
    });
    connect(page->model(), &RunModel::opened, this, [this, page, place] {
        remember(place);
        if (overlays_->isChecked())
            overlay();
        if (page == this->page())
            page->focusUpper();
    });
    connect(page->model(), &RunModel::sumsRead, this, [this] {
        if (overlays_->isChecked())
            overlay();
    });
    const int tab =
        tabs_->addTab(page, page->model()->shownName().replace(QLatin1Char('&'), QLatin1String("&&")));
    tabs_->setTabToolTip(tab, shownName(place));
    tabs_->setCurrentIndex(tab);
}

void MainWindow::closeTab(int tab)
{
    QWidget *page = tabs_->widget(tab);
    if (!page)
        return;
    settings_.setValue(layoutKey, pageAt(tab)->layoutState());
    tabs_->removeTab(tab);
    delete page;
    if (overlays_->isChecked())
        overlay();
}

void MainWindow::showTab()
{
    static_cast<QStackedWidget *>(centralWidget())->setCurrentIndex(tabs_->count() > 0 ? 1 : 0);
    RunPage *front = page();
    const bool isBusy = front && front->model()->isBusy();
    progress_->setVisible(isBusy);
    cancel_->setVisible(isBusy);
    if (!isBusy)
        work_->clear();
    for (QAction *action : qAsConst(needRun_))
        action->setEnabled(front);
    setWindowTitle(front ? QStringLiteral("%1 \u2013 %2")
                               .arg(front->model()->shownName(), QApplication::applicationName())
                         : QApplication::applicationName());
    if (front)
        front->focusUpper();
}

QStringList MainWindow::recentFiles() const
{
    return settings_.value(recentKey).toStringList();
}

void MainWindow::remember(const QString &fileName)
{
    QStringList names = recentFiles();
    names.removeAll(fileName);
    names.prepend(fileName);
    settings_.setValue(recentKey, QStringList(names.mid(0, mostRecent)));
    settings_.setValue(folderKey, QFileInfo(fileName).absolutePath());
    fillRecent();
}

void MainWindow::fillRecent()
{
    recent_->clear();
    for (const QString &name : recentFiles()) {
        QAction *action =
            recent_->addAction(shownName(name).replace(QLatin1Char('&'), QLatin1String("&&")));
        connect(action, &QAction::triggered, this, [this, name] { openOne(name); });
    }
    recent_->setEnabled(!recent_->isEmpty());
}

void MainWindow::overlay()
{
    for (int tab = 0; tab < tabs_->count(); ++tab) {
        Overlay overlay;
        overlay.isOffset = offset_->isChecked();
        overlay.isNormalised = normalised_->isChecked();
        for (int other = 0; overlays_->isChecked() && other < tabs_->count(); ++other) {
            const RunModel *run = pageAt(other)->model();
            if (other != tab && run->state() == RunModel::State::Open
                && run->summary().kind != MsRun::Kind::Library)
                overlay.runs += pageAt(other)->model();
        }
        pageAt(tab)->setOverlay(overlay);
    }
}

void MainWindow::pinSpectrum()
{
    if (!page() || page()->shown().masses.empty())
        return;
    pinned_ = page()->shown();
    pinned_->title = QStringLiteral("%1, %2").arg(pinned_->title, page()->model()->shownName());
    for (int tab = 0; tab < tabs_->count(); ++tab)
        pageAt(tab)->setMirrored(pinned_);
}

void MainWindow::traceInRuns(const SpectrumData &spectrum)
{
    int runs = 0;
    for (int tab = 0; tab < tabs_->count(); ++tab) {
        const RunModel *run = pageAt(tab)->model();
        if (run->state() != RunModel::State::Open || run->summary().kind != MsRun::Kind::Spectra)
            continue;
        pageAt(tab)->traceLargest(spectrum);
        ++runs;
    }
    statusBar()->showMessage(runs == 0
                                 ? QStringLiteral("No run is open that could have traces.")
                                 : ms_counted_text("Traces were added in %1 open [run|runs].", runs),
                             5000);
}

void MainWindow::unpinSpectrum()
{
    pinned_.reset();
    for (int tab = 0; tab < tabs_->count(); ++tab)
        pageAt(tab)->setMirrored(pinned_);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    settings_.setValue(geometryKey, saveGeometry());
    if (page())
        settings_.setValue(layoutKey, page()->layoutState());
    QMainWindow::closeEvent(event);
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    for (const QUrl &url : event->mimeData()->urls()) {
        if (url.isLocalFile())
            openOne(url.toLocalFile());
    }
    event->acceptProposedAction();
}
