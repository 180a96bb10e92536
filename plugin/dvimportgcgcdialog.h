// Asks whether a file is a GCxGC analysis, and for the length of its modulation.
#ifndef DVIMPORTGCGCDIALOG_H
#define DVIMPORTGCGCDIALOG_H

#include <QDialog>
#include <QString>
#include <QWidget>

class QCheckBox;
class QDoubleSpinBox;
class QPushButton;

class DVImportGCGCDialog : public QDialog
{
    Q_OBJECT

public:
    DVImportGCGCDialog(QWidget *parent, const QString &fileName);
    ~DVImportGCGCDialog() override;

    // The answer, once a button was pressed. A dialog that was closed in another way returns 0.0, true
    // and false: a modulation of length 0, which counts as no GCxGC.
    double modulationLength() const { return modulationLength_; }
    bool isGCxGC() const { return isGCxGC_; }
    bool applyToAll() const { return applyToAll_; }

public slots:
    // Called by both buttons; the sender says which.
    void accept() override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    QDoubleSpinBox *modulationSpin;
    QCheckBox *applyCheck;
    QPushButton *yesButton;
    double modulationLength_ = 0.0; // the bare names are those of the getters
    bool isGCxGC_ = true;
    bool applyToAll_ = false;
    bool wasShown = false;
};

#endif // DVIMPORTGCGCDIALOG_H
