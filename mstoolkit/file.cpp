// Opening and closing a file.

#include "define_p.h"
#include "filestate_p.h"
#include "inquire_p.h"
#include "path_p.h"

#include "messageloggerinterface.h"

#include <QString>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <utility>

namespace {

// Returns the path in a spelling that the library can't mistake. Of others it leaves out blanks at the
// beginning, and it asks the network about those with "://" in them.
std::string exact_path(const char *path)
{
    std::string exact = std::filesystem::path(path).is_relative() ? "./" : "";
    for (; *path; ++path) {
        if (*path != '/' || exact.size() < 2 || exact.compare(exact.size() - 2, 2, ":/") != 0)
            exact += *path;
    }
    return exact;
}

void report_damage(const char *path)
{
    MessageLoggerInterface::Error(
        QStringLiteral("The file <b>%1</b> is damaged: its header can't be right.")
            .arg(ms_shown_name(path)),
        nullptr);
}

// Of a header that may be right.
void report_library_refusal(const char *path)
{
    MessageLoggerInterface::Error(
        QStringLiteral("The file <b>%1</b> can't be opened: its header is damaged, or the system read "
                       "only a part of it (%2).")
            .arg(ms_shown_name(path), QString::fromLatin1(nc_strerror(ncerr)).toHtmlEscaped()),
        nullptr);
}

void report_change(const char *path)
{
    MessageLoggerInterface::Error(
        QStringLiteral("The file <b>%1</b> was changed while it was opened.").arg(ms_shown_name(path)),
        nullptr);
}

void report_missing_data(const char *path, const MsFileData &data)
{
    MessageLoggerInterface::Warning(
        QStringLiteral("The file <b>%1</b> is cut off: %2 of %3 bytes are missing.")
            .arg(ms_shown_name(path), QString::number(data.missing_bytes()),
                 QString::number(data.classic_layout()->needed)),
        nullptr);
}

// A file that netCDF has just opened. However the opening ends, by exhausted memory too, the file is
// closed and its record dropped, unless its id was handed out.
class Opening
{
public:
    explicit Opening(int id) : ncid(id) { }
    ~Opening()
    {
        if (ncid != -1)
            ms_close(ncid);
    }
    Q_DISABLE_COPY(Opening)

    int id() const { return ncid; }
    int hand_out() { return std::exchange(ncid, -1); }

private:
    int ncid;
};

// Has the library open a file whose header was looked at. It fails, or finds another header, where the
// system refuses its reads or hands over less than it asked for: a second attempt may go well. What was
// the system's fault is noted in `bytes`. Returns -1 for a failure.
int open_with_library(const char *path, MsHeader header, const MsClassicLayout &layout,
                      MsClassicBytes *bytes)
{
    constexpr int attempts = 2;
    const auto is_right = [&](int id) {
        return header != MsHeader::Sound || !bytes->is_of(path) // the caller's to refuse
            || ms_confirm_header(id, layout);
    };
    const quint64 refusals = bytes->refusals();
    ms_let_failures_return();
    for (int i = 0; i < attempts; ++i) {
        errno = 0;
        Opening file(ncopen(exact_path(path).c_str(), NC_NOWRITE));
        const int reason = errno;
        if (file.id() != -1 && is_right(file.id())) {
            if (i > 0 && bytes->refusals() == refusals)
                bytes->note_refusal(EIO);
            return file.hand_out();
        }
        if (file.id() != -1)
            bytes->note_refusal(EIO);
        else if (ncerr == NC_SYSERR)
            bytes->note_refusal(reason != 0 ? reason : EIO);
    }
    return -1;
}

// The state of a file that was just opened. Its id may have a record still, of a file that was closed
// without the toolkit. That record stays, but all else that was known of the earlier file is forgotten.
MsFileState &begin(int ncid)
{
    ms_register_file(ncid);
    MsFileState &state = *ms_file_state(ncid);
    state.forget();
    return state;
}

} // namespace

int ms_open_read(const char *path)
{
    if (!path || !*path || !ms_can_register())
        return -1;

    std::error_code unknown;
    const std::filesystem::file_status status = std::filesystem::status(path, unknown);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        return -1; // a pipe would be waited at for ever
    // Opened first, so that its header is looked at, and the library opens it, while it is held to be the
    // same.
    auto bytes = std::make_unique<MsClassicBytes>();
    if (!bytes->open(path))
        return -1;
    MsClassicLayout layout;
    const MsHeader header = ms_inspect_header(*bytes, &layout);
    if (header == MsHeader::Damaged) {
        report_damage(path);
        return -1;
    }
    Opening file(header == MsHeader::Refused ? -1 : open_with_library(path, header, layout, bytes.get()));
    // In a classic file they are among its doubts.
    if (bytes->refusals() > 0 && (file.id() == -1 || header != MsHeader::Sound))
        ms_report_refusal(path, bytes->first_error());
    else if (file.id() == -1 && header == MsHeader::Sound)
        report_library_refusal(path);
    if (file.id() == -1)
        return -1;

    MsFileState &state = begin(file.id());
    if (header != MsHeader::Sound) {
        state.data.open_read(layout.length);
    } else if (bytes->is_of(path)) {
        state.data.open_read(std::move(bytes), std::move(layout));
    } else {
        report_change(path);
        return -1;
    }
    if (state.data.missing_bytes() > 0)
        report_missing_data(path, state.data);
    ms_inquire_dimensions(state);
    ms_inquire_variables(state);
    return file.hand_out();
}

int ms_open_write(const char *path, qint32 experiment_type, qint32 scan_count, qint32 instrument_count,
                  qint32 mass_format, qint32 time_format, qint32 intensity_format, qint32 has_mass_values,
                  qint32 has_time_values)
{
    if (!path || !*path || !ms_can_register())
        return -1;

    ms_let_failures_return();
    Opening file(nccreate(exact_path(path).c_str(), NC_CLOBBER));
    if (file.id() == -1)
        return -1;

    MsFileState &state = begin(file.id());
    if (ms_define_dimensions(state, scan_count, instrument_count) == -1
        || ms_define_variables(state, experiment_type, mass_format, time_format, intensity_format,
                               has_mass_values, has_time_values)
            == -1)
        return -1;
    ncendef(file.id());
    return file.hand_out();
}

int ms_close(int ncid)
{
    ms_let_failures_return();
    ncclose(ncid);
    return ms_unregister_file(ncid);
}
