// The window: a tab for each file.
#ifndef MAINWINDOW_H
#define MAINWINDOW_H

#include "readingthread.h"
#include "rundata.h"

#include <QMainWindow>

#include <optional>

class QAction;
class QLabel;
class QMenu;
class QProgressBar;
class QPushButton;
class QSettings;
class QTabWidget;
class RunPage;

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    // `settings` keeps sizes, the last folder and recent files. It and the thread have to outlive the
    // window.
    MainWindow(QSettings &settings, ReadingThread &thread, QWidget *parent = nullptr);

    // Opens each file in a tab of its own, or shows the tab that it has.
    void open(const QStringList &fileNames);

    // Sets the length of the modulation of the files that are opened from now on, in s; 0 leaves it to
    // the guess.
    void setModulation(double seconds) { modulation_ = seconds; }

    RunPage *page() const; // of the tab in front; null where there is none
    QTabWidget *tabs() const { return tabs_; }
    QStringList recentFiles() const;

    // Pins the spectrum that is shown: it is mirrored below those of all tabs.
    void pinSpectrum();
    void unpinSpectrum();

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void makeMenus();
    QAction *add(QMenu *menu, const QString &text, const QKeySequence &keys,
                 const std::function<void()> &call, bool needsRun = true);
    QAction *addSwitch(QMenu *menu, const QString &text, const QKeySequence &keys,
                       const std::function<void()> &call);
    void askForFiles();
    QString askForName(const QString &kinds);
    void save(QString (RunPage::*write)(const QString &), const QString &kinds);
    void openOne(const QString &fileName);
    void closeTab(int tab);
    void showTab();
    void remember(const QString &fileName);
    void fillRecent();
    void overlay();
    void traceInRuns(const SpectrumData &spectrum);
    RunPage *pageAt(int tab) const;

    QSettings &settings_;
    ReadingThread &thread_;
    QTabWidget *tabs_;
    QLabel *empty_;
    QLabel *work_;
    QProgressBar *progress_;
    QPushButton *cancel_;
    QMenu *recent_ = nullptr;
    QAction *overlays_ = nullptr;
    QAction *offset_ = nullptr;
    QAction *normalised_ = nullptr;
    QAction *host_ = nullptr;
    QAction *side_ = nullptr;
    QList<QAction *> needRun_;
    std::optional<SpectrumData> pinned_;
    double modulation_ = 0.0;
};

#endif // MAINWINDOW_H
