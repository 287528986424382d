#pragma once

#include "settings/settingdialog.h"

#include <QMainWindow>
#include <QSize>
#include <QString>
#include <QStringList>

class QProcess;
class Ui_MainWindow;

// The application's window: the list of print files, the output folder, and the button that converts one after the
// other. Everything runs on the GUI thread; the backend is a child process, watched through its finished signal only.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    // The window always has this size, in device-independent pixels.
    static constexpr QSize kWindowSize { 730, 450 };

    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    // Once, after the window is shown: the state of an idle window, the table's shape, the Convert button's icon, and
    // captions as large as the desktop's font and their places allow.
    void InitAllChoice();
    void ClearAllInfo();

    // Asks for the output folder; empty when the user cancels.
    QString GetOutPutFolder();

    // Ends the current backend if a run is in progress, then clears the run flag.
    void KillProcess();

    // The option part of the backend's line, from the settings file as it is now. Sets the output extension.
    QString GetCmdArg();

    // Stored index to extension ("NULL" if unknown), and to the backend's argument texts ("" if unknown).
    QString iFormattoFormat(QString strFormat);
    QString iBitCounttoBitCount(QString strBitCount);
    QString iCompressMethodtoCompressMethod(QString strCompressMethod);

public slots:
    // The file list. While a run is in progress these and AddOutputPath do nothing.
    void AddFile();
    void DeleteFile();
    void DeleteAllFile();

    void Setting();

    // Starts a run, or stops the one in progress, by the button's text.
    void StartConvert();
    // Starts the backend for the next row, or ends the run after the last. False when there is no backend.
    bool ExeCmd();

    void AddOutputPath();
    // Tells backends started from now on where their fonts lie.
    bool SetFontPath();
    void ShowAbout();
    void Onkeyboard();

protected:
    // The run's state, which no widget shows.
    int m_iCurrentRow = 0; // next row to convert
    int m_iFileCount = 0; // rows at the last press of the button
    QString m_strOutputFolder; // what the folder dialog returned last; the line edit is what counts
    QString m_strExtension; // of the output file, with its dot
    QStringList m_fileList; // input paths of every press so far
    bool m_bRunning = false; // while set, list and output folder are frozen
    Ui_MainWindow* ui;
    SettingDialog m_settingDialog;
    QProcess* m_process = nullptr; // the current backend; a new one per call of ExeCmd, none ever deleted

private:
    void SetBackground();
    void FitFonts();
    void SetConvertIcon(const QString& strResource);
    // A file's size as the list shows it, in kilobytes of 1,000 bytes.
    static QString SizeText(qint32 iBytes);
    void AppendFile(int iRow, const QString& strPath);
};
