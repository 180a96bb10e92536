// A window of aia-view for tests, with sample runs to open in it.
#ifndef VIEWTEST_H
#define VIEWTEST_H

#include "compoundlist.h"
#include "filetree.h"
#include "mainwindow.h"
#include "mappane.h"
#include "mapplot.h"
#include "peaktable.h"
#include "program.h"
#include "rows.h"
#include "runpage.h"
#include "spectrumplot.h"
#include "traceplot.h"

#include <QtTest>
#include <QtWidgets>

// Qt Test would wait for 5 s only, which a busy machine can take.
#undef QTRY_COMPARE
#undef QTRY_VERIFY
#define QTRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT((actual), (expected), longestWait)
#define QTRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT((condition), longestWait)

// For a test class to have as a second base.
class ViewTest
{
protected:
    const QTemporaryDir folder;
    ReadingThread readingThread;
    std::unique_ptr<QSettings> settings;
    std::unique_ptr<MainWindow> window;

    QString sample(const QString &name) const { return folder.filePath(name + QStringLiteral(".cdf")); }

    RunPage *page() const { return window->page(); }

    void makeSamples()
    {
        QLocale::setDefault(QLocale::German); // has other points than the window
        for (const char *kind : {"gcms", "gcxgc", "library"}) {
            const Run made = runProgram(AIA_TOOLS "/aia-sample", {kind, "--seed", "3", sample(kind)});
            QCOMPARE(made.code, 0);
        }
        QCOMPARE(runProgram(AIA_TOOLS "/aia-sample", {"gcms", "--seed", "4", sample("other")}).code, 0);
    }

    void openWindow()
    {
        settings = std::make_unique<QSettings>(folder.filePath("settings.ini"), QSettings::IniFormat);
        settings->clear();
        window = std::make_unique<MainWindow>(*settings, readingThread);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get(), longestWait));
    }

    void closeWindow() { window.reset(); }

    static bool isSettled(const RunPage *page)
    {
        const RunModel *model = page->model();
        return model->state() == RunModel::State::Refused
            || (model->state() == RunModel::State::Open && !model->isBusy() && !model->attributes().children.empty());
    }

    // Opens a file and waits until all of it is read.
    void open(const QString &path)
    {
        window->open({path});
        QTRY_VERIFY(isSettled(page()));
    }

    void openSample(const QString &name)
    {
        open(sample(name));
        QTRY_VERIFY(page()->scan() != -1);
    }
};

#endif // VIEWTEST_H
