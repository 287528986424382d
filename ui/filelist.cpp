// The list of files to convert: the main window's table, one row per file in the order of adding.

#include "settings/settingsfile.h"
#include "ui/mainwindow.h"
#include "ui_mainwindow.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QSettings>

#include <set>

void MainWindow::AddFile()
{
    if (m_bRunning)
        return;

    QSettings settings(SettingsFilePath(), QSettings::IniFormat);
    const QString strInputFolder = settings.value(QLatin1String(settingkey::kInputFolder), QString()).toString();

    const QStringList paths
        = QFileDialog::getOpenFileNames(this, tr("Select one or more files to open"), strInputFolder,
            tr("All Supported Files (*.pcl *.pxl *.px3 *.prn *.spl);;PCL File (*.pcl);;PXL File (*.pxl);;"
               "PX3 File (*.px3);;PRN File (*.prn);;SPL File (*.spl);;All Files (*.*)"));
    if (paths.isEmpty())
        return;

    int iRow = ui->tableWidget->rowCount();

    // Only a backslash ends the folder here. A path without one is kept whole, and the next dialog then opens in the
    // first file's folder with that file filled in.
    const QString& strFirst = paths.first();
    settings.setValue(QLatin1String(settingkey::kInputFolder), strFirst.left(strFirst.lastIndexOf(QLatin1Char('\\'))));

    for (const QString& strPath : paths)
        AppendFile(iRow++, strPath);
}

QString MainWindow::SizeText(qint32 iBytes) { return QString::asprintf("%14.3f KB", iBytes / 1000.0); }

void MainWindow::AppendFile(int iRow, const QString& strPath)
{
    ui->tableWidget->insertRow(iRow);
    ui->tableWidget->setItem(iRow, 0, new QTableWidgetItem(strPath));

    // The size is a signed 32-bit count: of a larger file only the low 32 bits are shown, or nothing.
    const auto iSize = static_cast<qint32>(QFileInfo(strPath).size());
    if (iSize > 0) {
        auto* pSize = new QTableWidgetItem(SizeText(iSize));
        // The blanks in front line numbers up in fixed pitch only.
        pSize->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        ui->tableWidget->setItem(iRow, 1, pSize);
    }
}

void MainWindow::DeleteFile()
{
    if (m_bRunning)
        return;

    // The current row goes first, selected or not; what is selected is asked only after the rows have moved up.
    ui->tableWidget->removeRow(ui->tableWidget->currentRow());

    std::set<int> rows;
    const QModelIndexList selected = ui->tableWidget->selectionModel()->selectedIndexes();
    for (const QModelIndex& index : selected)
        rows.insert(index.row());
    for (auto row = rows.rbegin(); row != rows.rend(); ++row)
        ui->tableWidget->removeRow(*row);
}

void MainWindow::DeleteAllFile()
{
    if (m_bRunning)
        return;
    for (int iRow = ui->tableWidget->rowCount() - 1; iRow >= 0; --iRow)
        ui->tableWidget->removeRow(iRow);
}
