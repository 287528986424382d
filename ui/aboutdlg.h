#pragma once

#include <QDialog>

class Ui_AboutDlg;

// Product, version, maker and address, with a button to the product's page.
class AboutDlg : public QDialog {
    Q_OBJECT

public:
    explicit AboutDlg(QWidget* parent = nullptr);
    ~AboutDlg() override;

public slots:
    // Opens the product's page in the desktop's browser; the dialog stays.
    void VisitURL();

private:
    void FitText();

    Ui_AboutDlg* ui;
};
