// A spectrum, and below it another one to compare it with, mirrored. The intensity axis follows what is
// seen, from zero up; the view of masses stays from one spectrum to the next.
#ifndef SPECTRUMPLOT_H
#define SPECTRUMPLOT_H

#include "hostscans.h"
#include "rundata.h"
#include "runplot.h"

#include <optional>
#include <vector>

class SpectrumPlot : public RunPlot
{
    Q_OBJECT

public:
    explicit SpectrumPlot(QWidget *parent = nullptr);

    void setSpectrum(const SpectrumData &spectrum);
    // Shows a spectrum mirrored below the current one; both are in percent of their largest peaks then.
    void setMirrored(const std::optional<SpectrumData> &spectrum);
    // Lays the host's points over the current spectrum, as crosses; none for an empty scan.
    void setHost(const HostScan &hostScan);
    const QCPGraph *hostPoints() const { return hostGraph_; }
    bool isMirrored() const { return lower_.isShown; }

    void showAll() override;

    // The labels of peaks as they are shown, from left to right: mass and percent of the largest peak.
    QStringList peakLabels() const;

signals:
    void massPicked(double mass);

protected:
    void applyLook() override;

private:
    // One of the two spectra, by ascending mass.
    struct Side {
        bool isShown = false;
        bool isProfile = false;
        QString title;
        std::vector<QCPGraphData> peaks; // as they are drawn
        double base = 0.0;               // the largest of them
        QCPGraph *graph = nullptr;
    };

    void take(const SpectrumData &spectrum, Side *side);
    void drawSide(Side *side, double sign);
    void update();
    void fitHeight();
    void placeLabels();
    // Whether peaks or a profile run through the place of a label. `factor`: from intensity to the axis.
    bool isCrossed(const Side &side, const QRectF &place, double factor) const;
    void labelSide(const Side &side, double sign, std::vector<QRectF> *taken, int *used);
    void pickAt(const QPointF &place);

    Side upper_;
    Side lower_;
    HostScan host_;
    QCPGraph *hostGraph_ = nullptr;
    bool hasView_ = false;
    std::vector<QCPItemText *> labels_;
    int shownLabels_ = 0;
};

#endif // SPECTRUMPLOT_H
