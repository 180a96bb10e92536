// The window of aia-view around its plots: files, what they say, saving, cancelling.

#include "viewtest.h"

namespace {

struct Opened {
    QString file;  // a fixture, or a name in the test's folder
    QString said;  // in place of the run; the beginning of the sentence
    int scans = 0; // of the run, or entries
    bool hasSpectra = true;
    bool isDotted = false; // as a point lies between gaps
};

struct Converted {
    QByteArray program; // what stands for aia-convert beside the window's, if any
    QString said;
    bool isMade = false;
};

struct Stated {
    QString file;
    QString name;
    QString value;
};

} // namespace

class TestViewWindow : public QObject, ViewTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        makeSamples();
        QVERIFY(writeFile(sample("text"), "not netCDF"));
        QVERIFY(writeFile(sample("cut"), content(fixture("plain")).left(100)));
    }
    void init() { openWindow(); }
    void cleanup() { closeWindow(); }

    void opens_data()
    {
        const Rows<Opened> row;
        row("run") = {"plain", "", 5};
        row("library") = {"info-library", "", 22};
        row("trace") = {"total-ion", "", 3, false, true};
        row("no scans") = {"no-scans", "", 0};
        row("chromatogram") = {"chromatogram", "The file \"%1\" can't be read: it has no dimension"};
        row("text") = {"text", "The file \"%1\" isn't a netCDF file"};
        row("header cut off") = {"cut", "The file \"%1\" is damaged: its header can't be right."};
        row("missing") = {"x", "The file \"%1\" doesn't exist."};
    }
    void opens()
    {
        const Opened &row = Rows<Opened>::current();
        const QString path = QFile::exists(fixture(row.file)) ? fixture(row.file) : sample(row.file);
        open(path);
        QCOMPARE(page()->model()->state() == RunModel::State::Refused, !row.said.isEmpty());
        if (row.said.isEmpty()) {
            QCOMPARE(page()->model()->summary().size, row.scans);
            QCOMPARE(page()->spectrum()->isVisible(), row.hasSpectra);
            const TracePlot *trace = page()->trace();
            QCOMPARE(trace->graphCount() > 0 && !trace->graph(0)->scatterStyle().isNone(), row.isDotted);
        } else {
            const QString sentence = row.said.contains("%1") ? row.said.arg(path) : row.said;
            QVERIFY2(page()->remark().startsWith(sentence), qPrintable(page()->remark()));
        }
    }

    // Every fixture is shown or refused with a sentence.
    void opensAllFixtures()
    {
        for (const QString &name : QDir(AIA_FIXTURES).entryList({"*.cdf"}, QDir::Files)) {
            open(QStringLiteral(AIA_FIXTURES "/") + name);
            const RunModel *model = page()->model();
            QVERIFY2(model->state() == RunModel::State::Open || !model->refusal().isEmpty(), qPrintable(name));
            page()->stepScans(1);
            QVERIFY(!page()->grab().isNull());
            QTest::keyClick(window.get(), Qt::Key_W, Qt::ControlModifier);
            QCOMPARE(window->tabs()->count(), 0);
        }
    }

    void opensWhatIsDropped()
    {
        QMimeData dropped;
        dropped.setUrls({QUrl::fromLocalFile(sample("gcms")), QUrl::fromLocalFile(sample("library"))});
        QDragEnterEvent enter({10, 10}, Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window.get(), &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window.get(), &drop);
        QCOMPARE(window->tabs()->count(), 2);
        open(fixture("plain"));
        for (const int tab : {1, 0, 2}) {
            QTest::keyClick(window.get(), Qt::Key_Tab, Qt::ControlModifier | Qt::ShiftModifier);
            QCOMPARE(window->tabs()->currentIndex(), tab);
        }
        QTest::keyClick(window.get(), Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(window->tabs()->currentIndex(), 0);
    }

    void remembersSizesAndFolder()
    {
        openSample("gcms");
        window->resize(901, 602);
        page()->findChildren<QSplitter *>().first()->setSizes({600, 300});
        const QByteArray layout = page()->layoutState();
        window->close();
        window = std::make_unique<MainWindow>(*settings, readingThread);
        QCOMPARE(window->size(), QSize(901, 602));
        window->show();
        openSample("gcms");
        QCOMPARE(page()->layoutState(), layout);
        QCOMPARE(settings->value("files/folder").toString(), folder.path());
    }

    // A file that was refused may be whole by now.
    void opensAgainWhatWasRefused()
    {
        const QString path = sample("mended");
        QVERIFY(writeFile(path, "not netCDF"));
        open(path);
        QVERIFY(page()->model()->state() == RunModel::State::Refused);
        QVERIFY(writeFile(path, content(fixture("plain"))));
        open(path);
        QVERIFY(page()->model()->state() == RunModel::State::Open);
        QCOMPARE(window->tabs()->count(), 1);
    }

    // What is shown stays, and what can't be read any more is said.
    void survivesDamageWhileOpen()
    {
        const QString path = sample("shrinking");
        QVERIFY(writeFile(path, content(sample("gcms"))));
        openSample("shrinking");
        QVERIFY(QFile::resize(path, 20000));
        for (const int scan : {1999, 1000, 0}) {
            page()->showScan(scan);
            QTRY_COMPARE(page()->scan(), scan);
        }
        page()->setMasses("43");
        QTRY_VERIFY(!page()->model()->isBusy());
        page()->showScan(1999);
        QTRY_COMPARE(page()->scan(), 1999);
        QVERIFY(!page()->shown().failure.isEmpty() || !page()->shown().masses.empty());
        QTest::keyClick(window.get(), Qt::Key_W, Qt::ControlModifier);
        QCOMPARE(window->tabs()->count(), 0);
    }

    // A name that was typed without its ending is a file that the dialog didn't ask about.
    void asksBeforeItWritesOver()
    {
        openSample("gcms");
        const QString path = folder.filePath("kept.png");
        QVERIFY(writeFile(path, "kept"));
        QString question;
        QTimer answers;
        connect(&answers, &QTimer::timeout, [&] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                question = box->text();
                box->reject();
            } else if (auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget())) {
                dialog->findChild<QLineEdit *>()->setText(folder.filePath("kept"));
                QMetaObject::invokeMethod(dialog, "accept");
            }
        });
        answers.start(50);
        QTest::keyClick(window.get(), Qt::Key_S, Qt::ControlModifier);
        QVERIFY2(question.contains("kept.png"), qPrintable(question));
        QCOMPARE(content(path), QByteArray("kept"));
    }

    void cancels()
    {
        const QString large = sample("large");
        if (!QFile::exists(large))
            QCOMPARE(runProgram(AIA_TOOLS "/aia-sample", {"gcms", "--scans", "40000", "--points", "200", large}).code,
                     0);
        window->open({large});
        RunModel *model = page()->model();
        bool isPressed = false;
        const QObject whileItWaits;
        // At once, since the end of the reading may wait already behind this.
        connect(model, &RunModel::progressed, &whileItWaits, [&](const QString &, double part) {
            if (part > 0.0 && !std::exchange(isPressed, true))
                QTest::keyClick(page()->trace(), Qt::Key_Escape);
        });
        QTRY_VERIFY(isPressed);
        QVERIFY(!model->isBusy() && model->sums().totals.empty());
        QVERIFY(page()->remark().startsWith("Reading was cancelled"));
        // The reading has come to its end: the next long work has its turn before much quick work is done.
        const auto hasTurn = std::make_shared<std::atomic<bool>>(false);
        readingThread.postLong([hasTurn] { *hasTurn = true; });
        for (int quick = 0; quick < 50 && !*hasTurn; ++quick) {
            const auto done = std::make_shared<QSemaphore>();
            readingThread.postQuick([done] { done->release(); });
            done->acquire();
        }
        QVERIFY(*hasTurn);
        QSemaphore begun, posted, done;
        QString order; // of quick work
        readingThread.postLong([&] {
            begun.release();
            posted.acquire();
            readingThread.catchUp();
            done.release();
        });
        begun.acquire();
        for (const char name : {'a', 'b', 'c'})
            readingThread.postQuick([&order, name] { order += QLatin1Char(name); });
        posted.release();
        done.acquire();
        QCOMPARE(order, QString("abc"));
        page()->goTo("here");
        QVERIFY(!page()->remark().startsWith("Reading was cancelled"));
        page()->goTo("7");
        QVERIFY(page()->remark().startsWith("Reading was cancelled"));
        QTRY_COMPARE(page()->scan(), 7);
        for (QLabel *label : page()->findChildren<QLabel *>()) {
            if (label->text() == page()->remark())
                emit label->linkActivated("read"); // reads on
        }
        QCOMPARE(page()->remark(), QString());
        page()->setSource(RunPage::Source::Summed);
        QTRY_COMPARE(model->sums().totals.size(), std::size_t(40000));
        QCOMPARE(page()->remark(), QString());
        page()->setMasses("43");
        page()->setMasses("57"); // in its place, so what is left of the first doesn't end the second
        QTRY_VERIFY(!model->isBusy());
        QCOMPARE(page()->trace()->graphCount(), 2);
        QCOMPARE(page()->trace()->graph(1)->name(), QString("m/z 57"));
        page()->goTo("0-1000");
        QVERIFY(model->isBusy());
        page()->showScan(5); // which nobody wants an average after
        QVERIFY(!model->isBusy());
        QTRY_COMPARE(page()->scan(), 5);
    }

    void tellsMouseAndKeys()
    {
        QTest::keyClick(window.get(), Qt::Key_F1);
        const auto *text = window->findChild<QTextBrowser *>();
        QVERIFY(text && text->isVisible() && text->toPlainText().contains("Double click in the legend"));
    }

    void saves()
    {
        openSample("gcms");
        page()->setMasses("43");
        QTRY_COMPARE(page()->trace()->graphCount(), 2);
        const QString trace = folder.filePath("trace.csv");
        QCOMPARE(page()->saveUpper(trace), QString());
        const QList<QByteArray> lines = content(trace).split('\n');
        QCOMPARE(lines.first().trimmed(), QByteArray("Trace,Time (min),\"Total, stored\""));
        QCOMPARE(lines.size(), 4002); // of both curves, and nothing behind the last line end
        QVERIFY2(lines[2001].startsWith("m/z 43,"), lines[2001]);
        const QString spectrum = folder.filePath("spectrum.csv");
        QCOMPARE(page()->saveSpectrum(spectrum), QString());
        QCOMPARE(content(spectrum).count('\n'), int(page()->shown().masses.size()) + 1);
        const QString library = folder.filePath("spectrum.msp");
        QCOMPARE(page()->saveSpectrum(library), QString());
        QVERIFY2(content(library).contains("\nRT: "), content(library).left(200));
        for (const char *image : {"plot.png", "plot.pdf", "plot.svg"}) {
            QCOMPARE(page()->saveUpper(folder.filePath(image)), QString());
            QVERIFY(QFileInfo(folder.filePath(image)).size() > 1000);
        }
        QVERIFY(page()->saveSpectrum(folder.filePath("plot.txt")).contains("has to end in"));
        QVERIFY(!QFile::exists(folder.filePath("plot.txt")));
        const QByteArray before = content(sample("gcms"));
        QVERIFY(!page()->saveUpper(sample("gcms")).isNull() && content(sample("gcms")) == before); // the run itself

        open(fixture("time-units")); // which aren't known, so there is no retention time in minutes
        QTRY_VERIFY(page()->scan() != -1);
        QCOMPARE(page()->saveSpectrum(library), QString());
        QVERIFY2(!content(library).contains("\nRT: "), content(library));

        openSample("library");
        QCOMPARE(page()->saveSpectrum(library), QString());
        const MsCompound &compound = page()->model()->compounds()[std::size_t(page()->scan())];
        QVERIFY2(content(library).startsWith("Name: " + compound.name.toLatin1()), content(library).left(200));
        QVERIFY(content(library).contains("\nFormula: " + compound.formula.toLatin1()));
    }

    void converts_data()
    {
        const Rows<Converted> row;
        row("no program") = {"", "The program aia-convert isn't beside"};
        row("well") = {"cp \"$6\" \"$4\"", "The run was converted to", true};
        row("ill") = {"echo no room >&2; exit 1", "The run wasn't converted, or not in full. no room"};
    }
    void converts()
    {
        const Converted &row = Rows<Converted>::current();
        const QString program = QCoreApplication::applicationDirPath() + "/aia-convert";
        const QString output = folder.filePath("run.mzML");
        QFile::remove(program);
        QFile::remove(output);
        if (!row.program.isEmpty())
            QVERIFY(writeFile(program, "#!/bin/sh\n" + row.program)
                    && QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner));
        openSample("gcms");
        page()->convertTo(output);
        QTRY_VERIFY(!page()->remark().startsWith("Converting"));
        QFile::remove(program);
        QVERIFY2(page()->remark().startsWith(row.said), qPrintable(page()->remark()));
        QCOMPARE(QFile::exists(output) && content(output) == content(sample("gcms")), row.isMade);
    }

    void doubtsComeFirst()
    {
        open(fixture("overlapping-scans"));
        QTreeWidget *tree = page()->tree()->tree();
        QTreeWidgetItem *doubts = tree->topLevelItem(0);
        QVERIFY(doubts->childCount() > 0);
        QCOMPARE(tree->findItems("doubts", Qt::MatchFixedString).size(), 1); // in no case of its letters
        QString sentence = page()->model()->doubts().list.first().text;
        QCOMPARE(doubts->child(0)->text(0), sentence.replace(fixture("overlapping-scans"), "overlapping-scans.cdf"));
        QTreeWidgetItem *way = doubts->child(0)->child(0); // to the scan that it names
        QTRY_COMPARE(page()->scan(), 0);
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualItemRect(way).center());
        QTRY_COMPARE(page()->scan(), 1);
        page()->tree()->search("experiment_type");
        int visible = 0;
        for (int i = 0; i < tree->topLevelItemCount(); ++i)
            visible += !tree->topLevelItem(i)->isHidden();
        QVERIFY(visible > 0 && visible < tree->topLevelItemCount() && doubts->isHidden());
    }

    void tellsAbsentFromDefault_data()
    {
        const Rows<Stated> row;
        row("stated") = {"plain", "experiment_type", "Centroided Mass Spectrum"};
        row("default") = {"total-ion", "experiment_type", "Centroided Mass Spectrum (default)"};
        row("absent") = {"total-ion", "operator_name", "(absent)"};
    }
    void tellsAbsentFromDefault()
    {
        const Stated &row = Rows<Stated>::current();
        open(fixture(row.file));
        const QList<QTreeWidgetItem *> found =
            page()->tree()->tree()->findItems(row.name, Qt::MatchExactly | Qt::MatchRecursive);
        QCOMPARE(found.size(), 1);
        QCOMPARE(found.first()->text(1), row.value);
    }

    void copiesPeaks()
    {
        openSample("gcms");
        PeakTable *table = page()->peaks();
        const auto lightest = [table](int row) { return table->view()->model()->index(row, 0); };
        const QString mass = lightest(0).data().toString();
        QVERIFY2(mass.size() <= 5, qPrintable(mass)); // not the float's 39.0499992
        table->view()->selectRow(0);
        table->view()->sortByColumn(0, Qt::DescendingOrder);
        QCOMPARE(table->view()->currentIndex().data().toString(), mass); // goes along
        table->copy();
        QCOMPARE(QApplication::clipboard()->text().split('\n').value(1).section('\t', 0, 0), mass);
        table->view()->clearSelection();
        table->view()->sortByColumn(2, Qt::DescendingOrder);
        table->copy();
        const QStringList lines = QApplication::clipboard()->text().split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), int(page()->shown().masses.size()) + 1);
        QCOMPARE(lines.first(), QString("m/z\tIntensity\tRelative (%)"));
        QVERIFY(lines[1].endsWith("\t100.00"));
    }
};

QTEST_MAIN(TestViewWindow)
#include "tst_view_window.moc"
