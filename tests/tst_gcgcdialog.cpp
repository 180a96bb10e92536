// The question for the modulation length, driven by mouse and keyboard as a user does it, through the
// plugin as the host loads it.
#include "dvimportanalysisinterface.h"
#include "dvimportparamtype.h"

#include <QtTest>
#include <QtWidgets>

#include <functional>
#include <memory>

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

} // namespace

class TestGcgcDialog : public QObject
{
    Q_OBJECT

    const QString fixtures = QStringLiteral(AIA_FIXTURES "/");
    QPluginLoader loader{AIA_PLUGIN};
    DVImportAnalysisInterface *prototype = nullptr;
    DVImportParamType *parameters = nullptr;

    // Asks about `path`, or once more about the open file; `user` gets the dialog. Gives the number of
    // dialogs that opened.
    int ask(const QString &path, const std::function<void(QDialog *)> &user)
    {
        if (!path.isEmpty() && !parameters->reopenForFile(path))
            return -1;
        int count = 0;
        QTimer whenOpen;
        whenOpen.setSingleShot(true);
        connect(&whenOpen, &QTimer::timeout, &whenOpen, [&] {
            auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            ++count;
            user(dialog);
            dialog->reject(); // what the user couldn't end must not hang the test
        });
        whenOpen.start(0);
        parameters->askParameters(nullptr);
        return count;
    }

    std::unique_ptr<DVImportAnalysisInterface> clone()
    {
        return std::unique_ptr<DVImportAnalysisInterface>(prototype->clone());
    }

private slots:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    void init()
    {
        QObject *instance = loader.instance(); // a new one each time, as cleanup deletes it
        QVERIFY2(instance, qPrintable(loader.errorString()));
        prototype = static_cast<DVImportAnalysisInterface *>(qobject_cast<DVImportInterface *>(instance));
        parameters = static_cast<DVImportParamType *>(instance->qt_metacast("DVImportParamType"));
    }

    void cleanup() { delete prototype; }

    void outcomes_data()
    {
        QTest::addColumn<QString>("length");
        QTest::addColumn<bool>("tick");
        QTest::addColumn<QString>("end");
        QTest::addColumn<float>("modulation");
        QTest::addColumn<bool>("holds"); // for later files

        // clang-format off
        QTest::newRow("yes")                      << "4.5"    << false << "Yes"    << 4.5f   << false;
        QTest::newRow("yes to all")               << "0.1"    << true  << "Yes"    << 0.1f   << true;
        QTest::newRow("yes without a length")     << ""       << true  << "Yes"    << 0.0f   << true;
        QTest::newRow("no writes no length")      << "4.5"    << false << "No"     << 0.0f   << false;
        QTest::newRow("no to all")                << "4.5"    << true  << "No"     << 0.0f   << true;
        QTest::newRow("Return in length is yes")  << "4.5"    << false << "Return" << 4.5f   << false;
        QTest::newRow("Return on the box is yes") << "4.5"    << true  << "Return" << 4.5f   << true;
        QTest::newRow("Escape answers nothing")   << "4.5"    << true  << "Escape" << 0.0f   << false;
        QTest::newRow("close answers nothing")    << "4.5"    << true  << "close"  << 0.0f   << false;
        QTest::newRow("slot without a button")    << "4.5"    << true  << "accept" << 0.0f   << true;
        QTest::newRow("above the range")          << "100.01" << false << "Yes"    << 100.0f << false;
        QTest::newRow("below the range")          << "-3"     << false << "Yes"    << 0.0f   << false;
        // clang-format on
    }

    void outcomes()
    {
        QFETCH(QString, length);
        QFETCH(bool, tick);
        QFETCH(QString, end);
        QFETCH(float, modulation);
        QFETCH(bool, holds);

        const auto user = [&](QDialog *dialog) { answer(dialog, length, tick, end); };
        QCOMPARE(ask(fixtures + "gcgc.cdf", user), 1);
        QCOMPARE(clone()->modulationPeriod(), modulation);
        QCOMPARE(prototype->modulationPeriod(), holds ? modulation : 0.0f);
        QCOMPARE(ask(fixtures + "gcgc.cdf", user), holds ? 0 : 1);
    }

    void noLeavesAnEarlierLength()
    {
        ask(fixtures + "gcgc.cdf", [](QDialog *dialog) { answer(dialog, "4.5", false, "Yes"); });
        QCOMPARE(ask({}, [](QDialog *dialog) { answer(dialog, "7", false, "No"); }), 1);
        QCOMPARE(prototype->modulationPeriod(), 4.5f);
        ask({}, [](QDialog *dialog) { answer(dialog, "7", false, "Escape"); });
        QCOMPARE(prototype->modulationPeriod(), 0.0f);
    }

    void boxTickedAtSecondOfFive()
    {
        int asked = 0;
        QVector<float> lengths;
        for (int file = 0; file < 5; ++file) {
            asked += ask(fixtures + "gcgc.cdf",
                         [&](QDialog *dialog) { answer(dialog, file == 0 ? "2.5" : "4", file == 1, "Yes"); });
            lengths.append(clone()->modulationPeriod());
        }
        QCOMPARE(asked, 2);
        QCOMPARE(lengths, (QVector<float>{2.5f, 4.0f, 4.0f, 4.0f, 4.0f}));
    }

    void showsFileName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("without its folder") << "run 12-b_3.cdf";
        QTest::newRow("markup") << "a<b>&c<i>&amp;d.cdf";
        QTest::newRow("places") << "%1 %2 %L1.cdf";
        QTest::newRow("long") << QString("W").repeated(251) + ".cdf";
    }

    void showsFileName()
    {
        QFETCH(QString, name);
        QTemporaryDir folder;
        QVERIFY(QFile::copy(fixtures + "gcgc.cdf", folder.filePath(name)));
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
        QStringList texts;
        ask(fixtures + "gcgc.cdf", [&](QDialog *dialog) {
            texts.append(dialog->windowTitle());
            for (const auto *label : dialog->findChildren<QLabel *>())
                texts.append(label->text());
            for (const auto *button : dialog->findChildren<QAbstractButton *>())
                texts.append(button->text());
        });
        QCOMPARE(texts.join('\n'), R"(Paramètres d'importation du format CDF
Le fichier <b>gcgc.cdf</b> est-il une analyse de GCxGC ?
Période de modulation :
Appliquer ce paramètrage à tous les fichiers de ce type
Oui
Non)");
    }
};

QTEST_MAIN(TestGcgcDialog)
#include "tst_gcgcdialog.moc"
