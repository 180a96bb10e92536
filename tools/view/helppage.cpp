#include "helppage.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {

struct HelpRow {
    const char *keys; // empty: `effect` is the heading of the rows that follow
    const char *effect;
};

constexpr HelpRow helpRows[] = {
    // clang-format off
    {"", "Files"},
    {"Ctrl+O", "open files; they can also be dropped on the window"},
    {"Ctrl+W", "close the file"},
    {"Ctrl+S, Ctrl+Shift+S", "save the trace or map, or the spectrum: an image or a table"},
    {"Ctrl+Tab, Ctrl+Shift+Tab", "next file, previous file"},
    {"F9", "show or hide what the file says and the table of peaks"},
    {"Ctrl+F", "search what the file says, or the compounds of a library"},
    {"Escape", "cancel what is being read; from a field back to the plot"},
    {"", "Plots, with the mouse"},
    {"Wheel", "zoom; over the vertical axis, along that one"},
    {"Drag", "move"},
    {"Drag with the right button", "zoom into the box"},
    {"Double click", "show all"},
    {"Click in the trace or the map", "show the spectrum of that scan"},
    {"Drag with Shift in the trace", "show the average of the range"},
    {"Drag with Ctrl in the trace", "subtract the average of that range as background"},
    {"Click on a peak of the spectrum", "add the trace of its mass"},
    {"Click in the legend", "bring that trace forward"},
    {"Double click in the legend", "remove that extracted trace"},
    {"", "Plots, with the keyboard"},
    {"Left, Right", "previous scan, next scan; in the map, a modulation back or on"},
    {"Up, Down", "in the map, next or previous scan; in the trace, larger or smaller"},
    {"Page Up, Page Down", "ten scans back, ten scans on"},
    {"Home, End", "first scan, last scan"},
    {"Ctrl+Left, Ctrl+Right", "move the trace, or the spectrum if it has the focus"},
    {"+, -, 0", "zoom in, zoom out, show all"},
    {"H", "fit the height of the trace to what is seen"},
    {"N", "bring the next trace forward"},
    {"Ctrl+G", "go to a scan, such as 344, or a time, such as 6.44; 6.4-6.5 shows the average of the range, 6.4-6.5, 6-6.2 that less a background"},
    {"Ctrl+M", "type masses for traces, such as 43, 57-71"},
    {"Ctrl+D", "map of a GCxGC run, or its trace"},
    {"Ctrl+L", "lay the traces of all open runs over each other"},
    {"Ctrl+P, Ctrl+Shift+P", "pin the spectrum, to compare it with others; unpin it"},
    {"Ctrl+H", "lay over the spectrum what the host gets of it"},
    {"Return in the table of peaks", "add the trace of that mass"},
    {"Ctrl+C in the table of peaks", "copy the chosen rows, or all"},
    {"Alt+L in a library", "trace the largest masses of the compound in all open runs"},
    // clang-format on
};

QString helpText()
{
    QString html = QStringLiteral("<table cellspacing=\"0\" cellpadding=\"3\">");
    for (const HelpRow &row : helpRows) {
        const QString keys = QString::fromLatin1(row.keys).toHtmlEscaped();
        const QString effect = QString::fromLatin1(row.effect).toHtmlEscaped();
        html += keys.isEmpty()
            ? QStringLiteral("<tr><td colspan=\"2\"><h3>%1</h3></td></tr>").arg(effect)
            : QStringLiteral("<tr><td><b>%1</b>&nbsp;&nbsp;</td><td>%2</td></tr>").arg(keys, effect);
    }
    return html + QStringLiteral("</table>");
}

} // namespace

void showHelpPage(QWidget *parent)
{
    auto *dialog = new QDialog(parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(QStringLiteral("Mouse and keys"));
    auto *text = new QTextBrowser;
    text->setHtml(helpText());
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    auto *layout = new QVBoxLayout(dialog);
    layout->addWidget(text);
    layout->addWidget(buttons);
    dialog->resize(640, 720);
    dialog->show();
}
