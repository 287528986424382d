// The conversion run: one backend after the other, driven by the Convert button and by each backend's end.

#include "convert/commandline.h"
#include "settings/settingsfile.h"
#include "ui/mainwindow.h"
#include "ui_mainwindow.h"

#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QPixmap>
#include <QProcess>
#include <QSettings>

void MainWindow::StartConvert()
{
    m_iFileCount = ui->tableWidget->rowCount();
    if (m_iFileCount < 1) {
        QMessageBox::information(this, tr("Warning"), tr("No File!"), QMessageBox::Yes, QMessageBox::NoButton);
        return;
    }

    for (int iRow = 0; iRow < m_iFileCount; ++iRow)
        m_fileList.append(ui->tableWidget->item(iRow, 0)->data(Qt::DisplayRole).toString());
    if (m_fileList.isEmpty())
        return;

    // On a Stop press too: the killed backend's end starts the first row once more (see KillProcess).
    m_iCurrentRow = 0;

    if (!QFile::exists(ui->lineEdit_OutPutPath->text())) {
        QMessageBox::information(
            this, tr("Warning"), tr("Please select a correct output folder."), QMessageBox::Yes, QMessageBox::NoButton);
        return;
    }

    {
        QSettings settings(SettingsFilePath(), QSettings::IniFormat);
        settings.setValue(QLatin1String(settingkey::kOutputFolder), ui->lineEdit_OutPutPath->text());
    }

    if (ui->pushButton_Convert->text() == QLatin1String("Convert")) {
        ui->pushButton_Convert->setText(tr("Stop "));
        m_bRunning = true;
        SetConvertIcon(QStringLiteral(":/MyIco/Image/stop.ico"));
        if (!ExeCmd()) {
            // The run flag stays: the list is not to change under a run that could not start for want of a backend.
            ui->pushButton_Convert->setText(tr("Convert"));
            SetConvertIcon(QStringLiteral(":/MyIco/Image/media_playback_start.ico"));
        }
    } else if (ui->pushButton_Convert->text() == QLatin1String("Stop ")) {
        KillProcess();
        ui->pushButton_Convert->setText(tr("Convert"));
        SetConvertIcon(QStringLiteral(":/MyIco/Image/media_playback_start.ico"));
        ui->progressBarA->setValue(0);
    }
}

bool MainWindow::ExeCmd()
{
    // Neither parented nor deleted: this runs inside the finished signal of the process before it.
    m_process = new QProcess;
    m_process->setProcessChannelMode(QProcess::SeparateChannels);
    // Nobody reads what a backend says, and thousands of them would fill the application's memory with it. Messages go
    // nowhere at once, so that a backend that outlives the application can still write them; standard output, which has
    // to stay a channel for the process to be open for reading, is thrown away as it comes (see below).
    m_process->setStandardErrorFile(QProcess::nullDevice());

    const QString strBackendPath = BackendPath();
    const QString strOptions = GetCmdArg();
    if (QFileInfo(strBackendPath).size() < 1)
        return false;

    const int iRowCount = ui->tableWidget->rowCount();
    if (m_iCurrentRow >= iRowCount) {
        KillProcess();
        ui->progressBarA->setValue(0);
        ui->pushButton_Convert->setText(tr("Convert"));
        SetConvertIcon(QStringLiteral(":/MyIco/Image/media_playback_start.ico"));
        m_bRunning = false;
        return true;
    }

    const QString strInputPath = ui->tableWidget->item(m_iCurrentRow, 0)->data(Qt::DisplayRole).toString();
    const QString strOutputPath = OutputFilePath(ui->lineEdit_OutPutPath->text(), strInputPath, m_strExtension);
    const QString strCommandLine = BackendCommandLine(strBackendPath, strOptions, strOutputPath, strInputPath);

    SetFontPath();

    if (m_iCurrentRow >= 0 && m_iCurrentRow < ui->tableWidget->rowCount() && m_bRunning) {
        ui->tableWidget->setSelectionBehavior(QAbstractItemView::SelectRows);
        StartCommandLine(*m_process, strCommandLine);
        m_process->closeReadChannel(QProcess::StandardOutput);
        ui->progressBarA->setMaximum(iRowCount);
        ui->progressBarA->setValue(m_iCurrentRow + 1);
        ui->tableWidget->setCurrentCell(m_iCurrentRow, 1);
        connect(m_process, SIGNAL(finished(int, QProcess::ExitStatus)), this, SLOT(ExeCmd()));
        ++m_iCurrentRow;
    }
    return true;
}

// close() waits for the killed backend and delivers its finished signal before it returns. ExeCmd() therefore runs with
// the flag still set and starts the first row's backend again, which then runs to its end and starts nothing more.
void MainWindow::KillProcess()
{
    if (!m_bRunning)
        return;
    m_process->close();
    m_bRunning = false;
}

void MainWindow::SetConvertIcon(const QString& strResource)
{
    const QPixmap pixmap(strResource);
    ui->pushButton_Convert->setIcon(QIcon(pixmap));
    ui->pushButton_Convert->setIconSize(pixmap.size());
}
