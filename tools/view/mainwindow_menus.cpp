// The menus of the window, with their keys.

#include "mainwindow.h"

#include "fileformat.h"
#include "helppage.h"
#include "runpage.h"
#include "tracepane.h"

#include <QAction>
#include <QMenuBar>
#include <QTabWidget>

#include <functional>
#include <optional>
#include <utility>

namespace {

// A modifier and a key are of two enumerations, which aren't added as they are.
QKeySequence control(Qt::Key key)
{
    return QKeySequence(int(Qt::CTRL) + int(key));
}

QKeySequence controlShift(Qt::Key key)
{
    return QKeySequence(int(Qt::CTRL) + int(Qt::SHIFT) + int(key));
}

} // namespace

QAction *MainWindow::add(QMenu *menu, const QString &text, const QKeySequence &keys,
                         const std::function<void()> &call, bool needsRun)
{
    QAction *action = menu->addAction(text);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, [this, call, needsRun] {
        if (!needsRun || page())
            call();
    });
    if (needsRun)
        needRun_ += action;
    return action;
}

QAction *MainWindow::addSwitch(QMenu *menu, const QString &text, const QKeySequence &keys,
                               const std::function<void()> &call)
{
    QAction *action = menu->addAction(text);
    action->setCheckable(true);
    action->setShortcut(keys);
    connect(action, &QAction::toggled, this, call);
    return action;
}

void MainWindow::makeMenus()
{
    QMenu *file = menuBar()->addMenu(QStringLiteral("&File"));
    add(
        file, QStringLiteral("&Open\u2026"), QKeySequence::Open, [this] { askForFiles(); }, false);
    recent_ = file->addMenu(QStringLiteral("Open &recent"));
    fillRecent();
    file->addSeparator();
    const QString images = QStringLiteral("Images (*.png *.pdf *.svg)");
    add(file, QStringLiteral("Save &trace or map\u2026"), control(Qt::Key_S),
        [this, images] { save(&RunPage::saveUpper, images + QStringLiteral(";;Table (*.csv)")); });
    add(file, QStringLiteral("&Save spectrum\u2026"), controlShift(Qt::Key_S), [this, images] {
        save(&RunPage::saveSpectrum, images + QStringLiteral(";;Table (*.csv);;Spectrum (*.msp)"));
    });
    add(file, QStringLiteral("Con&vert the run\u2026"), {}, [this] {
        const QString name = askForName(writtenKinds().join(QLatin1String(";;")));
        if (!name.isEmpty())
            page()->convertTo(name);
    });
    file->addSeparator();
    add(file, QStringLiteral("&Close"), control(Qt::Key_W), [this] { closeTab(tabs_->currentIndex()); });
    add(
        file, QStringLiteral("&Quit"), control(Qt::Key_Q), [this] { close(); }, false);

    QMenu *go = menuBar()->addMenu(QStringLiteral("&Go"));
    add(go, QStringLiteral("To &scan or time\u2026"), control(Qt::Key_G),
        [this] { page()->tracePane()->focusPlace(); });
    add(go, QStringLiteral("To &masses\u2026"), control(Qt::Key_M),
        [this] { page()->tracePane()->focusMasses(); });
    add(go, QStringLiteral("To se&arch\u2026"), QKeySequence::Find, [this] { page()->focusSearch(); });
    go->addSeparator();
    add(go, QStringLiteral("&Next file"), control(Qt::Key_Tab),
        [this] { tabs_->setCurrentIndex((tabs_->currentIndex() + 1) % tabs_->count()); });
    add(go, QStringLiteral("&Previous file"), controlShift(Qt::Key_Tab), [this] {
        tabs_->setCurrentIndex((tabs_->currentIndex() + tabs_->count() - 1) % tabs_->count());
    });

    QMenu *trace = menuBar()->addMenu(QStringLiteral("&Trace"));
    add(trace, QStringLiteral("&Map or trace"), control(Qt::Key_D),
        [this] { page()->showMap(!page()->showsMap()); });
    overlays_ = addSwitch(trace, QStringLiteral("&Overlay all open runs"), control(Qt::Key_L),
                          [this] { overlay(); });
    offset_ = addSwitch(trace, QStringLiteral("O&ffset traces"), {}, [this] { overlay(); });
    normalised_ = addSwitch(trace, QStringLiteral("&Normalise traces"), {}, [this] { overlay(); });
    trace->addSeparator();
    add(trace, QStringLiteral("Trace the &largest masses of the pinned or shown spectrum"), {},
        [this] { page()->traceLargest(pinned_ ? *pinned_ : page()->shown()); });
    add(trace, QStringLiteral("&Remove all extracted traces"), {},
        [this] { page()->setMasses(QString()); });

    QMenu *spectrum = menuBar()->addMenu(QStringLiteral("&Spectrum"));
    add(spectrum, QStringLiteral("&Pin, to compare with others"), control(Qt::Key_P),
        [this] { pinSpectrum(); });
    add(spectrum, QStringLiteral("&Unpin"), controlShift(Qt::Key_P), [this] { unpinSpectrum(); });

    host_ = addSwitch(spectrum, QStringLiteral("As the &host gets it"), control(Qt::Key_H), [this] {
        for (int tab = 0; tab < tabs_->count(); ++tab)
            pageAt(tab)->setHost(host_->isChecked());
    });

    QMenu *view = menuBar()->addMenu(QStringLiteral("&View"));
    side_ = addSwitch(view, QStringLiteral("What the &file says, and peaks"), QKeySequence(Qt::Key_F9),
                      [this] {
                          for (int tab = 0; tab < tabs_->count(); ++tab)
                              pageAt(tab)->showSide(side_->isChecked());
                      });
    side_->setChecked(true);

    QMenu *help = menuBar()->addMenu(QStringLiteral("&Help"));
    add(
        help, QStringLiteral("&Mouse and keys"), QKeySequence::HelpContents,
        [this] { showHelpPage(this); }, false);
}
