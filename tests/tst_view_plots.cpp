// The plots of aia-view's window, driven by mouse and keyboard as a user does it, and what they show then.

#include "tracepane.h"
#include "viewtest.h"

namespace {

struct Place {
    QString text;
    int scan = -1; // that is shown
    QString said{};
};

QPoint pixelOf(const QCustomPlot *plot, double x, double y)
{
    return {qRound(plot->xAxis->coordToPixel(x)), qRound(plot->yAxis->coordToPixel(y))};
}

void wheel(QWidget *widget, const QPoint &at, int steps)
{
    QWheelEvent event(at, widget->mapToGlobal(at), QPoint(), QPoint(0, steps * 120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

void drag(QWidget *widget, Qt::MouseButton button, Qt::KeyboardModifiers modifiers, const QPoint &from,
          const QPoint &to)
{
    QTest::mousePress(widget, button, modifiers, from);
    for (const QPoint &at : {(from + to) / 2, to}) {
        QMouseEvent move(QEvent::MouseMove, at, widget->mapToGlobal(at), Qt::NoButton, button, modifiers);
        QApplication::sendEvent(widget, &move);
    }
    QTest::mouseRelease(widget, button, modifiers, to);
}

QCPRange valuesOf(const QCPGraph *graph)
{
    bool isFound = false;
    return graph->getValueRange(isFound);
}

std::vector<double> keysOf(const QCPGraph *graph)
{
    std::vector<double> keys;
    for (const QCPGraphData &point : *graph->data())
        keys.push_back(point.key);
    return keys;
}

} // namespace

class TestViewPlots : public QObject, ViewTest
{
    Q_OBJECT

    void trigger(const QString &text) const
    {
        for (QAction *action : window->findChildren<QAction *>()) {
            if (action->text() == text)
                return action->trigger();
        }
        QFAIL(qPrintable(text));
    }

private slots:
    void initTestCase() { makeSamples(); }
    void init() { openWindow(); }
    void cleanup() { closeWindow(); }

    void clickShowsTheScan()
    {
        openSample("gcms");
        TracePlot *trace = page()->trace();
        const RunModel *model = page()->model();
        QCOMPARE(trace->xAxis->label(), QString("Time (min)"));
        QCOMPARE(trace->yAxis->label(), QString("Total, stored"));
        QCOMPARE(keysOf(trace->graph(0)).size(), std::size_t(2000));

        const QPoint at = pixelOf(trace, 10.0, trace->yAxis->range().center());
        QTest::mouseClick(trace, Qt::LeftButton, {}, at);
        const qint32 clicked = model->scanAt(trace->xAxis->pixelToCoord(at.x()));
        QTRY_COMPARE(page()->scan(), clicked);
        QMouseEvent move(QEvent::MouseMove, at, Qt::NoButton, {}, {});
        QApplication::sendEvent(trace, &move);
        QVERIFY2(trace->pointerText().contains(QString("scan %1,").arg(clicked)), qPrintable(trace->pointerText()));
        std::vector<double> masses = page()->shown().masses;
        std::sort(masses.begin(), masses.end());
        QCOMPARE(keysOf(page()->spectrum()->graph(0)), masses);

        for (const auto &[key, scan] : {std::pair(Qt::Key_Right, clicked + 1), std::pair(Qt::Key_Left, clicked),
                                        std::pair(Qt::Key_PageDown, clicked + 10), std::pair(Qt::Key_Home, 0),
                                        std::pair(Qt::Key_Left, 0), std::pair(Qt::Key_End, 1999)}) {
            QTest::keyClick(trace, key);
            QTRY_COMPARE(page()->scan(), scan);
        }
        open(fixture("total-ion"));
        QCOMPARE(page()->model()->scanAt(1.5), 0); // the first of those at 1 and 2 minutes
    }

    void zooms()
    {
        openSample("gcms");
        TracePlot *trace = page()->trace();
        const QCPRange all = trace->xAxis->range();
        wheel(trace, trace->rect().center(), 1);
        QVERIFY(trace->xAxis->range().size() < all.size());
        const QCPRange zoomed = trace->xAxis->range();
        const QPoint middle = trace->rect().center();
        const QSignalSpy picked(trace, &TracePlot::timePicked);
        drag(trace, Qt::LeftButton, {}, middle, middle + QPoint(40, 0));
        QVERIFY(picked.isEmpty()); // a drag is no click
        QVERIFY(trace->xAxis->range().lower < zoomed.lower);
        drag(trace, Qt::RightButton, {}, pixelOf(trace, 8.0, trace->yAxis->range().upper / 2),
             pixelOf(trace, 12.0, trace->yAxis->range().upper / 4));
        QVERIFY(std::abs(trace->xAxis->range().lower - 8.0) < 0.1
                && std::abs(trace->xAxis->range().upper - 12.0) < 0.1);
        const QCPRange chosen = trace->xAxis->range();
        QTest::mouseDClick(trace, Qt::MiddleButton, {}, middle);
        QCOMPARE(trace->xAxis->range(), chosen);
        QTest::mouseDClick(trace, Qt::LeftButton, {}, middle);
        QCOMPARE(trace->xAxis->range(), all);
        const double height = trace->yAxis->range().upper;
        QTest::keyClick(trace, Qt::Key_Up);
        QVERIFY(trace->yAxis->range().upper < height && trace->yAxis->range().lower == 0.0);
        QTest::keyClick(trace, Qt::Key_H);
        QCOMPARE(trace->yAxis->range().upper, height);
        for (int i = 0; i < 20; ++i)
            QTest::keyClick(trace, Qt::Key_Minus);
        QCOMPARE(trace->xAxis->range(), all); // no further out than the run
    }

    void massViewStaysAndIntensitiesFollow()
    {
        openSample("gcms");
        SpectrumPlot *plot = page()->spectrum();
        plot->xAxis->setRange(50.0, 100.0);
        for (int step = 0; step < 3; ++step) {
            const qint32 next = page()->scan() + 1;
            QTest::keyClick(page()->trace(), Qt::Key_Right);
            QTRY_COMPARE(page()->scan(), next);
            QCOMPARE(plot->xAxis->range(), QCPRange(50.0, 100.0));
            double highest = 0.0;
            for (const QCPGraphData &peak : *plot->graph(0)->data()) {
                if (peak.key >= 50.0 && peak.key <= 100.0)
                    highest = std::max(highest, peak.value);
            }
            QCOMPARE(plot->yAxis->range().lower, 0.0);
            const double upper = plot->yAxis->range().upper;
            QVERIFY2(upper > highest && upper < 2.0 * highest, qPrintable(QString("%1 %2").arg(upper).arg(highest)));
        }
    }

    void labelsDontOverlap()
    {
        openSample("gcms");
        for (const QSize size : {QSize(300, 200), QSize(900, 400)}) {
            window->resize(size + QSize(300, 300));
            page()->spectrum()->resize(size);
            page()->spectrum()->replot();
            const QString labels = page()->spectrum()->peakLabels().join(' ');
            const QRegularExpression tooMuch("\\d\\d\\.\\d%|\\b0\\.[0-4]%"); // digits, and peaks that are too small
            QVERIFY2(!labels.contains(tooMuch), qPrintable(labels));
            std::vector<QRectF> places;
            for (int i = 0; i < page()->spectrum()->itemCount(); ++i) {
                const auto *label = qobject_cast<const QCPItemText *>(page()->spectrum()->item(i));
                if (label && label->visible())
                    places.emplace_back(label->topLeft->pixelPosition(), label->bottomRight->pixelPosition());
            }
            QVERIFY(!places.empty() && page()->spectrum()->peakLabels().join(' ').contains("100%"));
            for (std::size_t i = 0; i < places.size(); ++i) {
                for (std::size_t j = 0; j < i; ++j)
                    QVERIFY(!places[i].adjusted(1, 1, -1, -1).intersects(places[j]));
                QVERIFY(page()->spectrum()->axisRect()->rect().adjusted(-1, -1, 1, 1).contains(places[i].toRect()));
                for (const QCPGraphData &peak : *page()->spectrum()->graph(0)->data()) {
                    const QPointF tip(pixelOf(page()->spectrum(), peak.key, peak.value));
                    const QRectF inside = places[i].adjusted(1, 1, -1, -1); // pixels are rounded
                    QVERIFY(tip.x() < inside.left() || tip.x() > inside.right() || tip.y() > inside.bottom());
                }
            }
        }
    }

    void ticksAndTitlesGoByTheRoom()
    {
        openSample("gcms");
        SpectrumPlot *plot = page()->spectrum();
        plot->resize(200, 600);
        plot->setTitle(QString("Averages ").repeated(9));
        plot->replot();
        auto *title = qobject_cast<QCPTextElement *>(plot->plotLayout()->elementAt(0));
        QVERIFY(title && QFontMetrics(title->font()).horizontalAdvance(title->text()) <= title->rect().width());
        QVERIFY(plot->xAxis->ticker()->tickCount() < plot->yAxis->ticker()->tickCount());
    }

    void extractsTraces()
    {
        openSample("gcms");
        TracePlot *trace = page()->trace();
        QTest::keyClick(window.get(), Qt::Key_M, Qt::ControlModifier);
        QTest::keyClicks(QApplication::focusWidget(), "43, 57-71");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTRY_COMPARE(trace->graphCount(), 3);
        QCOMPARE(trace->graph(2)->name(), QString("m/z 57-71"));
        QVERIFY(trace->legend->visible());
        double expected = 0.0;
        for (std::size_t i = 0; i < page()->shown().masses.size(); ++i) {
            if (page()->shown().masses[i] >= 57.0 && page()->shown().masses[i] <= 71.0)
                expected += page()->shown().intensities[i];
        }
        QCOMPARE(trace->graph(2)->data()->at(page()->scan())->value, expected);

        SpectrumPlot *plot = page()->spectrum();
        const QCPGraphData highest = *std::max_element(plot->graph(0)->data()->begin(), plot->graph(0)->data()->end(),
                                                       [](auto &one, auto &other) { return one.value < other.value; });
        QTest::mouseClick(plot, Qt::LeftButton, {}, pixelOf(plot, highest.key, highest.value / 2));
        QTRY_COMPARE(trace->graphCount(), 4);
        QCOMPARE(page()->masses(), QString("43, 57-71, %1").arg(qRound(highest.key)));
        trace->replot();
        QTest::mouseDClick(trace, Qt::LeftButton, {}, trace->legend->item(2)->outerRect().center());
        QTRY_COMPARE(trace->graphCount(), 3);
        QCOMPARE(page()->masses(), QString("43, %1").arg(qRound(highest.key)));
        trace->xAxis->setRange(5.0, 10.0);
        page()->setSource(RunPage::Source::BasePeak);
        QCOMPARE(trace->xAxis->range(), QCPRange(5.0, 10.0));
        QCOMPARE(trace->yAxis->label(), QString("Base peak"));
        QCOMPARE(trace->graph(0)->data()->at(page()->scan())->value, highest.value);
        trace->bringForward(2);
        QTest::keyClick(window.get(), Qt::Key_M, Qt::ControlModifier); // chooses the whole text
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
        QTRY_COMPARE(trace->graphCount(), 1);
        QCOMPARE(trace->inFront(), 0);
        open(fixture("a-pause")); // without stored totals
        emit page()->tracePane()->findChild<QComboBox *>()->activated(1);
        QCOMPARE(page()->trace()->yAxis->label(), QString("Base peak"));
    }

    void averagesLessBackground()
    {
        openSample("gcms");
        TracePlot *trace = page()->trace();
        const double height = trace->yAxis->range().center();
        drag(trace, Qt::LeftButton, Qt::ShiftModifier, pixelOf(trace, 6.0, height), pixelOf(trace, 7.0, height));
        QTRY_VERIFY(page()->shown().title.startsWith("Average of "));
        const double whole =
            std::accumulate(page()->shown().intensities.begin(), page()->shown().intensities.end(), 0.0);
        drag(trace, Qt::LeftButton, Qt::ControlModifier, pixelOf(trace, 15.0, height), pixelOf(trace, 18.0, height));
        QTRY_VERIFY(page()->shown().title.contains("less background, "));
        QCOMPARE(page()->scan(), -1);
        for (int i = 0; i < trace->itemCount(); ++i) {
            const auto *line = qobject_cast<QCPItemStraightLine *>(trace->item(i));
            QVERIFY(!line || !line->visible() || line->point1->coords().x() >= 3.0); // no mark of a time
        }
        const QString byMouse = page()->shown().title;
        page()->goTo("6-7, 15-18"); // the same by the keyboard
        QTRY_VERIFY(page()->shown().title != byMouse);
        QVERIFY2(page()->shown().title.startsWith("Average of 6.000 to 7.000 min less background, 15.000"),
                 qPrintable(page()->shown().title));
        const std::vector<double> &left = page()->shown().intensities;
        QVERIFY(std::all_of(left.begin(), left.end(), [](double intensity) { return intensity > 0.0; }));
        QVERIFY(std::accumulate(left.begin(), left.end(), 0.0) < whole);
        page()->goTo("6-7, 6-7");
        QTRY_VERIFY(page()->shown().title.contains("less background, 6.000 to 7.000"));
        QVERIFY(page()->shown().intensities.empty());            // less itself, nothing
        QVERIFY(page()->spectrum()->yAxis->range().upper < 2.0); // of nothing
    }

    void goesTo_data()
    {
        const Rows<Place> row;
        row("scan") = {"344", 344};
        row("time") = {"3.0", 0};
        row("time with its unit") = {"4 min", 100};
        row("beyond") = {"2000", -1, "There is no scan 2000: the run has 2000 scans, counted from 0."};
        row("words") = {"here", -1,
                        "&quot;here&quot; is neither a scan, such as 344, nor a time, such as 6.44, nor a range of "
                        "times, such as 6.4-6.5."};
    }
    void goesTo()
    {
        const Place &row = Rows<Place>::current();
        openSample("gcms");
        const qint32 before = page()->scan();
        QTest::keyClick(window.get(), Qt::Key_G, Qt::ControlModifier);
        QTest::keyClicks(QApplication::focusWidget(), row.text);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTRY_COMPARE(page()->scan(), row.scan == -1 ? before : row.scan);
        QCOMPARE(page()->remark(), row.said);
        const qint32 reached = page()->scan();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right); // the keys go to the plot again
        QTRY_COMPARE(page()->scan(), std::min(reached + 1, 1999));
    }

    void comparesWithALibrary()
    {
        openSample("library");
        CompoundList *list = page()->compounds();
        QVERIFY(list && list->isVisible() && !page()->trace()->isVisible());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down); // goes to the list at once
        QTRY_COMPARE(page()->scan(), 1);
        list->search("-"); // of CAS numbers: the chosen one is among what is found
        QCOMPARE(list->view()->currentIndex().row(), 1);
        const int all = list->view()->model()->rowCount();
        QCOMPARE(all, page()->model()->summary().size);
        const QString name = page()->model()->compounds().at(2).name;
        QTest::keyClick(window.get(), Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(QApplication::focusWidget(), name.toUpper());
        QVERIFY(list->view()->model()->rowCount() > 0 && list->view()->model()->rowCount() < all);
        for (const auto &[text, found] : {std::pair("108-88-3", 1), std::pair("c10h8", 1), std::pair("x-y", 0)}) {
            list->search(text);
            QCOMPARE(list->view()->model()->rowCount(), found);
        }
        list->search("");
        list->view()->sortByColumn(3, Qt::AscendingOrder); // by CAS number, not by its letters
        QCOMPARE(list->view()->model()->index(0, 3).data().toString(), QString("54-11-5"));
        list->search(name);
        list->view()->selectRow(0);
        QTRY_COMPARE(page()->spectrum()->title(), name);
        window->pinSpectrum();

        openSample("gcms");
        SpectrumPlot *plot = page()->spectrum();
        QVERIFY(plot->isMirrored());
        QCOMPARE(plot->yAxis->label(), QString("Relative (%)"));
        const auto lower = plot->graph(1)->data();
        QCOMPARE(std::min_element(lower->begin(), lower->end(),
                                  [](auto &one, auto &other) { return one.value < other.value; })
                     ->value,
                 -100.0);
        window->unpinSpectrum();
        QVERIFY(!plot->isMirrored() && lower->isEmpty());

        QTest::mouseClick(list->findChild<QPushButton *>(), Qt::LeftButton); // its largest masses
        QTRY_COMPARE(page()->trace()->graphCount(), 4);
    }

    void overlaysRuns()
    {
        openSample("gcms");
        openSample("other");
        QCOMPARE(window->tabs()->count(), 2);
        window->open({sample("gcms")}); // is open already
        QCOMPARE(window->tabs()->count(), 2);
        QCOMPARE(window->tabs()->currentIndex(), 0);
        QTest::keyClick(window.get(), Qt::Key_L, Qt::ControlModifier);
        TracePlot *trace = page()->trace();
        QTRY_COMPARE(trace->graphCount(), 2);
        QCOMPARE(trace->graph(1)->name(), QString("other.cdf"));
        trace->replot();
        const auto *item = trace->legend->item(1);
        const QSignalSpy picked(trace, &TracePlot::timePicked);
        QTest::mouseClick(trace, Qt::LeftButton, {}, item->outerRect().center());
        QCOMPARE(trace->inFront(), 1);
        QVERIFY(picked.isEmpty()); // the spectrum stays
        QTest::keyClick(trace, Qt::Key_N);
        QCOMPARE(trace->inFront(), 0);
        const double height = valuesOf(trace->graph(0)).upper;
        QVERIFY(std::abs(valuesOf(trace->graph(1)).upper - height) > 0.01 * height);
        trigger("&Normalise traces");
        QCOMPARE(valuesOf(trace->graph(1)).upper, height);
        trigger("O&ffset traces");
        QVERIFY(valuesOf(trace->graph(1)).lower > 0.1 * height);
        const QString name = trace->graph(1)->name();
        const QString offset = QString(" + %1").arg(0.15 * height, 0, 'g', 2);
        QVERIFY2(name.startsWith(QString("other.cdf \u00d7 ")) && name.endsWith(offset), qPrintable(name));
        QTest::keyClick(window.get(), Qt::Key_W, Qt::ControlModifier);
        QTRY_COMPARE(page()->trace()->graphCount(), 1);
        QCOMPARE(window->recentFiles(), (QStringList{sample("other"), sample("gcms")}));
        openSample("gcms");
        QCOMPARE(window->recentFiles(), (QStringList{sample("gcms"), sample("other")}));
    }

    void followsThePalette()
    {
        openSample("gcms");
        const QColor onLight = page()->trace()->graph(0)->pen().color();
        QPalette dark = window->palette();
        dark.setColor(QPalette::Base, Qt::black);
        dark.setColor(QPalette::Text, Qt::white);
        dark.setColor(QPalette::Highlight, Qt::yellow);
        page()->trace()->setPalette(dark);
        QCOMPARE(page()->trace()->selectionRect()->pen().color(), QColor(Qt::yellow));
        QCOMPARE(page()->trace()->legend->selectedTextColor(), QColor(Qt::yellow));
        QVERIFY(page()->trace()->graph(0)->pen().color().lightness() > onLight.lightness());
        QCOMPARE(page()->trace()->xAxis->tickLabelColor(), QColor(Qt::white));
        QCOMPARE(page()->trace()->toPixmap().toImage().pixelColor(0, 0), QColor(Qt::black));
    }

    void showsAMap()
    {
        openSample("gcxgc");
        MapPlot *plot = page()->map()->plot();
        QVERIFY(page()->showsMap()); // of itself, as the trace shows its modulation
        QVERIFY(plot->hasFocus());   // not a field, where keys of the plot would be numbers
        QVERIFY(std::abs(page()->map()->length() - 4.0) < 0.01);
        QVERIFY2(page()->map()->remark()->text().contains("confidence"), qPrintable(page()->map()->remark()->text()));

        plot->replot();
        const QPoint at = pixelOf(plot, 7.0, 2.5);
        QTest::mouseClick(plot, Qt::LeftButton, {}, at);
        QTRY_VERIFY(std::abs(page()->model()->shownTime(page()->scan()) - 7.0) < 0.05);
        const ModulationMap &map = plot->map();
        const double seconds = page()->shown().time * 60.0;
        QCOMPARE(plot->firstCut()->dataCount(), map.columns);
        for (int i = 0; i < map.columns; ++i)
            QCOMPARE(plot->firstCut()->data()->at(i)->value, map.value(i, map.rowOf(seconds)));
        QCOMPARE(plot->secondCut()->dataCount(), map.rows);
        for (int i = 0; i < map.rows; ++i)
            QCOMPARE(plot->secondCut()->data()->at(i)->value, map.value(map.columnOf(seconds), i));
        QCOMPARE(map.scan(map.columnOf(seconds), map.rowOf(seconds)), page()->scan());
        plot->replot(); // the labels of the new cuts may have moved the map
        const QPoint cell = pixelOf(plot, page()->shown().time, (map.rowOf(seconds) + 0.5) * map.step);
        QMouseEvent move(QEvent::MouseMove, cell, Qt::NoButton, {}, {});
        QApplication::sendEvent(plot, &move);
        QVERIFY2(plot->pointerText().contains(QString("scan %1 ").arg(page()->scan())),
                 qPrintable(plot->pointerText()));

        page()->setMasses("57");
        QTRY_COMPARE(page()->map()->values()->count(), 2);
        page()->map()->values()->setCurrentIndex(1);
        emit page()->map()->values()->activated(1);
        double highest = 0.0;
        for (const QCPGraphData &point : *page()->trace()->graph(1)->data())
            highest = std::max(highest, point.value);
        QCOMPARE(plot->valueRange().upper, highest);
        const auto *cells = qobject_cast<const QCPColorMap *>(plot->plottable(0));
        page()->map()->scale()->setCurrentIndex(1);
        QCOMPARE(cells->data()->dataBounds().upper, std::sqrt(highest));
        page()->map()->scale()->setCurrentIndex(2);
        QVERIFY(plot->valueRange().lower > 0.0);
        const QList<QLineEdit *> ends = page()->map()->findChildren<QLineEdit *>(QString(), Qt::FindDirectChildrenOnly);
        QCOMPARE(ends.size(), 2);
        const auto typeRange = [&](const char *from, const char *to) {
            ends[0]->setText(from);
            ends[1]->setText(to);
            emit ends[1]->editingFinished();
        };
        typeRange("10.5", "500");
        QVERIFY(ends[0]->hasAcceptableInput());
        ends[0]->setText("ten");
        QVERIFY(!ends[0]->hasAcceptableInput());
        plot->replot();
        const QPoint onColours = plot->findChild<QCPColorScale *>()->axis()->axisRect()->rect().center();
        drag(plot, Qt::LeftButton, {}, onColours, onColours + QPoint(0, 40));
        QCOMPARE(cells->dataRange(), QCPRange(10.5, 500.0));
        QCOMPARE(plot->valueRange(), QCPRange(10.5, 500.0));
        typeRange("10", "500");
        QCOMPARE(plot->valueRange(), QCPRange(10.0, 500.0));
        typeRange("500", "10");
        QCOMPARE(plot->valueRange().upper, highest);
        QVERIFY(page()->map()->remark()->text().startsWith("The range of colours ends before it begins."));
        typeRange("10", "");
        QCOMPARE(plot->valueRange(), QCPRange(10.0, highest));
        page()->map()->values()->setCurrentIndex(0);
        emit page()->map()->values()->activated(0);
        QCOMPARE(plot->valueRange(), QCPRange(10.0, valuesOf(page()->trace()->graph(0)).upper)); // the other map's
        const qint32 lowest = plot->map().scan(1, 0);
        page()->map()->shift()->setValue(1.0);
        QCOMPARE(plot->map().scan(1, plot->map().rows / 4), lowest);
        page()->map()->scale()->setCurrentIndex(1);
        QVERIFY(std::isnan(cells->data()->cell(0, 0))); // empty now, and not 0
        const QSignalSpy picked(plot, &MapPlot::scanPicked);
        plot->replot();
        QTest::mouseClick(plot, Qt::LeftButton, {}, pixelOf(plot, plot->firstCut()->data()->at(0)->key, 0.5));
        QVERIFY(picked.isEmpty()); // there, before the first scan
        page()->map()->shift()->setValue(0.0);
        const QString table = folder.filePath("map.csv");
        QCOMPARE(page()->saveUpper(table), QString());
        const QList<QByteArray> lines = content(table).split('\n');
        QCOMPARE(lines.size(), page()->model()->summary().size + 2); // and nothing behind the last line end
        QCOMPARE(lines.value(1).split(',').value(0).toDouble(), plot->firstCut()->data()->at(0)->key);
        QCOMPARE(lines.value(1).split(',').value(1).toDouble(), plot->secondCut()->data()->at(0)->key);

        const QCPAxis *along = plot->firstCut()->keyAxis();
        const QPoint onCut = along->axisRect()->rect().center();
        drag(plot, Qt::LeftButton, {}, onCut, onCut + QPoint(40, 0));
        QCOMPARE(along->range(), plot->xAxis->range()); // the cut stays under its map
        const QSizeF before(plot->xAxis->range().size(), plot->yAxis->range().size());
        wheel(plot, pixelOf(plot, plot->xAxis->range().center(), plot->yAxis->range().center()), 1);
        QVERIFY(plot->xAxis->range().size() < before.width() && plot->yAxis->range().size() < before.height());

        const double time = page()->shown().time;
        QTest::keyClick(plot, Qt::Key_Right); // a modulation on
        QTRY_VERIFY(std::abs(page()->shown().time - time - 4.0 / 60.0) < 0.001);
        const qint32 scan = page()->scan();
        QTest::keyClick(plot, Qt::Key_Up);
        QTRY_COMPARE(page()->scan(), scan + 1);
        page()->showScan(23900); // of the last modulation
        QTRY_COMPARE(page()->scan(), 23900);
        QTest::keyClick(plot, Qt::Key_Right);
        QTest::keyClick(plot, Qt::Key_Down);
        QTRY_COMPARE(page()->scan(), 23899);
        page()->setModulation(4.004); // between two scans
        QTest::keyClick(plot, Qt::Key_Left);
        QTRY_COMPARE(page()->scan(), 23499);

        page()->setModulation(5.0);
        page()->setMasses("57, 71");
        QTRY_COMPARE(page()->map()->values()->count(), 3);
        QCOMPARE(page()->map()->length(), 5.0); // and not what was guessed

        QTest::keyClick(plot, Qt::Key_D, Qt::ControlModifier);
        QVERIFY(!page()->showsMap() && page()->trace()->isVisible());
    }

    void laysTheHostsPointsOver()
    {
        openSample("gcms");
        QTest::keyClick(window.get(), Qt::Key_H, Qt::ControlModifier);
        const QCPGraph *points = page()->spectrum()->hostPoints();
        QTRY_VERIFY(!points->data()->isEmpty());
        page()->stepScans(1);
        QTRY_COMPARE(points->dataCount(), int(page()->shown().masses.size()));
        QVERIFY(page()->spectrum()->title().contains("as the host gets it"));
        // The same, by the table's hundredths.
        for (int i = 0; i < points->dataCount(); ++i) {
            QVERIFY(std::abs(points->data()->at(i)->key - page()->shown().masses[std::size_t(i)]) < 0.006);
            QCOMPARE(points->data()->at(i)->value, page()->shown().intensities[std::size_t(i)]);
        }
        QTest::keyClick(window.get(), Qt::Key_H, Qt::ControlModifier);
        QTRY_VERIFY(points->data()->isEmpty());
    }
};

QTEST_MAIN(TestViewPlots)
#include "tst_view_plots.moc"
