// aia-convert as a person or a script meets it. What other programs read of its files is checked by
// convert/check.py.

#include "program.h"
#include "rows.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>
#include <optional>

namespace {

struct Call {
    QString arguments; // of a shell in which convert and sample are the programs
    int code = 0;
    QByteArray said{};     // a part of standard error
    QByteArray made{};     // the whole of "out", where that is small
    QByteArray madePart{}; // a part of it
};

} // namespace

class TestAiaConvert : public QObject
{
    Q_OBJECT

    std::optional<QTemporaryDir> folder; // the current one

    static Run shell(const QString &command)
    {
        const QString names = QStringLiteral("convert() { " AIA_TOOLS "/aia-convert \"$@\"; }\n"
                                             "sample() { " AIA_TOOLS "/aia-sample \"$@\"; }\n");
        return runProgram("sh", {"-c", names + command});
    }

    // Files that nobody asked for.
    static QStringList leftovers() { return QDir().entryList({"*.part"}, QDir::Files | QDir::Hidden); }

    static void checkCall(const Call &row)
    {
        const Run result = shell(row.arguments);
        QVERIFY2(result.code == row.code, result.err);
        QVERIFY2(result.err.contains(row.said), result.err);
        QVERIFY2(row.made.isNull() || content("out") == row.made, content("out").left(2000));
        QVERIFY2(content("out").contains(row.madePart), content("out").left(2000));
        QCOMPARE(leftovers(), QStringList());
    }

private slots:
    void init()
    {
        folder.emplace();
        QVERIFY(QDir::setCurrent(folder->path()));
        for (const char *name : {"plain", "library", "gcgc", "total-ion", "chromatogram", "info-library"})
            QVERIFY(QFile::copy(fixture(name), QLatin1String(name) + ".cdf"));
    }
    void cleanup() { QDir::setCurrent(QDir::rootPath()); }

    void usage_data()
    {
        const Rows<Call> row;
        row("no file") = {"convert", 2, "No file is named"};
        row("no output") = {"convert plain.cdf", 2, "Either -o"};
        row("unknown end") = {"convert plain.cdf -o out", 2, "none of .mzML"};
        row("not a format that is written") = {"convert plain.cdf --to mzXML", 2, "--to takes one of"};
        row("name of another format") = {"convert plain.cdf --to cdf -o out.mzML", 2, "than the one after --to"};
        row("several into one") = {"convert plain.cdf gcgc.cdf -o out.mzML", 2, "one file is converted"};
        row("one name for two") = {"mkdir a; cp plain.cdf a; convert plain.cdf a/plain.cdf --to mzML", 2,
                                   "would both become"};
        row("over the input") = {"convert --force plain.cdf --to cdf", 2, "to be read"};
        row("over another input, through a link") = {
            "cp plain.cdf b.cdf; ln -s b.cdf plain.mzML; convert --force plain.cdf b.cdf --to mzML", 2, "to be read"};
        row("over a file") = {"touch plain.mzML; convert plain.cdf --to mzML", 2, "--force"};
        row("half a range") = {"convert plain.cdf -o out.msp --sum 3", 2, "no time range"};
        row("range backwards") = {"convert plain.cdf -o out.msp --sum 3-2", 2, "ends before"};
        row("half a scan") = {"convert plain.cdf -o out.msp --scan 1.5", 2, "takes a whole number"};
        row("no mass") = {"convert plain.cdf -o out.csv --masses 50,x", 2, "no value of the option --masses"};
        row("no table") = {"convert plain.cdf -o out.csv --csv all", 2, "no CSV table"};
        row("jobs") = {"convert plain.cdf -o out.csv --jobs 0", 2, "from 1 to"};
        row("no use for mzML") = {"convert plain.cdf -o out.mzML --sum 0-1", 2, "--sum goes with MSP only"};
        row("no use for a table") = {"convert plain.cdf -o out.csv --csv scans --masses 50", 2, "table trace only"};
        row("no use for .cdf") = {"convert plain.cdf -o out.mzML --ms-level 1", 2, "that are mzML or mzXML only"};
        row("two outputs") = {"convert plain.cdf -o a.csv --output out.csv", 2, "takes one value, and more are given"};
        row("plain run as a map") = {"convert gcgc.cdf -o out.csv --csv map --modulation 0", 2, "no map of it"};
        row("device") = {"convert plain.cdf -o /dev/null --to cdf", 2,
                         "\"/dev/null\", a pipe or a device: name one on a disk."};
    }
    void usage() { checkCall(Rows<Call>::current()); }

    void refusals_data()
    {
        const Rows<Call> row;
        row("not a run") = {"convert chromatogram.cdf -o out.mzML", 1, "isn't a mass spectrometry file"};
        row("no scan to be read") = {"ncdump plain.cdf | sed 's/scan_index/scan_place/; s/point_count/count/' |"
                                     "ncgen -o a.cdf; convert a.cdf -o out.mzML",
                                     1, "no scan can be read; of the first one, scan_index is missing"};
        row("not there") = {"convert no.cdf -o out.mzML", 1, "doesn't exist"};
        row("not mzML") = {"echo text > no.mzML; convert no.mzML -o out.cdf", 1, "neither mzML nor mzXML"};
        row("mzML that is cut off") = {"convert plain.cdf -o a.mzML && head -c 3000 a.mzML > b.mzML;"
                                       "convert b.mzML -o out.cdf",
                                       1, "can't be read"};
        // The library ends the process that reads this one, if it is as it was.
        row("mzML with a letter for a quote") = {
            "convert plain.cdf -o a.mzML; sed -i '0,/MS:1000285\"/s//MS:1000285X/' a.mzML;"
            "ASAN_OPTIONS=handle_segv=0:abort_on_error=1 convert a.mzML -o out.cdf",
            1, "The file \"a.mzML\" can't be converted: it"};
        row("mzML to mzML") = {"convert plain.cdf -o a.mzML && convert a.mzML -o out.mzML.gz", 1, "become .cdf files"};
        row("spectra of a trace") = {"convert total-ion.cdf -o out.msp --scan 0", 1, "has no masses"};
        row("points of a trace") = {"convert total-ion.cdf -o out.csv --csv points", 1, "has no masses"};
        row("no choice of spectra") = {"convert plain.cdf -o out.msp", 1, "--scan, --at or --sum"};
        row("scan that isn't there") = {"convert plain.cdf -o out.msp --scan 5", 1, "no scan 5: the run has 5 scans"};
        row("sum behind the run") = {"convert plain.cdf -o out.msp --sum 5-6", 1,
                                     "there is no scan from 5.000 min to 6.000 min: those of the run are from 0.087"};
        row("choice in a library") = {"convert library.cdf -o out.msp --scan 0", 1, "is a library"};
        row("map without a length") = {"convert gcgc.cdf -o out.csv --csv map", 1, "--modulation"};
        row("no folder") = {"convert plain.cdf -o no/out.mzML", 1, "there is no folder \"no\""};
        row("name that is too long") = {"convert plain.cdf -o $(printf 'a%.0s' $(seq 300)).csv", 1,
                                        "its folder takes no new file: File name too long"};
        row("disk full, mzML") = {"sample gcms s.cdf; ulimit -f 100; convert s.cdf -o out.mzML", 1, "File too large"};
        row("disk full, packed") = {"sample gcms s.cdf; ulimit -f 100; convert s.cdf -o out.mzML.gz", 1,
                                    "File too large"};
        row("disk full, .cdf") = {"sample gcms s.cdf; ulimit -f 100; convert s.cdf -o out.cdf", 1, "File too large"};
        row("disk full, CSV") = {"sample gcms s.cdf; ulimit -f 100; convert s.cdf -o out.csv --csv points", 1,
                                 "File too large"};
        row("several levels") = {"convert --no-compression plain.cdf -o a.mzML && sed -i '0,/level\" "
                                 "value=\"1/s//level\" value=\"4294967297/' a.mzML;"
                                 "convert a.mzML -o out.cdf",
                                 1, "MS levels above 1"};
        row("several polarities") = {"sample gcms --scans 3 s.cdf; convert s.cdf -o a.mzML;"
                                     "sed -i '0,/1000130/s//1000129/' a.mzML; convert a.mzML -o out.cdf",
                                     1, "several polarities"};
        row("polarity that isn't there") = {"sample gcms --scans 3 s.cdf; convert s.cdf -o a.mzML;"
                                            "convert a.mzML --polarity negative -o out.cdf",
                                            1, "no spectra of the MS level and polarity chosen"};
        row("spectra without any polarity") = {"sed 's/polarity=\"+\"//' " AIA_TEST_SOURCES
                                               "/convert/two-scans.mzXML > a.mzXML;"
                                               "convert a.mzXML --polarity positive -o out.cdf",
                                               1, "its spectra say no polarity, so the option --polarity chooses none"};
        row("masses that come between the two walks of a matrix") = {
            "sample gcms --scans 6000 s.cdf; mkfifo p; convert s.cdf -o - --to csv --csv matrix > p & { read -r head;"
            "truncate -s -4000 s.cdf; printf '%4000s' | tr ' ' F >> s.cdf; cat > made; } < p; wait $!",
            1, "was changed while it was open"};
        // It waits for who reads the pipe, so it can't be done before.
        const QString ended =
            "sample gcms --scans 6000 s.cdf; mkfifo p;" AIA_TOOLS "/aia-convert s.cdf -o - --to %1 > p &"
            "{ read -r head; kill $!; cat > made; } < p; wait $!";
        for (const char *format : {"mzML", "csv --csv points"})
            row(QByteArray("interrupted, ") + format) = {ended.arg(format), 1,
                                                         "\"s.cdf\" can't be converted: it was interrupted.\n"};
        row("strict") = {"convert --strict gcgc.cdf -o out.mzML", 1, "--strict"};
        row("strict, and quiet") = {"convert --strict --quiet gcgc.cdf -o out.mzML", 1, "taken for centroided"};
    }
    void refusals()
    {
        checkCall(Rows<Call>::current());
        const bool isKept = QByteArray(QTest::currentDataTag()).startsWith("strict");
        QCOMPARE(QDir().entryList({"out.*"}).isEmpty(), !isKept);
    }

    void text_data()
    {
        const Rows<Call> row;
        row("trace") = {"convert plain.cdf --csv trace --masses 50,91 -o - --to csv > out", 0, "",
                        "scan,time (s),total intensity (Arbitrary Intensity Units),sum of intensities (Arbitrary "
                        "Intensity Units),m/z 50 (Arbitrary Intensity Units),m/z 91 (Arbitrary Intensity Units)\n"
                        "0,5.25,1100,1100,100,700\n1,5.8,350,350,50,300\n2,6.35,0,0,0,0\n"
                        "3,6.9,4242.5,4242.5,42.5,1000\n4,7.45,64,64,0,64\n"};
        row("points, another delimiter") = {
            "convert library.cdf --csv points --delimiter ';' -o - --to csv > out", 0, "",
            "scan;time (s);mass (m/z);intensity\n0;60;50;1\n0;60;60.25;2\n1;90;50;4\n1;90;70.5;8\n"
            "2;120;60.25;16\n2;120;70.5;32\n"};
        Call &scans = row("scans");
        scans = {"convert plain.cdf --csv scans -o - --to csv > out", 0};
        scans.madePart = "\n3,4,6.9,4242.5,4242.5,4,";
        row("matrix") = {"convert library.cdf --csv matrix -o - --to csv > out", 0, "",
                         "scan,time (s),m/z 50,m/z 60,m/z 71\n0,60,1,2,0\n1,90,4,0,8\n2,120,0,16,32\n"};
        row("matrix of wide columns") = {"convert library.cdf --csv matrix --bin 20 -o - --to csv > out", 0, "",
                                         "scan,time (s),m/z 40-60,m/z 60-80\n0,60,1,2\n1,90,4,8\n2,120,0,48\n"};
        Call &quotedCells = row("quoted cells");
        quotedCells = {"convert plain.cdf --csv trace --delimiter ' ' -o - --to csv > out", 0};
        quotedCells.madePart = "scan \"time (s)\" \"total";
        row("library") = {"convert library.cdf -o - --to msp > out", 0, "",
                          "Name: Benzene\nCAS#: 71-43-2\nNum Peaks: 2\n50 1\n60.25 2\n\n"
                          "Name: Entry 1\nNum Peaks: 2\n50 4\n70.5 8\n\n"
                          "Name: Toluene\nCAS#: 108-88-3\nNum Peaks: 2\n60.25 16\n70.5 32\n\n"};
        row("a name without letters, points that MSP lacks") = {
            "ncdump library.cdf | sed 's/Benzene/\\\\001/; s/mass_values = 50/mass_values = 0.5/' | ncgen -o a.cdf; "
            "convert a.cdf -o b.msp; head -3 b.msp > out",
            0, "1 point below m/z 1 or of a negative intensity is left out",
            "Name: Entry 0\nCAS#: 71-43-2\nNum Peaks: 1\n"};
        row("letters that aren't ASCII, the last one cut off, and a wrong CAS number") = {
            "ncdump library.cdf | sed 's/Benzene/\u03a3C\u2086 \u2026 \u00b5\u2026/; s/71432/71433/' | ncgen -o a.cdf;"
            "convert a.cdf -o b.msp; head -2 b.msp > out",
            0, "1 CAS number can't be right, as the last digit doesn't fit the others; the first is 71-43-3",
            "Name: SigmaC6 ... u\nCAS#: 71-43-3\n"};
        row("letters that are spelled otherwise") = {
            "ncdump library.cdf | sed 's/Benzene/\u00d0\u00f0\u00de\u00e6\u00df\u0142\u00d7/' | ncgen -o a.cdf;"
            "convert a.cdf -o - --to msp | head -1 > out",
            0, "", "Name: DdThaesslx\n"};
        row("scan and sum") = {"convert plain.cdf --scan 1 --sum 0.09-0.1 -o - --to msp > out", 0, "",
                               "Name: Five scans, scan 1, 0.097 min\nRT: 0.09666666666666666\nNum Peaks: 2\n"
                               "50.02 50\n91.05 300\n\n"
                               "Name: Five scans, sum from 0.090 min to 0.100 min\nRT: 0.095\nNum Peaks: 2\n"
                               "50.02 50\n91.05 300\n\n"};
        row("sum to behind the run") = {"convert plain.cdf --sum 0.09-10 -o - --to msp | grep RT > out", 0,
                                        "has scans from 0.090 min to 0.124 min only", "RT: 0.10708333333333334\n"};
        row("sum at one time") = {"convert plain.cdf --sum 0.0875-0.0875 -o - --to msp | grep Peaks > out", 0, "",
                                  "Num Peaks: 3\n"};
        row("scan without peaks") = {"convert plain.cdf --scan 2 --scan 4 -o - --to msp > out", 0,
                                     "1 spectrum without peaks is left out: \"Five scans, scan 2, 0.106 min\""};
        row("eleven scans without peaks") = {
            "convert plain.cdf $(printf ' --scan 2%.0s' 1 2 3 4 5 6 7 8 9 10 11) --scan 4 "
            "-o - --to msp > out",
            0, "scan 2, 0.106 min\", ...."};
        row("a CAS number with a 0") = {
            "ncdump library.cdf | sed 's/71432/100027/' | ncgen -o a.cdf; convert a.cdf -o - --to msp | grep CAS > out",
            0, "", "CAS#: 100-02-7\nCAS#: 108-88-3\n"};
        Call &chosenLevel = row("chosen level");
        chosenLevel = {"convert --no-compression plain.cdf -o a.mzML &&"
                       "sed -i '0,/level\" value=\"1/s//level\" value=\"2/' a.mzML;"
                       "convert --ms-level 1 a.mzML -o b.cdf && convert b.cdf -o - --to csv > out",
                       0, "1 spectrum of another MS level is left out"};
        chosenLevel.madePart = "\n0,5.8,350,350\n";
        Call &mzMLInMinutesAndBack = row("mzML in minutes and back");
        mzMLInMinutesAndBack = {"convert --minutes plain.cdf -o a.mzML && convert a.mzML -o b.cdf &&"
                                "convert b.cdf -o - --to csv > out"};
        mzMLInMinutesAndBack.madePart = "0,5.25,1100,1100\n";
        row("modulation that the trace shows") = {
            "sample gcxgc --scans 6000 s.cdf; convert s.cdf -o a.mzML && grep -cE "
            "'1002085|\"modulation length\" value=\"4\" .*UO:0000010' a.mzML > out",
            0, "modulated every 4 s", "2\n"};
        row("modulation, quietly") = {"sample gcxgc --scans 6000 s.cdf; convert --quiet s.cdf -o a.mzML 2> out", 0, "",
                                      ""};
        row("totals that the file gives, through mzML") = {
            "ncdump plain.cdf | sed 's/total_intensity = .*/total_intensity = 1.1, 2, 3, 4, 5 ;/' | ncgen -o a.cdf;"
            "convert a.cdf -o a.mzML && convert a.mzML -o b.cdf && ncdump -v total_intensity b.cdf |"
            "grep 'intensity = ' > out",
            0, "isn't the sum", " total_intensity = 1.1, 2, 3, 4, 5 ;\n"};
        row("one total of a trace") = {
            "sample tic --scans 3 s.cdf; ncdump s.cdf | sed 's/total_intensity = [0-9]*/total_intensity = 5/' |"
            "ncgen -o a.cdf; convert a.cdf -o b.cdf; ncdump -v total_intensity b.cdf | grep 'intensity = ' > out",
            0, "isn't the sum", " total_intensity = 5, 4190000, 4190000 ;\n"};
        row("mzML in hours, its trace by another name") = {
            "convert total-ion.cdf -o a.mzML;"
            "sed -i 's/UO:0000010\" unitName=\"second/UO:0000032\" unitName=\"hour/; s/id=\"TIC/id=\"sum/' a.mzML;"
            "convert a.mzML -o b.cdf && ncdump -v scan_acquisition_time b.cdf | grep 'time = ' > out",
            0, "", " scan_acquisition_time = 216000, 432000 ;\n"};
        row("mzML in microseconds") = {
            "convert plain.cdf -o a.mzML; sed -i 's/UO:0000010\" unitName=\"second/UO:0000029\" "
            "unitName=\"microsecond/' a.mzML;"
            "convert a.mzML -o b.cdf && ncdump -v scan_acquisition_time b.cdf | grep 'time = ' > out",
            0, "", " scan_acquisition_time = 5.25e-06, 5.8e-06, 6.35e-06, 6.9e-06, 7.45e-06 ;\n"};
        row("two scan windows in mzML") = {
            "sample gcms --scans 1 s.cdf; convert s.cdf -o a.mzML; sed -zi 's/ *<scanWindow>.*<.scanWindow>/&&/;"
            "s/355.25/500/2; s/355.25/100/2; s/WindowList count=\"1/WindowList count=\"2/' a.mzML; grep -c 'r "
            "limit.*\"100\"' a.mzML > out;"
            "convert a.mzML -o b.cdf; ncdump -v mass_range_max b.cdf | grep ' mass.*max = ' >> out",
            0, "become one range", "1\n mass_range_max = 500 ;\n"};
        row("mzML without a unit of time") = {
            "convert plain.cdf -o a.mzML; sed -i 's/unitAccession=\"UO:0000010\"/unitAccession=\"\"/' a.mzML; convert "
            "a.mzML -o b.cdf",
            0, "taken for seconds"};
        row("a mass in mzML that is no number") = {
            "convert --no-compression plain.cdf -o a.mzML; sed -i '0,/<binary>....../s//<binary>AADAfw/' a.mzML; "
            "convert a.mzML -o b.cdf",
            1, "1 point whose mass or intensity is infinite, no number or the fill value of netCDF is left out"};
        row("times that fall in mzML") = {
            "convert plain.cdf -o a.mzML; sed -i 's/value=\"5.8/value=\"0.8/' a.mzML; convert a.mzML -o b.cdf", 0,
            "\"b.cdf\", 1 of 5 scans has a time before that of the scan before"};
        row("a run in minutes") = {
            "ncdump plain.cdf | sed 's/\"Seconds\"/\" Minutes\"/' | ncgen -o a.cdf; convert a.cdf -o a.mzML;"
            "convert a.mzML -o b.cdf; ncdump -v scan_acquisition_time b.cdf | grep 'time = ' > out",
            0, "", " scan_acquisition_time = 315, 348, 381, 414, 447 ;\n"};
        row("a run in minutes, into minutes") = {
            "ncdump plain.cdf | sed 's/\"Seconds\"/\"Minutes\"/' | ncgen -o a.cdf; convert --minutes a.cdf -o a.mzML;"
            "grep -oE 'start time\" value=\"[0-9.]*' a.mzML | head -1 > out",
            0, "", "start time\" value=\"5.25\n"};
        row("a time behind the run") = {"convert plain.cdf -o b.msp --at 5", 0,
                                        "no scan at 5.000 min; scan 4, at 0.124 min, is taken"};
        row("what mzML says of run and scan") = {
            "sample gcms --scans 1 s.cdf; convert s.cdf -o a.mzML;"
            "grep -oE '(base peak m/z|highest observed m/z|r limit|startTime)[^.Z]*[.Z]' a.mzML > out",
            0, "",
            "startTimeStamp=\"2024-03-12T14:25:30Z\nbase peak m/z\" value=\"57.\nhighest observed m/z\" value=\"355.\n"
            "r limit\" value=\"38.\nr limit\" value=\"355.\n"};
        row("a number of some scans, and of all") = {
            "sample gcms --scans 3 s.cdf; ncdump s.cdf | sed 's/ scan_duration = [0-9.]*/ scan_duration = 9/' | ncgen "
            "-o a.cdf;"
            "convert a.cdf -o a.mzML; convert a.mzML -o b.cdf; ncdump -h b.cdf | grep -o 'electron_energy.*' > out",
            0, "no place for what the file has of this: scan_duration", "electron_energy = 70.f ;\n"};
        row("a number never written, and what says how a file is made") = {
            "sample gcms --scans 2 s.cdf; ncdump s.cdf | sed 's/factor = 1, 1/factor = _, _/' | ncgen -o a.cdf;"
            "convert a.cdf -o a.mzML; grep -cE 'coaddition|global_mass' a.mzML > out;"
            "convert a.cdf -o b.cdf; ncdump -v a_d_coaddition_factor b.cdf | grep 'factor = ' >> out",
            0, "", "0\n a_d_coaddition_factor = -9999, -9999 ;\n"};
        row("a wrong total, told once") = {
            "sample gcms --scans 3 s.cdf; ncdump s.cdf | sed 's/total_intensity = [0-9]*/total_intensity = 5/' |"
            "ncgen -o a.cdf; convert a.cdf -o b.mzML 2>&1 | grep -c 'the sum of' > out",
            0, "", "1\n"};
        row("points put in order, told once") = {"convert " + fixture("overlapping-scans")
                                                     + " -o b.cdf 2>&1 | grep -c 'put in the order' > out",
                                                 0, "", "1\n"};
        row("serial number in mzML") = {"convert plain.cdf -o a.mzML; sed -i 's/<componentList/<cvParam cvRef=\"MS\" "
                                        "accession=\"MS:1000529\" name=\"instrument serial number\" "
                                        "value=\"S7\"\\/>&/' a.mzML; convert a.mzML -o b.cdf;"
                                        "ncdump -v instrument_serial_no b.cdf | grep -o 'S7' > out",
                                        0, "", "S7\n"};
        row("a polarity") = {
            "sample gcms --scans 3 s.cdf; convert s.cdf -o a.mzML; sed -i '0,/1000130/s//1000129/; /ionization_pol/d;"
            "/scan=1\"/,/1000130/s/.*1000130.*//' a.mzML; convert --polarity positive a.mzML -o b.cdf; ncdump -h b.cdf "
            "| grep -o 'polarity = .*' > out",
            0,
            "1 spectrum of the other polarity is left out.\n"
            "aia-convert: \"a.mzML\": 1 spectrum that says no polarity is left out.",
            "polarity = \"Positive Polarity\" ;\n"};
        row("progress of mzML") = {"sample gcms --scans 200 s.cdf; convert s.cdf -o a.mzML;"
                                   "script -qec '" AIA_TOOLS
                                   "/aia-convert a.mzML -o b.cdf' /dev/null | tr '\\r' '\\n' | grep -c '50 %' > out",
                                   0, "", "1\n"};
        row("a compound's numbers") = {
            "sample library --scans 1 s.cdf; convert s.cdf -o b.msp; grep -E '^(MW|RT):' b.msp > out;"
            "ncdump s.cdf | sed 's/chemical_mass/others/' | ncgen -o c.cdf; convert c.cdf -o - --to msp | grep MW >> "
            "out;"
            "convert info-library.cdf -o b.cdf; ncdump -v melting_point b.cdf | grep -o 'point = [^,]*' >> out",
            0, "", "MW: 92\nRT: 3.65625\nMW: 92\npoint = 5.53\n"};
        row("all of a library") = {
            "sample library --scans 1 s.cdf; convert s.cdf -o b.cdf;"
            "for i in s b; do ncdump $i.cdf | sed '1,/^data/d' > $i.txt; done; diff s.txt b.txt > out",
            0, "", ""};
        row("no scan of none") = {"convert " + fixture("no-scans") + " --scan 3 -o b.msp", 1,
                                  "there is no scan 3: the run has 0 scans, counted from 0"};
        row("edges of a trace's masses") = {
            "convert library.cdf --csv trace --masses 59.8,70 -o - --to csv | cut -d , -f 5- > out", 0, "",
            "m/z 59.8,m/z 70\n2,0\n0,0\n16,0\n"};
        row("points of a trace") = {"sample tic --scans 3 --points 2 s.cdf; convert s.cdf -o b.csv", 1,
                                    "its 6 points are left out"};
        row("words of its own") = {"convert " + fixture("run-facts") + " -o b.cdf", 0,
                                   "own words \"Fused silica\" are none of the template's; they are left out."};
        row("map of stored totals, without places of two scans") = {
            "sample gcxgc --scans 800 s.cdf; ncdump s.cdf | sed -z 's/total_intensity = [0-9]*/total_intensity = 5/;"
            "s/scan_acquisition_time = [^,]*, \\([^,]*\\), [^,]*, [^,]*/scan_acquisition_time = \\1, \\1, \\1, \\1/' |"
            "ncgen -o a.cdf; convert a.cdf --csv map --modulation 4 -o - --to csv | sed -n 2p | cut -d , -f 2 > out",
            0, "3 scans have no place of their own in the map", "5\n"};
        row("map without totals") = {
            "sample gcxgc --scans 800 s.cdf; ncdump s.cdf | sed 's/total_intensity/others/' | ncgen -o a.cdf;"
            "convert a.cdf --csv map --modulation 4 -o - --to csv | cut -d , -f 2 | grep -c . > out",
            0, "", "401\n"};
        row("quotes in a unit") = {
            "ncdump plain.cdf | sed 's/Arbitrary Intensity Units/a \\\\\"b\\\\\"/' | ncgen -o a.cdf;"
            "convert a.cdf -o - --to csv | head -1 | cut -d , -f 3- > out",
            0, "", "\"total intensity (a \"\"b\"\")\",\"sum of intensities (a \"\"b\"\")\"\n"};
        row("scan window with one limit") = {
            "sample gcms --scans 3 s.cdf; ncdump s.cdf | sed -z 's/mass_range_max =\\s*[0-9.]*/mass_range_max = "
            "-9999/' |"
            "ncgen -o a.cdf; convert a.cdf -o a.mzML; grep -cE '100050[01]' a.mzML > out",
            0, "ranges of masses with one end", "4\n"};
        row("formats of masses and intensities, through mzML") = {
            "ncdump plain.cdf | sed -E 's/float (mass|intensity)_/double \\1_/' | ncgen -o a.cdf;"
            "for i in plain a; do convert $i.cdf -o $i.mzML; convert $i.mzML -o b.cdf --force;"
            "ncdump -h b.cdf | grep -o '[a-z]* [a-z]*_values(' >> out; done",
            0, "", "float mass_values(\nfloat intensity_values(\ndouble mass_values(\ndouble intensity_values(\n"};
        row("packed arrays without numbers") = {
            "convert plain.cdf -o a.mzML; sed -Ei 's/dLength=.0.>/dLength=\"12\">/; s/<binary(\\/>|><\\/binary>)/"
            "<binary>eJwDAAAAAAE=<\\/binary>/' a.mzML; grep -c eJwDAAAAAAE a.mzML > out;"
            "convert a.mzML -o b.cdf && ncdump -v point_count b.cdf | grep 'count = ' >> out",
            0, "", "2\n point_count = 3, 2, 0, 4, 1 ;\n"};
        row("a start in mzML without a zone") = {
            "sample gcms --scans 2 s.cdf; convert s.cdf -o a.mzML; sed -i '/experiment_date/d; s/30Z/30/' a.mzML;"
            "convert a.mzML -o b.cdf && ncdump -h b.cdf | grep -o 'experiment_date.*' > out",
            0, "", "experiment_date_time_stamp = \"20240312142530\" ;\n"};
        row("a start in mzML, in another zone") = {
            "sample gcms --scans 2 s.cdf; convert s.cdf -o a.mzML; sed -i '/experiment_date/d; s/30Z/30+02:00/' a.mzML;"
            "convert a.mzML -o b.cdf && ncdump -h b.cdf | grep -o 'experiment_date.*' > out",
            0, "", "experiment_date_time_stamp = \"20240312122530+0000\" ;\n"};
        row("times of points, never written and written") = {
            "sample gcms --scans 2 s.cdf; ncdump s.cdf | sed 's/float mass_values.*/&double "
            "time_values(point_number);/' "
            "> a.cdl; ncgen -o a.cdf a.cdl; convert --strict a.cdf -o a.mzML && echo right > out;"
            "sed 's/^ mass_values =/ time_values = 1, 2; mass_values =/' a.cdl | ncgen -o b.cdf; convert b.cdf -o "
            "b.mzML",
            0, "\"b.cdf\": mzML has no place for what the file has of this: times of points.", "right\n"};
        row("trace in 64 bits, and lists") = {
            "convert plain.cdf -o a.mzML && grep -oE '1000523|indexList count=.[0-9]' a.mzML > out", 0, "",
            "1000523\n1000523\nindexList count=\"2\n"};
        row("spectra of light") = {
            "convert --no-compression plain.cdf -o a.mzML && sed -i '/index=.0/,/1000579/s/1000579/1000804/' a.mzML;"
            "convert a.mzML -o b.cdf",
            0, "1 spectrum that isn't a mass spectrum is left out"};
        row("numbers that repeat, times that fall") = {
            "ncdump plain.cdf | sed 's/actual_scan_number = .*/actual_scan_number = 5, 5, 6, 7, 8 ;/;"
            "s/scan_acquisition_time = .*/scan_acquisition_time = 9, 8, 7, 6, 6 ;/;"
            "' | ncgen -o a.cdf;"
            "convert a.cdf -o a.mzML; grep -oE 'id=.scan=[0-9]+. d|start time.*value=.[0-9]' a.mzML > out",
            0, "order of their times",
            "id=\"scan=3\" d\nstart time\" value=\"6\nid=\"scan=4\" d\nstart time\" value=\"6\n"
            "id=\"scan=2\" d\nstart time\" value=\"7\nid=\"scan=1\" d\nstart time\" value=\"8\n"
            "id=\"scan=0\" d\nstart time\" value=\"9\n"};
        row("mzXML") = {"convert " AIA_TEST_SOURCES "/convert/two-scans.mzXML -o a.cdf &&"
                        "convert a.cdf --csv points -o - --to csv > out",
                        0, "",
                        "scan,time (s),mass (m/z),intensity (Total Counts)\n"
                        "0,60.5,50.0099983215332,100\n0,60.5,77.25,2.5\n1,61,91.05000305175781,7000000\n"};
        const QString changedMzXml =
            "sed '%1' " AIA_TEST_SOURCES "/convert/two-scans.mzXML | gzip > a.mzXML.gz; convert a.mzXML.gz ";
        row("mzXML in hours, packed, with no word on the kind of its spectra") = {
            changedMzXml.arg("s/=.PT61S/=\"PT1H2M3.5S/; s/centroided=.1.//")
                + "-o b.cdf; ncdump -v scan_acquisition_time b.cdf | grep 'time = ' > out",
            0, "they are taken for profiles.", " scan_acquisition_time = 60.5, 3723.5 ;\n"};
        row("two kinds of spectra, a number twice, and none") = {
            "sample gcms --scans 3 s.cdf; convert s.cdf -o a.mzML; sed -i '/index=.1/,/1000127/s/1000127/1000128/;"
            "s/id=.scan=2\"/id=\"scan=1\"/; s/id=.scan=0\"/id=\"index=0\"/' a.mzML; convert a.mzML -o b.cdf;"
            "ncdump -v actual_scan_number b.cdf | grep '^ actual.* = ' > out",
            0,
            "1 spectrum has no scan number that a .cdf file holds; its place, counted from 0, is taken for it.\n"
            "aia-convert: \"a.mzML\": Some spectra are centroided and some are profiles; all are taken for profiles.\n"
            "aia-convert: \"a.mzML\": 1 spectrum has the number of an earlier one, and keeps it.\n",
            " actual_scan_number = 0, 1, 1 ;\n"};
        Call &attributesThroughMzML = row("attributes through mzML");
        attributesThroughMzML = {"sample gcms --scans 2 s.cdf; convert s.cdf -o a.mzML &&"
                                 "convert a.mzML -o b.cdf && ncdump -v instrument_name b.cdf > out"};
        attributesThroughMzML.madePart = "\"Mass spectrometer";
        const QString retitled = "ncdump plain.cdf | sed 's/Five scans/%1/' | ncgen -o a.cdf; ";
        row("alphabets and units through mzML") = {
            retitled.arg("\u03b1-Pinen \u8a66\u6599\" ; :raw_data_comments = \"kept")
                + "convert a.cdf -o a.mzML && convert a.mzML -o b.cdf && convert b.cdf -o c.cdf &&"
                  "ncdump -h c.cdf | grep -E ':(exp.*title|raw.*comments) |intensity_values:units' > out",
            0, "",
            "\t\tintensity_values:units = \"Arbitrary Intensity Units\" ;\n"
            "\t\t:experiment_title = \"\u03b1-Pinen \u8a66\u6599\" ;\n\t\t:raw_data_comments = \"kept\" ;\n"};
        row("nothing that the file doesn't say") = {
            "ncdump " + fixture("no-attributes")
                + " | sed 's/^data:/:operator_name = \"o\" ; :dataset_origin = \"p\" ; :sample_internal_id = \"q\" "
                  ";&/' |"
                  "ncgen -o c.cdf; convert c.cdf -o a.cdf; convert a.cdf -o a.mzML; convert a.mzML -o b.cdf;"
                  "for i in a b; do ncdump -h $i.cdf | grep -oE '[a-z_]*:[a-z_]+' | grep -vE "
                  "'global_|revision|format|stamp' | tr '\n' ' '; done > out",
            0, "",
            ":dataset_completeness :languages :dataset_origin :operator_name :experiment_type "
            ":sample_internal_id :starting_scan_number "
            ":dataset_completeness :languages :dataset_origin :operator_name :post_experiment_program_name "
            ":source_file_reference :experiment_type :sample_internal_id :starting_scan_number "};
        row("what another program's mzML says in the same words") = {
            "convert " + fixture("no-attributes")
                + " -o a.mzML; sed -i 's/aia-convert/other/' a.mzML; convert a.mzML -o b.cdf; ncdump -h b.cdf |"
                  "grep -oE '(title|function|l_intensity:units) = .*' > out",
            0, "", "l_intensity:units = \"Total Counts\" ;\ntitle = \"run\" ;\nfunction = \"Mass Scan\" ;\n"};
        row("title in Latin-1") = {retitled.arg("\\\\374ber")
                                       + "convert a.cdf -o b.cdf && ncdump -h b.cdf | grep title > out",
                                   0, "", "\t\t:experiment_title = \"\u00fcber\" ;\n"};
        row("who took another program's mzML") = {
            "sample gcms --scans 1 s.cdf; ncdump s.cdf | sed 's/dataset_owner = \"/&An owner of the /' | ncgen -o "
            "a.cdf;"
            "convert a.cdf -o a.mzML; sed -i -E '/userParam name=\"(operator_name|dataset_)/d; s/aia-convert/other/' "
            "a.mzML;"
            "convert a.mzML -o b.cdf; ncdump -h b.cdf | grep -oE '(operator_name|dataset_o.*) = .*' > out",
            0, "", "dataset_owner = \"An owner of the Example laboratory\" ;\noperator_name = \"Operator\" ;\n"};
        const QString flagged =
            "ncdump " + fixture("flags-on-masses") + " | sed -E '%1' | ncgen -o a.cdf; convert a.cdf -o b.cdf; ";
        row("times of points in another order") = {
            flagged.arg("s/(mass_values =) 50, 60.25/\\1 60.25, 50/")
                + "ncdump -v time_values b.cdf | grep 'time_values = ' | cut -d , -f 1-2 > out",
            0, "Flags of peaks are left out", " time_values = 2, 1\n"};
        row("flags where points lack data") = {flagged.arg("s/(mass_values =) 50/\\1 NaNf/")
                                                   + "ncdump -v flag_count b.cdf | grep 'flag_count = ' > out",
                                               0, "Flags of peaks are left out", " flag_count = 0, 0, 0 ;\n"};
        row("map whose times are rounded at the edges") = {
            "sample tic --scans 12 s.cdf; ncdump s.cdf | sed -z 's/scan_acquisition_time = [^;]*/scan_acquisition_time "
            "= "
            "2, 2.1, 2.2, 2.3, 2.4, 2.5, 2.6, 2.7, 2.8, 2.9, 3, 3.1 /' | ncgen -o a.cdf;"
            "convert a.cdf --csv map --modulation 0.3 -o - --to csv | grep -vcE ',(,|$)' > out",
            0, "", "4\n"};
        row("text that has no room") = {"convert plain.cdf -o a.mzML && sed -i 's/<componentList/<userParam "
                                        "name=\"instrument_name\" value=\"A name that is much longer than 31 "
                                        "letters\"\\/>&/' a.mzML; convert a.mzML -o b.cdf",
                                        0, "room for 31 letters of instrument_name"};
    }
    void text() { checkCall(Rows<Call>::current()); }

    void map()
    {
        QCOMPARE(shell("sample gcxgc --scans 1600 s.cdf; convert s.cdf --csv map --modulation 4 -o out.csv").code, 0);
        const QList<QByteArray> rows = content("out.csv").split('\n');
        QCOMPARE(rows.size(), 400 + 2); // 4 s of 100 scans, a head, and nothing behind the last line
        QCOMPARE(rows[1].count(','), 4);
        QVERIFY(!QRegularExpression(",(,|$)").match(rows[200]).hasMatch()); // no cell is empty
    }

    // Whatever the input had that can be mended, a strict reader has nothing to say of the output.
    void clean_data()
    {
        const Rows<QString> row;
        for (const char *name : {"dashes", "no-scan-index", "overlapping-scans", "plain", "continuum", "instruments",
                                 "groups", "double-masses", "flags-on-masses", "info-library"})
            row(name) = name;
    }
    void clean()
    {
        const QString source = fixture(Rows<QString>::current());
        shell("convert " + source + " -o a.cdf");
        const Run again = shell("convert --strict a.cdf -o b.cdf");
        QVERIFY2(again.code == 0, again.err);
        const auto dump = [](const QString &name) {
            return shell("ncdump " + name + " | grep -v -e '^netcdf' -e netcdf_file_date_time_stamp").out;
        };
        QCOMPARE(dump("b.cdf"), dump("a.cdf"));
    }

    void manyFiles_data()
    {
        const Rows<Call> row;
        row("all well") = {"convert plain.cdf gcgc.cdf --to mzML --jobs 2; s=$?; ls *.mzML > out; exit $s", 0,
                           "2 files were converted", "gcgc.mzML\nplain.mzML\n"};
        row("a bad one first") = {"convert chromatogram.cdf plain.cdf --to mzML; s=$?; ls *.mzML > out; exit $s", 1,
                                  "1 of 2 files was not converted, or not in full: \"chromatogram.cdf\"",
                                  "plain.mzML\n"};
        Call &optionsForAll = row("options for all");
        optionsForAll = {"mkdir d; convert --delimiter ';' --csv points plain.cdf library.cdf --to csv "
                         "--out-dir d; s=$?; head -qn1 d/*.csv > out; exit $s"};
        optionsForAll.madePart = "scan;time (s);mass (m/z);intensity\nscan;time (s);mass";
    }
    void manyFiles() { checkCall(Rows<Call>::current()); }

    void endedFromOutside_data()
    {
        const Rows<int> row;
        row("worker killed") = SIGKILL;
        row("interrupted") = SIGINT;
        row("input cut off") = 0;
    }
    void endedFromOutside()
    {
        const int signal = Rows<int>::current();
        QCOMPARE(shell("sample gcxgc --scans 60000 s.cdf").code, 0);
        QProcess program;
        program.start(AIA_TOOLS "/aia-convert", {"s.cdf", "plain.cdf", "--to", "mzML"});
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(leftovers().value(0, "none")).size() > 0, longestWait);
        const QString children = QStringLiteral("/proc/%1/task/%1/children").arg(program.processId());
        const int worker = content(children).split(' ').value(0).toInt();
        QVERIFY(worker > 0);
        QCOMPARE(kill(worker, SIGSTOP), 0); // else it might be done before
        if (signal == 0)
            QVERIFY(QFile::resize("s.cdf", 100000));
        else
            QCOMPARE(kill(signal == SIGKILL ? worker : int(program.processId()), signal), 0);
        const QString status = QStringLiteral("/proc/%1/status").arg(worker);
        if (signal == SIGINT) // which is passed on as a request to end
            QTRY_VERIFY_WITH_TIMEOUT(content(status).contains("ShdPnd:\t0000000000004000"), longestWait);
        kill(worker, SIGCONT);
        const Run result = finish(program);
        QCOMPARE(result.code, 1);
        const char *reason = signal == SIGKILL ? "was killed or crashed"
            : signal == SIGINT                 ? "can't be converted: it was interrupted."
                                               : "changed meanwhile";
        QVERIFY2(result.err.contains(reason), result.err);
        QCOMPARE(result.err.contains("crashed"), signal == SIGKILL);
        QCOMPARE(QFile::exists("plain.mzML"), signal != SIGINT);
        QVERIFY(!QFile::exists("s.mzML"));
        QCOMPARE(leftovers(), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestAiaConvert)
#include "tst_aia_convert.moc"
