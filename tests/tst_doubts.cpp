// What can't be right about a run is said, and nothing of a right one.

#include "changedsamples.h"
#include "msdoubts.h"
#include "rows.h"

#include <cmath>
#include <functional>
#include <utility>

namespace {

using ByteChange = std::function<void(QByteArray *bytes)>;

struct Doubted {
    QString file;      // a fixture, or one of the samples
    Change change{};   // of a copy of it
    QByteArray said{}; // codes and counts
    ByteChange changeBytes{};
    double modulation = 0.0;
    QByteArray sentence{}; // of the first one; any where it is empty
};

} // namespace

class TestDoubts : public QObject, private ChangedSamples
{
    Q_OBJECT

    // Of the file at `path`, in order.
    static QByteArray doubtsOf(const QString &path, const MsDoubtOptions &options, QByteArray *firstSentence = nullptr)
    {
        QByteArrayList found;
        const MsFile file(path);
        const MsGlobals globals = file.globals();
        const MsCensus census = file.census(2, globals.mass(1.0));
        ms_read_other_scans(file.id());
        const QList<MsDoubt> doubts = ms_list_doubts(file.id(), QStringLiteral("x.cdf"), options);
        for (const MsDoubt &doubt : doubts)
            found += QByteArray(doubt.code) + ' ' + QByteArray::number(doubt.count);
        if (firstSentence && !doubts.isEmpty())
            *firstSentence = doubts.front().text.toUtf8();
        return found.join(", ");
    }

private slots:
    void initTestCase() { makeSamples(); }

    void isSaid_data()
    {
        const Rows<Doubted> row;
        const QString gcms = QStringLiteral("gcms");
        const auto changed = [&](const char *name, const QByteArray &said, Change change) -> Doubted & {
            return row(name) = {gcms, std::move(change), said};
        };
        // 20 scans of 30 points, 600 ms apart
        changed("index of one scan too low",
                "overlapping-scans 1, unowned-points 1, wrong-totals 1, unordered-masses 1, scan-mass-range 1",
                add("scan_index", 5, -1));
        changed("index of one scan too high",
                "overlapping-scans 1, unowned-points 1, wrong-totals 1, unordered-masses 1", add("scan_index", 5, 1));
        changed("all indices too high",
                "scans-beyond-end 1, unowned-points 30, unreadable-scans 1, wrong-totals 15, scan-mass-range 1",
                add("scan_index", 0, 1, 20));
        changed("an index far off",
                "falling-scan-index 1, overlapping-scans 2, unowned-points 30, wrong-totals 1, unordered-masses 1, "
                "scan-mass-range 1",
                put("scan_index", 5, 400));
        changed("indices of two scans the same",
                "overlapping-scans 1, unowned-points 30, wrong-totals 1, scan-mass-range 1", put("scan_index", 5, 120))
            .sentence = "In \"x.cdf\", 1 of 20 scans begins among the points of another; the first is scan 5.";
        changed("an index below 0", "scans-beyond-end 1, unowned-points 30, unreadable-scans 1",
                put("scan_index", 5, -1));
        changed("indices swapped", "falling-scan-index 1, wrong-totals 2",
                [](int id) {
                    put("scan_index", 5, 180)(id);
                    put("scan_index", 6, 150)(id);
                })
            .sentence =
            "In \"x.cdf\", 1 of 20 scans has its points before those of the scan before: they were stored in "
            "another order, or scan_index is wrong; the first is scan 6.";
        changed("no index", "no-scan-index 20, unreadable-scans 20", rename("scan_index"));
        changed("a point too few", "unowned-points 1, wrong-totals 1, scan-mass-range 1", put("point_count", 5, 29));
        changed("points of nothing behind a scan", "wrong-totals 1, scan-mass-range 1", [](int id) {
            const double nothing[] = {0.0, NC_FILL_FLOAT, -9999.0};
            put("point_count", 5, 27)(id);
            for (std::size_t i = 0; i < 3; ++i) {
                put("mass_values", 177 + i, nothing[i])(id);
                put("intensity_values", 177 + i, nothing[i])(id);
            }
        });
        changed("no index, and a point too few", "unreadable-scans 20", [](int id) {
            put("point_count", 5, 29)(id);
            rename("scan_index")(id);
        });
        changed("a point too many", "overlapping-scans 1, wrong-totals 1, unordered-masses 1",
                put("point_count", 5, 31));
        changed("a scan within another", "overlapping-scans 2, wrong-totals 2, unordered-masses 1, scan-mass-range 1",
                [](int id) {
                    put("point_count", 5, 90)(id);
                    put("point_count", 6, 29)(id);
                });
        changed("a point too many at the end", "scans-beyond-end 1, unowned-points 30, unreadable-scans 1",
                put("point_count", 19, 31));
        changed("a missing count", "bad-counts 1, unowned-points 30, wrong-totals 1", put("point_count", 5, -9999));
        changed("a count never written", "unwritten-scans 1, unowned-points 30, wrong-totals 1",
                put("point_count", 5, NC_FILL_INT));
        changed("a flag that isn't there", "overlapping-scans 1", put("flag_count", 5, 1));
        changed("a missing flag count", "bad-flag-counts 1", put("flag_count", 5, -9999));
        changed("no flag counts at all", "", put("flag_count", 0, -9999, 20));
        changed("a time of 0", "falling-times 1, time-range 1", put("scan_acquisition_time", 5, 0));
        changed("a first time of 0", "zero-time 1, time-range 1", put("scan_acquisition_time", 0, 0));
        changed("a first time below 0", "negative-times 1, time-range 1", put("scan_acquisition_time", 0, -180));
        changed("a first time a bit early", "odd-times 1", add("scan_acquisition_time", 0, -0.5));
        changed("a time out of step", "odd-times 1", add("scan_acquisition_time", 5, -0.3)).sentence =
            "In \"x.cdf\", the step in time to 1 of 20 scans isn't that of nearly all others, and no pause explains "
            "it; "
            "the first is scan 5.";
        changed("a first time a bit early, and a last time late", "odd-times 2",
                [](int id) {
                    add("scan_acquisition_time", 0, -0.2)(id);
                    add("scan_acquisition_time", 19, 0.5)(id);
                })
            .sentence = "In \"x.cdf\", the step in time to 2 of 20 scans isn't that of nearly all others, and no pause "
                        "explains it; the first is scan 1.";
        changed("a last time a bit late", "odd-times 1", add("scan_acquisition_time", 19, 0.5));
        changed("a time a bit out of step", "odd-times 1", add("scan_acquisition_time", 5, 0.06)).sentence =
            "In \"x.cdf\", the step in time to 1 of 20 scans isn't that of nearly all others, and no pause explains "
            "it; "
            "the first is scan 5.";
        changed("a first time half a step early", "odd-times 1", add("scan_acquisition_time", 0, -0.2));
        changed("the same by another clock", "", [](int id) {
            for (std::size_t i = 0; i < 20; ++i)
                add("scan_acquisition_time", i, i == 5 ? 0.06 : 0.005 * double(i % 2))(id);
        });
        changed("uneven times", "", [](int id) {
            for (std::size_t i = 0; i < 20; ++i)
                put("scan_acquisition_time", i, 180.0 + double(i * i) / 40.0)(id);
        });
        changed("times in whole seconds", "", [](int id) {
            for (std::size_t i = 0; i < 20; ++i)
                put("scan_acquisition_time", i, 180.0 + std::floor(double(i) * 0.6))(id);
        });
        changed("a time that isn't there", "missing-times 1", put("scan_acquisition_time", 5, -9999));
        changed("a time twice", "equal-times 1", add("scan_acquisition_time", 5, -0.6));
        changed("three times twice", "equal-times 3", [](int id) {
            for (const std::size_t i : {5u, 9u, 13u})
                put("scan_acquisition_time", i, 180.0 + 0.6 * double(i - 1))(id);
        });
        changed("a time that is no number", "bad-times 1", put("scan_acquisition_time", 5, notANumber));
        changed("times never written", "unwritten-scans 10", put("scan_acquisition_time", 10, NC_FILL_DOUBLE, 10));
        changed("times that begin anew", "restarting-times 1", [](int id) {
            for (std::size_t i = 10; i < 20; ++i)
                put("scan_acquisition_time", i, 179.0 + double(i - 10))(id);
        });
        changed("times that begin anew at the first one", "restarting-times 1", [](int id) {
            for (std::size_t i = 10; i < 20; ++i)
                put("scan_acquisition_time", i, 180.0 + double(i - 10))(id);
        });
        changed("a pause", "", [](int id) {
            add("scan_acquisition_time", 10, 60, 10)(id);
            putAttribute(nullptr, "global_time_max", 251.4)(id);
        });
        changed("a mass off the grid of the others", "odd-masses 1", [](int id) {
            for (std::size_t i = 0; i < 600; ++i)
                put("mass_values", i, i == 99 ? 153.97 : 50.0 + 1.05 * double(i))(id);
            put("mass_range_min", 0, -9999, 20)(id);
            putAttribute(nullptr, "global_mass_max", 679.0)(id);
        }).sentence = "In \"x.cdf\", 1 of 600 different masses isn't a multiple of 0.05, as all others are.";
        changed("a last time far off", "time-gap 1, time-range 1", put("scan_acquisition_time", 19, 1e6));
        changed("a last time of 0", "falling-times 1, time-range 1", put("scan_acquisition_time", 19, 0));
        changed("no times", "missing-times 20", rename("scan_acquisition_time"));
        changed("mass scale 0", "mass-scale 1, merged-masses 1", putAttribute("mass_values", "scale_factor", 0.0));
        changed("mass scale below 0", "mass-scale 1", putAttribute("mass_values", "scale_factor", -1.0));
        changed("mass offset", "mass-offset 1", putAttribute("mass_values", "add_offset", 0.5)).sentence =
            "In \"x.cdf\", mass_values has an add_offset of 0.5, which isn't used: the template has none for masses.";
        changed("intensity scale NaN", "intensity-scale 1",
                putAttribute("intensity_values", "scale_factor", notANumber));
        changed("offset NaN", "intensity-offset 1", putAttribute("intensity_values", "add_offset", notANumber));
        changed("mass scale that merges", "mass-scale 1, merged-masses 1, mass-range 20, scan-mass-range 20",
                putAttribute("mass_values", "scale_factor", 1e-9));
        changed("mass scale of 2", "mass-scale 1, mass-range 15, scan-mass-range 20",
                putAttribute("mass_values", "scale_factor", 2.0));
        changed("mass scale of a calibration", "mass-scale 1", putAttribute("mass_values", "scale_factor", 1.001));
        changed("one mass only", "single-mass 600", put("mass_values", 0, 50, 600));
        changed("one mass in a scan", "equal-masses 1, scan-mass-range 1", put("mass_values", 150, 60, 30));
        changed("no axis of points", "unreadable-masses 20", [](int id) {
            int point = -1;
            nc_redef(id);
            nc_inq_dimid(id, "point_number", &point);
            nc_rename_dim(id, point, "unknown");
        });
        changed("no masses", "missing-masses 600", rename("mass_values"));
        changed("masses 0", "zero-masses 3", put("mass_values", 155, 0, 3));
        changed("points of 0 in place of others", "wrong-totals 1, zero-masses 2, scan-mass-range 1", [](int id) {
            put("mass_values", 178, 0, 2)(id);
            put("intensity_values", 178, 0, 2)(id);
        });
        changed("points of 0 at the end of a scan", "", [](int id) {
            put("mass_values", 178, 0, 2)(id);
            for (const std::size_t i : {std::size_t(178), std::size_t(179)}) {
                double intensity = 0.0;
                nc_get_var1_double(id, variable(id, "intensity_values"), &i, &intensity);
                add("total_intensity", 5, -intensity)(id);
                put("intensity_values", i, 0)(id);
            }
            put("mass_range_max", 5, -9999)(id);
        });
        changed("a mass below 0", "negative-masses 1", put("mass_values", 155, -50));
        changed("a mass NaN", "bad-masses 1", put("mass_values", 155, notANumber));
        changed("a mass infinite", "bad-masses 1", put("mass_values", 155, infinity));
        changed("a mass never written", "fill-masses 1", put("mass_values", 155, 9.96921e36));
        changed("a mass out of order", "unordered-masses 1, scan-mass-range 1", put("mass_values", 155, 200));
        changed("masses that fall in all scans", "", [](int id) {
            for (std::size_t i = 0; i < 600; ++i)
                put("mass_values", i, 350.0 - 10.0 * double(i % 30))(id);
            put("mass_range_min", 0, 60, 20)(id);
            put("mass_range_max", 0, 350, 20)(id);
        });
        changed("all masses one too high", "mass-range 5, scan-mass-range 20", add("mass_values", 0, 1, 600));
        changed("a mass far off", "unordered-masses 1, mass-range 1, scan-mass-range 1", put("mass_values", 155, 1e30));
        changed("a last mass off", "scan-mass-range 1", add("mass_values", 179, 0.1));
        changed("all masses NaN", "bad-masses 600", put("mass_values", 0, notANumber, 600));
        changed("all masses missing", "negative-masses 600", put("mass_values", 0, -9999, 600));
        changed("all masses 0", "zero-masses 600", put("mass_values", 0, 0, 600));
        changed("an intensity NaN", "bad-intensities 1", put("intensity_values", 155, notANumber));
        changed("an intensity never written", "fill-intensities 1", put("intensity_values", 155, NC_FILL_FLOAT));
        changed("one intensity", "wrong-totals 1", add("intensity_values", 155, 1));
        changed("intensities 0", "wrong-totals 1", put("intensity_values", 150, 0, 30));
        changed("one total", "wrong-totals 1", put("total_intensity", 5, 1));
        changed("totals without decimals", "", [](int id) {
            put("intensity_values", 0, 1.25, 600)(id);
            put("total_intensity", 0, 37, 20)(id); // of 37.5
            putAttribute(nullptr, "global_intensity_min", 1.0)(id);
        });
        changed("totals 0", "", put("total_intensity", 0, 0, 20));
        changed("totals in another unit", "", [](int id) {
            put("total_intensity", 0, 5, 20)(id);
            nc_redef(id);
            nc_put_att_text(id, variable(id, "total_intensity"), "units", 5, "Volts");
        });
        changed("totals of another unit that isn't said", "wrong-totals 20", [](int id) {
            put("total_intensity", 0, 5, 20)(id);
            nc_redef(id);
            nc_del_att(id, variable(id, "total_intensity"), "units");
        });
        changed("the range of totals for that of intensities", "", [](int id) {
            putAttribute(nullptr, "global_intensity_min", 168375.0)(id);
            putAttribute(nullptr, "global_intensity_max", 12465147.0)(id);
        });
        changed("no totals", "", put("total_intensity", 0, -9999, 20));
        changed("an intensity scale of 2", "wrong-totals 20", putAttribute("intensity_values", "scale_factor", 2.0));
        changed("an intensity scale of a half and all that belongs to it", "", [](int id) {
            for (std::size_t i = 0; i < 20; ++i) {
                double total = 0.0;
                nc_get_var1_double(id, variable(id, "total_intensity"), &i, &total);
                put("total_intensity", i, 0.5 * total)(id);
            }
            double least = 0.0;
            double most = 0.0;
            nc_get_att_double(id, NC_GLOBAL, "global_intensity_min", &least);
            nc_get_att_double(id, NC_GLOBAL, "global_intensity_max", &most);
            putAttribute("intensity_values", "scale_factor", 0.5)(id);
            putAttribute(nullptr, "global_intensity_min", 0.5 * least)(id);
            putAttribute(nullptr, "global_intensity_max", 0.5 * most)(id);
        });
        changed("a small offset", "wrong-totals 20", putAttribute("intensity_values", "add_offset", 5.0));
        changed("mass range", "mass-range 20", putAttribute(nullptr, "global_mass_max", 100.0));
        changed("mass range from 0", "mass-range 20", [](int id) {
            putAttribute(nullptr, "global_mass_min", 0.0)(id);
            putAttribute(nullptr, "global_mass_max", 100.0)(id);
        });
        changed("intensity range", "intensity-range 20", putAttribute(nullptr, "global_intensity_max", 1.0));
        changed("time range", "time-range 1", putAttribute(nullptr, "global_time_max", 181.0));
        changed("time range that ends before it begins", "time-range 1", putAttribute(nullptr, "global_time_max", 1.0));
        changed("time range in minutes", "", [](int id) {
            putAttribute(nullptr, "global_time_min", 3.0)(id);
            putAttribute(nullptr, "global_time_max", 3.19)(id);
        });
        changed("the last scan's window", "", [](int id) {
            put("mass_range_min", 19, 40)(id);
            put("mass_range_max", 19, 450)(id);
        });
        changed("an ISO date", "acquisition-date 1", putAttribute("experiment_date_time_stamp", "2024-03-12T18:45:30"));
        changed("a 13th month", "acquisition-date 1", putAttribute("experiment_date_time_stamp", "20241312184530"));
        changed("a date before computers", "acquisition-date 1",
                putAttribute("experiment_date_time_stamp", "19000312184530"));
        changed("a date after that of the file", "acquisition-date 1",
                putAttribute("experiment_date_time_stamp", "20240612184530"));
        changed("a zone of 99 hours", "acquisition-date 1",
                putAttribute("experiment_date_time_stamp", "20240312142530+9900"));
        changed("a leap second", "", putAttribute("experiment_date_time_stamp", "20161231235960+0000"));
        changed("minutes", "", putAttribute("units", "Minutes"));
        changed("another unit of time", "", putAttribute("units", "Other Time"));
        changed("a date without a zone", "", putAttribute("experiment_date_time_stamp", "20240312184530"));
        changed("a scan's mass range", "scan-mass-range 1", put("mass_range_max", 5, 100));
        changed("ranges of 0", "", [](int id) {
            put("mass_range_min", 0, 0, 20)(id);
            put("mass_range_max", 0, 0, 20)(id);
        });
        changed("a window of masses", "", [](int id) {
            putAttribute(nullptr, "global_mass_min", 40.0)(id);
            putAttribute(nullptr, "global_mass_max", 354.9)(id);
        });
        changed("first scan, counted from 1", "", putAttribute(nullptr, "starting_scan_number", 1));
        changed("first scan", "starting-scan 1", putAttribute(nullptr, "starting_scan_number", 7));
        changed("another mass format", "mass-format 1", putAttribute("raw_data_mass_format", "Short"));
        changed("another intensity format", "intensity-format 1", putAttribute("raw_data_intensity_format", "Long"));
        changed("an unknown format", "", putAttribute("raw_data_mass_format", "REAL*4"));
        row("a trace without totals") = {QStringLiteral("tic"), rename("total_intensity"), "no-intensities 20"};
        row("a trace with one total missing") = {QStringLiteral("tic"), put("total_intensity", 5, -9999),
                                                 "bad-totals 1"};
        row("a trace with totals that are none") = {QStringLiteral("tic"),
                                                    [](int id) {
                                                        put("total_intensity", 5, notANumber)(id);
                                                        put("total_intensity", 6, NC_FILL_DOUBLE)(id);
                                                    },
                                                    "bad-totals 2, wrong-totals 1"};
        row("a trace with a total unlike its point") = {QStringLiteral("tic"), put("total_intensity", 5, 0),
                                                        "wrong-totals 1"};
        row("a trace with an offset") = {QStringLiteral("tic"), [](int id) {
                                             add("total_intensity", 0, 1e6, 20)(id);
                                             putAttribute("intensity_values", "add_offset", 1e6)(id);
                                         }};
        row("a trace of texts") = {
            QStringLiteral("string-total"), {}, "unreadable-scans 2, missing-masses 6, bad-totals 3"};
        row("a trace in minutes, its range in seconds") = {QStringLiteral("tic"),
                                                           [](int id) {
                                                               for (std::size_t i = 0; i < 20; ++i)
                                                                   put("scan_acquisition_time", i,
                                                                       3.0 + 0.01 * double(i))(id);
                                                           },
                                                           "time-range 1"};
        row("a trace without points") = {QStringLiteral("tic"), put("point_count", 0, 0, 20), "unowned-points 20"};
        row("a trace whose points have no masses") = {QStringLiteral("tic"), [](int id) {
                                                          nc_redef(id);
                                                          nc_rename_var(id, variable(id, "time_values"), "mass_values");
                                                          nc_enddef(id);
                                                          put("mass_values", 0, -9999, 20)(id);
                                                      }};
        row("a trace whose points have no axis") = {QStringLiteral("tic"), rename("time_values")};
        row("a trace whose points should have masses") = {QStringLiteral("tic"),
                                                          [](int id) {
                                                              putAttribute(nullptr, "global_mass_min", 40.0)(id);
                                                              putAttribute(nullptr, "global_mass_max", 300.0)(id);
                                                              rename("time_values")(id);
                                                          },
                                                          "missing-masses 20"};
        row("masses with a dash, and times for the points") = {QStringLiteral("gcms"),
                                                               [](int id) {
                                                                   renameTo("mass-values", "mass_values")(id);
                                                                   renameTo("time_values", "intensity_values")(id);
                                                               },
                                                               "dashed-names 1, time-units 1"};
        row("a library by a name with a dash") = {QStringLiteral("library"),
                                                  [](int id) {
                                                      nc_redef(id);
                                                      nc_rename_att(id, NC_GLOBAL, "experiment_type",
                                                                    "experiment-type");
                                                  },
                                                  "dashed-names 1"};
        row("texts of length 0") = {QStringLiteral("empty-attributes"), {}, "time-units 1, acquisition-date 1"};
        row("a unit that is none of time") = {QStringLiteral("units-of-another-family"), {}, "time-units 1"};
        row("a short mass never written") = {QStringLiteral("scaled-short"), put("mass_values", 1, NC_FILL_SHORT),
                                             "fill-masses 1, time-units 1"};
        row("an unknown unit of time") = {QStringLiteral("scaled-short"), {}, "time-units 1"};
        row("GCxGC, evenly spaced") = {QStringLiteral("gcxgc"), {}, "", {}, 4.0};
        row("GCxGC, a pause") = {
            QStringLiteral("gcxgc"), add("scan_acquisition_time", 10, 5, 10), "uneven-times 16, time-range 1", {}, 4.0};
        row("GCxGC, a last time that is off") = {
            QStringLiteral("gcxgc"), add("scan_acquisition_time", 19, 0.1), "odd-times 1, uneven-times 16", {}, 4.0};
        row("GCxGC, times in coarse steps") = {QStringLiteral("gcxgc"),
                                               [](int id) {
                                                   for (std::size_t i = 0; i < 20; ++i)
                                                       put("scan_acquisition_time", i, 300.0 + 0.3 * double(i / 9))(id);
                                               },
                                               "",
                                               {},
                                               4.0};
        row("a scan's point times") = {QStringLiteral("tic"),
                                       [](int id) {
                                           put("time_range_min", 5, 185)(id);
                                           put("time_range_max", 5, 186)(id);
                                       },
                                       "scan-time-range 1"};
        Doubted &group = row("a group behind the last scan");
        group = {QStringLiteral("sim"), put("group_starting_scan", 0, 99), "group-counts 1"};
        group.sentence = "In \"x.cdf\", 1 of 8 groups has more masses than there is room for, "
                         "or begins at a scan that isn't there; the first is group 0.";
        row("too many masses in a group") = {QStringLiteral("sim"), put("group_mass_count", 0, 99), "group-counts 1"};
        row("masses of two dimensions") = {
            QStringLiteral("mass-values-rank-2"), {}, "unreadable-scans 3, unreadable-masses 3"};
        row("no scan can be found") = {QStringLiteral("scan-index-rank-2"), {}, "no-scan-index 3, unreadable-scans 3"};
        row("a library in any order") = {QStringLiteral("library"), put("scan_acquisition_time", 5, 0)};
        row("a library's time NaN") = {QStringLiteral("library"), put("scan_acquisition_time", 5, notANumber),
                                       "bad-times 1"};
        row("a library's time below 0") = {QStringLiteral("library"), put("scan_acquisition_time", 5, -3),
                                           "negative-times 1"};
        row("a library's time far off") = {QStringLiteral("library"), put("scan_acquisition_time", 5, 1e6),
                                           "time-range 1"};

        row("points without a scan") = {QStringLiteral("no-scans"), {}, "unowned-points 6"};
        row("a scan behind many empty ones") = {QStringLiteral("unlimited-scans"),
                                                [](int id) {
                                                    put("point_count", 2, 0, 1998)(id);
                                                    put("point_count", 2000, 2)(id);
                                                    put("scan_index", 3, 4, 1998)(id);
                                                    put("mass_values", 4, NC_FILL_FLOAT)(id);
                                                    for (std::size_t i = 3; i <= 2000; ++i)
                                                        put("scan_acquisition_time", i, 60.0 + 30.0 * double(i))(id);
                                                },
                                                "fill-masses 1"};
        const auto bytes = [&](const char *name, const QByteArray &said, ByteChange change) {
            row(name) = {gcms, {}, said, std::move(change)};
        };
        bytes("the last byte lost", "cut-off 1, unreadable-scans 1", [](QByteArray *file) { file->chop(1); });
        bytes("bytes behind", "trailing-bytes 5", [](QByteArray *file) { file->append("abcde"); });
        bytes("padding behind", "", [](QByteArray *file) { file->append("abc"); });
        bytes("zeros behind", "", [](QByteArray *file) { file->append(5000, '\0'); });
        bytes("a record behind", "trailing-bytes 100", [](QByteArray *file) { file->append(100, 'a'); });
        bytes("no records counted", "unfinished 600, scans-beyond-end 20, unreadable-scans 20",
              [](QByteArray *file) { file->replace(4, 4, QByteArray(4, '\0')); });
    }
    void isSaid()
    {
        const Doubted &row = Rows<Doubted>::current();
        const QString copy = changedCopy(row.file, row.change ? QList<Change>{row.change} : QList<Change>());
        if (row.changeBytes) {
            QByteArray bytes = content(copy);
            row.changeBytes(&bytes);
            QVERIFY(writeFile(copy, bytes));
        }
        MsDoubtOptions options;
        options.modulation = row.modulation;
        QByteArray sentence;
        QCOMPARE(doubtsOf(copy, options, &sentence), row.said);
        if (!row.sentence.isEmpty())
            QCOMPARE(sentence, row.sentence);
    }

    // Samples, and the fixtures that are odd in what doesn't matter here, or not at all.
    void ofARightFileNothing_data()
    {
        const Rows<QString> file;
        const QByteArray names = "gcms gcxgc tic library sim dashes double-masses error-log "
                                 "experiment-type-of-another-family flags-on-masses groups instruments "
                                 "no-attributes one-record-variable a-pause one-scan plain text-attributes "
                                 "time-units two-masses two-scans unlimited-scans chromatogram no-scan-number "
                                 "units-numeric";
        for (const QByteArray &name : names.split(' '))
            file(name) = path(QString::fromLatin1(name));
        const QDir data(QStringLiteral(AIA_TEST_SOURCES "/../../shared/data"));
        for (const QFileInfo &real : data.entryInfoList({QStringLiteral("*.cdf")}))
            file(real.fileName().toLocal8Bit()) = real.filePath();
    }
    void ofARightFileNothing() { QCOMPARE(doubtsOf(Rows<QString>::current(), {}), QByteArray()); }
};

QTEST_GUILESS_MAIN(TestDoubts)
#include "tst_doubts.moc"
