// The import of one file, in the way of the host: the plugin's prototype is asked whether it takes the
// file, and a working copy of it then does the run.
#ifndef FILEIMPORT_H
#define FILEIMPORT_H

#include "dvimportanalysisinterface.h"
#include "dvimportreceiver.h"
#include "importjson.h"
#include "importoptions.h"
#include "importsummary.h"
#include "lostfile.h"
#include "messagelist.h"
#include "msfile.h"
#include "msrunlimit.h"
#include "progressbar.h"
#include "runfacts.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

class FileImport : private DVImportReceiver
{
public:
    // `json` may be null. What is handed in by reference or pointer must outlive the import.
    FileImport(DVImportAnalysisInterface &plugin, const ImportOptions &commandLine, ImportJson *json,
               const QString &fileName);

    // Imports the file. Returns whether it was imported in full, and has reported why if not. An
    // interruption, or a failure of the JSON, stops it before its next scan.
    bool run();

private:
    void analysisStarted(const DVHeader &header, const float *table, int tableSize) override;
    void scanImported(int scan, double time, double total, int pointCount, const float *abundances,
                      const unsigned short *positions) override;
    void progressChanged(int done, int count) override;

    bool importIfPossible();
    void closePrototype();
    void askParameters();
    bool takeModulation();
    bool importOn(std::unique_ptr<DVImportAnalysisInterface> copy);
    void showAccount(const QString &line) const;
    bool judge(bool finished, const std::vector<RunDoubt> &doubts);
    void writeSummary(const std::vector<RunDoubt> &doubts, int otherWarnings);
    QString refusal(const QString &hostText);

    DVImportAnalysisInterface &prototype;
    const ImportOptions &options;
    ImportJson *const json;
    const QString fileName;
    DVImportAnalysisInterface *working = nullptr; // during the run
    MessageList messages;
    MsFile file; // the same file, for what the import doesn't hand over
    std::optional<RunFacts> facts;
    ImportSummary summary;
    RunLimit limit;
    LostFile lostFile;
    QString complaint; // why the run was given up
    ProgressBar progress;
    bool started = false; // header and table have come
    int scanCount = 0;
    int scansDone = 0;
};

#endif // FILEIMPORT_H
