#include "dvimportgcgcdialog.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpacerItem>
#include <QTextBoundaryFinder>
#include <QVBoxLayout>

namespace {

// A name up to this length fits in a line and is shown as it is.
constexpr int lineLength = 40;

// A label wraps between words only, so a long name without blanks would make the dialog wider than the
// screen. Zero-width spaces let it wrap at any character.
QString breakableName(const QString &name)
{
    if (name.size() <= lineLength)
        return name;
    QString breakable;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, name);
    for (int start = 0, end = finder.toNextBoundary(); end != -1; end = finder.toNextBoundary()) {
        breakable += name.mid(start, end - start) + QChar(0x200B);
        start = end;
    }
    return breakable;
}

} // namespace

// The calls of translate are written out, because lupdate finds no others.
DVImportGCGCDialog::DVImportGCGCDialog(QWidget *parent, const QString &fileName)
    : QDialog(parent, Qt::WindowTitleHint | Qt::WindowSystemMenuHint), modulationSpin(new QDoubleSpinBox),
      applyCheck(new QCheckBox(QCoreApplication::translate(
          "TApplicationTranslator", "Apply those parameters to all files of that type",
          "Appliquer ce paramètrage à tous les fichiers de ce type", -1))),
      yesButton(new QPushButton(QCoreApplication::translate("TApplicationTranslator", "Yes", "Oui", -1)))
{
    setWindowTitle(QCoreApplication::translate("TApplicationTranslator", "CDF import parameters",
                                               "Paramètres d'importation du format CDF", -1));

    auto *question = new QLabel(
        QCoreApplication::translate("TApplicationTranslator", "Is <b>%1</b> file a GCxGC analysis?",
                                    "Le fichier <b>%1</b> est-il une analyse de GCxGC ?", -1)
            .arg(breakableName(fileName).toHtmlEscaped()));
    question->setTextFormat(Qt::RichText);
    question->setWordWrap(true);

    modulationSpin->setRange(0.0, 100.0);
    auto *lengthRow = new QHBoxLayout;
    lengthRow->addWidget(new QLabel(QCoreApplication::translate(
        "TApplicationTranslator", "Modulation length: ", "Période de modulation :", -1)));
    lengthRow->addWidget(modulationSpin);

    auto *noButton =
        new QPushButton(QCoreApplication::translate("TApplicationTranslator", "No", "Non", -1));
    auto *buttonRow = new QHBoxLayout;
    buttonRow->addItem(new QSpacerItem(150, 20, QSizePolicy::Expanding, QSizePolicy::Minimum));
    buttonRow->addWidget(yesButton);
    buttonRow->addWidget(noButton);

    auto *rows = new QVBoxLayout(this);
    rows->addWidget(question);
    rows->addLayout(lengthRow);
    rows->addWidget(applyCheck);
    rows->addLayout(buttonRow);

    connect(yesButton, &QAbstractButton::clicked, this, &DVImportGCGCDialog::accept);
    connect(noButton, &QAbstractButton::clicked, this, &DVImportGCGCDialog::accept);
}

DVImportGCGCDialog::~DVImportGCGCDialog() = default;

// Selects the 0.00, so that typing replaces it. A spin box that isn't shown yet would lose the selection,
// and a second one would let the next key replace a length that is half typed.
void DVImportGCGCDialog::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (!wasShown)
        modulationSpin->selectAll();
    wasShown = true;
}

void DVImportGCGCDialog::accept()
{
    isGCxGC_ = qobject_cast<QPushButton *>(sender()) == yesButton;
    modulationLength_ = modulationSpin->value();
    applyToAll_ = applyCheck->isChecked();
    QDialog::accept();
}
