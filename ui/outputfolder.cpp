// The output folder: the line edit's text is what counts, the dialog only helps to fill it.

#include "settings/settingsfile.h"
#include "ui/mainwindow.h"
#include "ui_mainwindow.h"

#include <QFile>
#include <QFileDialog>
#include <QSettings>

QString MainWindow::GetOutPutFolder()
{
    const QSettings settings(SettingsFilePath(), QSettings::IniFormat);
    QString strStartFolder = settings.value(QLatin1String(settingkey::kOutputFolder), QString()).toString();
    if (!QFile::exists(strStartFolder))
        strStartFolder = QString();
    return QFileDialog::getExistingDirectory(
        this, tr("Open directory"), strStartFolder, QFileDialog::ShowDirsOnly | QFileDialog::DontResolveSymlinks);
}

void MainWindow::AddOutputPath()
{
    if (m_bRunning)
        return;
    // A cancelled dialog empties the field: there is no folder until the user names one.
    m_strOutputFolder = GetOutPutFolder();
    ui->lineEdit_OutPutPath->setText(m_strOutputFolder);
}
