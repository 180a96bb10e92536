// Asks whether a file is a GCxGC analysis, and for the length of its modulation.
#ifndef DVIMPORTGCGCDIALOG_H
#define DVIMPORTGCGCDIALOG_H

#include <QDialog>

class QCheckBox;
class QDoubleSpinBox;
class QPushButton;

class DVImportGCGCDialog : public QDialog
{
    Q_OBJECT

public:
    DVImportGCGCDialog(QWidget *parent, const QString &fileName);
    ~DVImportGCGCDialog() override;

    // The answer. Only a button writes it: a dialog closed in another way says 0.0, true and false, a
    // GCxGC analysis of length 0, which is none.
    double modulationLength() const { return modulationLength_; }
    bool isGCxGC() const { return isGCxGC_; }
    bool applyToAll() const { return applyToAll_; }

public slots:
    // Both buttons end here; the sender tells them apart.
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
