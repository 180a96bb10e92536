// The question for the modulation length, driven by mouse and keyboard as a user does it, through the
// plugin as the host loads it.

#include "messageredirection.h"
#include "plugin.h"
#include "program.h"
#include "rows.h"

#include <QtWidgets>

#include <functional>

namespace {

// A file of French texts finds them by the disambiguation, which is the French text itself.
struct FrenchTranslator : QTranslator {
    QString translate(const char *context, const char *, const char *french, int count) const override
    {
        return qstrcmp(context, "TApplicationTranslator") == 0 && count == -1 ? french : QString();
    }
    bool isEmpty() const override { return false; }
};

// Types `length` where the focus is, ticks the box or doesn't, and ends the dialog in the way that
// `end` names: a button, a key, "close", or the slot called by no button.
void answer(QDialog *dialog, const QString &length, bool tick, const QString &end)
{
    QCoreApplication::processEvents();
    QTest::keyClicks(QApplication::focusWidget(), length);
    auto *box = dialog->findChild<QCheckBox *>();
    if (tick)
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(10, box->height() / 2));
    if (end == "Return" || end == "Escape")
        QTest::keyClick(QApplication::focusWidget(), end == "Return" ? Qt::Key_Return : Qt::Key_Escape);
    else if (end == "close")
        dialog->close();
    else if (end == "accept")
        QMetaObject::invokeMethod(dialog, "accept");
    else {
        for (auto *button : dialog->findChildren<QPushButton *>()) {
            if (button->text() == end)
                QTest::mouseClick(button, Qt::LeftButton);
        }
    }
}

struct Outcome {
    QString length;
    bool tick = false;
    QString end;          // as answer() takes it
    float modulation = 0; // of the copy
    bool holds = false;   // for all files that follow
};

} // namespace

class TestGcgcDialog : public QObject, private Plugin
{
    Q_OBJECT

    const Silence silence;

    // Asks about `path`, or once more about the open file; `user` gets the dialog. Returns the number of
    // dialogs that opened.
    int ask(const QString &path, const std::function<void(QDialog *)> &user)
    {
        if (!path.isEmpty() && !parameters()->reopenForFile(path))
            return -1;
        int count = 0;
        QObject whenOpen; // gone where no dialog opens
        QTimer::singleShot(0, &whenOpen, [&] {
            auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            ++count;
            user(dialog);
            dialog->reject(); // what the user couldn't end must not hang the test
        });
        parameters()->askParameters(nullptr);
        return count;
    }

private slots:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    void init() { QVERIFY2(prototype(), qPrintable(loader.errorString())); }

    void cleanup() { delete loader.instance(); } // and so its answers

    void outcomes_data()
    {
        const Rows<Outcome> row;
        row("yes") = {"4.5", false, "Yes", 4.5f, false};
        row("yes to all") = {"0.1", true, "Yes", 0.1f, true};
        row("yes without a length") = {"", true, "Yes", 0.0f, true};
        row("no writes no length") = {"4.5", false, "No", 0.0f, false};
        row("no to all") = {"4.5", true, "No", 0.0f, true};
        row("Return in length is yes") = {"4.5", false, "Return", 4.5f, false};
        row("Escape answers nothing") = {"4.5", true, "Escape", 0.0f, false};
        row("close answers nothing") = {"4.5", true, "close", 0.0f, false};
        row("slot without a button") = {"4.5", true, "accept", 0.0f, true};
        row("below the range") = {"-3", false, "Yes", 0.0f, false};
    }
    void outcomes()
    {
        const Outcome &row = Rows<Outcome>::current();
        const auto user = [&](QDialog *dialog) { answer(dialog, row.length, row.tick, row.end); };
        QCOMPARE(ask(fixture("gcgc"), user), 1);
        QCOMPARE(clone()->modulationPeriod(), row.modulation);
        QCOMPARE(prototype()->modulationPeriod(), row.holds ? row.modulation : 0.0f);
        QCOMPARE(ask(fixture("gcgc"), user), row.holds ? 0 : 1);
        QCOMPARE(clone()->modulationPeriod(), row.modulation);
    }

    void noLeavesAnEarlierLength()
    {
        ask(fixture("gcgc"), [](QDialog *dialog) { answer(dialog, "4.5", false, "Yes"); });
        QCOMPARE(ask({}, [](QDialog *dialog) { answer(dialog, "7", false, "No"); }), 1);
        QCOMPARE(prototype()->modulationPeriod(), 4.5f);
        ask({}, [](QDialog *dialog) { answer(dialog, "7", false, "Escape"); });
        QCOMPARE(prototype()->modulationPeriod(), 0.0f);
    }

    void keepsAHalfTypedLengthWhenShownAgain()
    {
        ask(fixture("gcgc"), [](QDialog *dialog) {
            answer(dialog, "4", false, "not yet");
            QShowEvent again;
            QCoreApplication::sendEvent(dialog, &again);
            answer(dialog, ".5", false, "Yes");
        });
        QCOMPARE(prototype()->modulationPeriod(), 4.5f);
    }

    void showsFileName_data()
    {
        const Rows<QString> row;
        row("without its folder") = "run 12-b_3.cdf";
        row("markup") = "a<b>&c<i>&amp;d.cdf";
        row("places") = "%1 %2 %L1.cdf";
        row("long") = QString("W").repeated(251) + ".cdf";
    }
    void showsFileName()
    {
        const QString name = Rows<QString>::current();
        QTemporaryDir folder;
        QVERIFY(QFile::copy(fixture("gcgc"), folder.filePath(name)));
        QTextDocument question;
        ask(folder.filePath(name), [&](QDialog *dialog) {
            const auto *label = dialog->findChild<QLabel *>(); // the first one
            question.setHtml(label->text().remove(QChar(0x200B)));
            QVERIFY(dialog->width() < 800 && label->height() >= label->heightForWidth(label->width()));
        });
        QCOMPARE(question.toPlainText(), "Is " + name + " file a GCxGC analysis?");
        QCOMPARE(question.find(name).charFormat().fontWeight(), int(QFont::Bold));
    }

    void speaksFrench()
    {
        FrenchTranslator french;
        QCoreApplication::installTranslator(&french);
        ask(fixture("gcgc"), [&](QDialog *dialog) {
            QStringList texts{dialog->windowTitle()};
            for (const auto *label : dialog->findChildren<QLabel *>())
                texts += label->text();
            for (const auto *button : dialog->findChildren<QAbstractButton *>())
                texts += button->text();
            QCOMPARE(texts,
                     (QStringList{"Paramètres d'importation du format CDF",
                                  "Le fichier <b>gcgc.cdf</b> est-il une analyse de GCxGC ?", "Période de modulation :",
                                  "Appliquer ce paramètrage à tous les fichiers de ce type", "Oui", "Non"}));
        });
    }
};

QTEST_MAIN(TestGcgcDialog)
#include "tst_gcgcdialog.moc"
