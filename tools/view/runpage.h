// A run in its tab: trace or list of compounds, spectrum, and beside them what the file says and the
// table of peaks.
#ifndef RUNPAGE_H
#define RUNPAGE_H

#include "runmodel.h"

#include <QPointer>
#include <QWidget>

#include <optional>

class CompoundList;
class Conversion;
class FileTree;
class MapPane;
class PeakTable;
class QLabel;
class QSplitter;
class QStackedWidget;
class QTabWidget;
class RunPlot;
class SpectrumPlot;
class TracePane;
class TracePlot;

// How other runs' traces lie over a run's own.
struct Overlay {
    QList<QPointer<RunModel>> runs{};
    bool isOffset = false;
    bool isNormalised = false;
};

class RunPage : public QWidget
{
    Q_OBJECT

public:
    using Source = TraceSource;

    RunPage(ReadingThread &thread, const QString &fileName, QWidget *parent = nullptr);

    RunModel *model() const { return model_; }
    TracePlot *trace() const { return trace_; }
    MapPane *map() const { return map_; }
    SpectrumPlot *spectrum() const { return spectrum_; }
    PeakTable *peaks() const { return peaks_; }
    FileTree *tree() const { return tree_; }
    CompoundList *compounds() const { return compounds_; }

    // The spectrum that is shown, and its scan; -1 for an average.
    const SpectrumData &shown() const { return shown_; }
    qint32 scan() const { return shown_.scan; }

    void showScan(qint32 scan);
    // Shows the map of a GCxGC run in place of the trace, or the trace again.
    void showMap(bool isShown);
    bool showsMap() const;
    // Sets the length of the modulation in s, whatever is guessed.
    void setModulation(double seconds);

    // By so many scans, not beyond the first or last one.
    void stepScans(qint32 by);
    // By so many modulations of the map, in the same place of the second dimension.
    void stepModulations(int by);
    // To a scan or a time, or to the average of a range, see typedPlace(). Says so if there is none.
    void goTo(const QString &text);
    void showAverage(const MsInterval &times, bool isBackground);

    void setSource(Source source);
    Source source() const { return source_; }
    // Shows the traces of these masses, see massWindows(). Says so if that can't be.
    void setMasses(const QString &text);
    QString masses() const;
    void setOverlay(const Overlay &overlay);
    void setMirrored(const std::optional<SpectrumData> &spectrum);
    // Lays what the host gets over each spectrum that is shown, or no longer.
    void setHost(bool isShown);

    // Write what is shown above, a trace or a map, or the spectrum, as the ending of the name says: .png,
    // .pdf, .svg, .csv, and .msp for a spectrum. Return a sentence that says why that failed; null if it
    // didn't. A file that is there is written over, but never the run's own.
    QString saveUpper(const QString &name);
    QString saveSpectrum(const QString &name);
    // Has aia-convert make a file of the whole run, and says then how that went.
    void convertTo(const QString &name);

    // Adds traces of the largest masses of a spectrum.
    void traceLargest(const SpectrumData &spectrum);

    TracePane *tracePane() const { return tracePane_; }
    void focusSearch();
    // Has the keys go to what is shown above: a plot, or the list of compounds.
    void focusUpper();

    // Shows what the file says and the peaks, beside the plots, or leaves the room to the plots.
    void showSide(bool isShown);

    // What is said below the plots; null where nothing is.
    QString remark() const;

    // How the parts share the room, to be kept for the next time.
    QByteArray layoutState() const;
    void restoreLayout(const QByteArray &state);

signals:
    void progressed(const QString &what, double part);
    void idle();
    // The largest masses of an entry are to become traces of runs.
    void tracesAsked(const SpectrumData &spectrum);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *makeSide();
    void connectParts();
    void takeRun();
    void fillSources();
    void takeSpectrum(const SpectrumData &spectrum);
    void showTraces(bool keepsView);
    void fillMap();
    RunPlot *upperPlot() const;
    void showHighest();
    void askHost();
    void addMasses(const std::vector<double> &masses);
    void removeCurve(int curve);
    void markShown();
    void say(const QString &sentence);
    QString describe(double time, double *nearest) const;

    RunModel *model_;
    QStackedWidget *stack_;
    QLabel *sentence_;
    Conversion *conversion_;
    QSplitter *across_ = nullptr;
    QSplitter *down_ = nullptr;
    QTabWidget *side_ = nullptr;
    TracePane *tracePane_ = nullptr;
    MapPane *map_ = nullptr;
    QStackedWidget *views_ = nullptr; // trace and map
    TracePlot *trace_ = nullptr;
    SpectrumPlot *spectrum_ = nullptr;
    PeakTable *peaks_ = nullptr;
    FileTree *tree_ = nullptr;
    CompoundList *compounds_ = nullptr;
    QLabel *remark_ = nullptr;

    Source source_ = Source::Stored;
    bool hasChosenSource_ = false;
    bool hasChosenView_ = false;
    bool showsHost_ = false;
    bool wasCancelled_ = false; // before all scans were read
    SpectrumData shown_;
    qint32 wanted_ = -1; // the scan that was asked for last
    std::optional<MsInterval> average_;
    std::optional<MsInterval> background_;
    std::vector<ExtractedTrace> traces_;
    Overlay overlay_;
};

#endif // RUNPAGE_H
