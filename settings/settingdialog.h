#pragma once

#include <QDialog>
#include <QString>
#include <QStringList>

class QComboBox;
class QLineEdit;
class Ui_SettingDialog;

// The dialog in which the user chooses format, colour depth, compression, fax kind, page size and resolution.
//
// The main window keeps one dialog for its whole life. It reads the settings file when it is built and writes it on OK
// only; what was changed and then cancelled is still shown at the next opening, although the file never saw it.
class SettingDialog : public QDialog {
    Q_OBJECT

public:
    explicit SettingDialog(QWidget* parent = nullptr);
    ~SettingDialog() override;

    // Initial contents and state of every control. Runs before LoadInfo at construction, and on Reset.
    void IniAllChoice();

    // What a colour depth or a format, given as shown in its list, means for the other lists.
    void BitCountChanged(QString strBitCount);
    void FormatChanged(QString strFormat);

    void LoadInfo();
    // Writes the settings file. Where that fails, a message names the folder and the file counts as it was.
    void SaveInfo();

    // Conversions between stored index, shown text and short name. An unknown input yields the fallback in brackets.
    QString iFormattoFormat(QString strFormat); // index text to extension ["NULL"]
    int FormattoInt(QString strFormat); // extension to index [-1]
    QString iBitCounttoBitCount(QString strBitCount); // index text to shown text [""]
    int BitCounttoInt(QString strBitCount); // shown text to index [-1]
    QString iCompressMethodtoCompressMethod(QString strCompressMethod); // index text to short name [""]
    int CompressMethodtoInt(QString strCompressMethod); // short name to index [-1]
    QString CompressMethodShortNametoFullName(QString strShortName); // short to shown name ["None"]
    QString CompressMethodFullNametoShortName(QString strFullName); // shown to short name ["none"]

public slots:
    void OnButtonOk();
    void ClickCheckBoxResizePage();
    void ClickCheckBoxResolution();
    void OnButtonReset();
    void ChangeFormat();
    void ChangeBitCount();
    void ChangeCompress();
    void ChangeFaxTiff();

protected:
    // Every opening begins at the first control that can be used.
    void showEvent(QShowEvent* event) override;

private:
    void SetBackground();
    void NameLists();
    void FitFonts();
    void FillList(QComboBox* pList, const QStringList& entries);
    QStringList CompressNames(const QStringList& shortNames);
    void EnablePageSize();
    void EnableResolution();

    Ui_SettingDialog* ui;
};
