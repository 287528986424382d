// The dialog's traffic with the settings file.

#include "settings/settingdialog.h"

#include "settings/optionvocabulary.h"
#include "settings/settingsfile.h"
#include "ui_settingdialog.h"

#include <QCoreApplication>
#include <QDir>
#include <QMessageBox>
#include <QSettings>

#include <memory>
#include <utility>
#include <vector>

namespace {

const QString& Flag(bool bOn)
{
    static const QString strTrue = QStringLiteral("TRUE");
    static const QString strFalse = QStringLiteral("FALSE");
    return bOn ? strTrue : strFalse;
}

bool IsOn(const QSettings& settings, const char* chKey)
{
    return settings.value(QLatin1String(chKey), QStringLiteral("FALSE")).toString() == QLatin1String("TRUE");
}

int AtLeast(int iLeast, int iValue) { return iValue < iLeast ? kDefaultLength : iValue; }

int StoredLength(const QSettings& settings, const char* chKey, int iLeast)
{
    return AtLeast(iLeast, settings.value(QLatin1String(chKey), kDefaultLength).toInt());
}

// An entry that is not in the list leaves it without a current one.
void SelectText(QComboBox* pList, const QString& strText)
{
    pList->setCurrentIndex(pList->findData(strText, Qt::DisplayRole));
}

} // namespace

void SettingDialog::LoadInfo()
{
    const QSettings settings(SettingsFilePath(), QSettings::IniFormat);

    const QString strFormatIndex = settings.value(QLatin1String(settingkey::kFormat), QStringLiteral("1")).toString();
    const QString strBitCountIndex = settings.value(QLatin1String(settingkey::kBitCount), 0).toString();
    QString strCompressIndex
        = settings.value(QLatin1String(settingkey::kCompressMethod), QStringLiteral("0")).toString();
    const int iCompressMethod = strCompressIndex.toInt();
    if (iCompressMethod < 0 || static_cast<uint>(iCompressMethod) >= vocabulary::kCompressShortNames.size())
        strCompressIndex = QStringLiteral("0");

    const QString strFormat = iFormattoFormat(strFormatIndex);
    const QString strBitCount = iBitCounttoBitCount(strBitCountIndex);
    const QString strCompressMethod = iCompressMethodtoCompressMethod(strCompressIndex);

    // The lists first, as the stored depth and format leave them; then the entries in them.
    BitCountChanged(strBitCount);
    FormatChanged(strFormat);
    SelectText(ui->comboBox_BitCount, strBitCount);
    SelectText(ui->comboBox_Format, strFormat);
    SelectText(ui->comboBox_Compress, CompressMethodShortNametoFullName(strCompressMethod));

    ui->checkBox_PageSize->setChecked(IsOn(settings, settingkey::kResizePage));
    EnablePageSize();
    ui->lineEdit_PageSizeX->setText(QString::number(StoredLength(settings, settingkey::kPageSizeX, 0)));
    ui->lineEdit_PageSizeY->setText(QString::number(StoredLength(settings, settingkey::kPageSizeY, 0)));

    ui->checkBox_Resolution->setChecked(IsOn(settings, settingkey::kResizeResolution));
    EnableResolution();
    // Both fields open with the horizontal resolution: square pixels unless the user asks for others each time.
    ui->lineEdit_ResoX->setText(QString::number(StoredLength(settings, settingkey::kResolutionX, 1)));
    ui->lineEdit_ResoY->setText(QString::number(StoredLength(settings, settingkey::kResolutionX, 1)));

    // As unsigned, the -1 of a disabled list is out of range too.
    const auto iFaxKind = static_cast<uint>(
        settings.value(QLatin1String(settingkey::kFaxTiff), QStringLiteral("0")).toString().toInt());
    ui->comboBox_FaxKind->setCurrentIndex(iFaxKind < vocabulary::kFaxKinds.size() ? static_cast<int>(iFaxKind) : 0);
}

void SettingDialog::SaveInfo()
{
    const auto pSettings = std::make_unique<QSettings>(SettingsFilePath(), QSettings::IniFormat);

    const QString strFormat = ui->comboBox_Format->currentText();
    const QString strBitCount = ui->comboBox_BitCount->currentText();

    // "false" names no method, so a disabled list is stored as -1.
    const QString strCompressMethod = ui->comboBox_Compress->isEnabled()
        ? CompressMethodFullNametoShortName(ui->comboBox_Compress->currentText())
        : QStringLiteral("false");
    const QString strFaxTiff = ui->comboBox_FaxKind->isEnabled() ? QString::number(ui->comboBox_FaxKind->currentIndex())
                                                                 : QStringLiteral("-1");

    // A page size of 0 is kept and asks for no resizing in that direction; a resolution of 0 would mean nothing.
    const int iPageSizeX = AtLeast(0, ui->lineEdit_PageSizeX->text().toInt());
    const int iPageSizeY = AtLeast(0, ui->lineEdit_PageSizeY->text().toInt());
    const int iResolutionX = AtLeast(1, ui->lineEdit_ResoX->text().toInt());
    const int iResolutionY = AtLeast(1, ui->lineEdit_ResoY->text().toInt());

    std::vector<std::pair<QString, QVariant>> former;
    const auto Write = [&pSettings, &former](const char* chKey, const QString& strValue) {
        former.emplace_back(QLatin1String(chKey), pSettings->value(QLatin1String(chKey)));
        pSettings->setValue(QLatin1String(chKey), strValue);
    };
    Write(settingkey::kFormat, QString::number(FormattoInt(strFormat)));
    Write(settingkey::kBitCount, QString::number(vocabulary::IndexOf(vocabulary::kBitCounts, strBitCount)));
    Write(settingkey::kResizePage, Flag(ui->checkBox_PageSize->isChecked()));
    Write(settingkey::kPageSizeX, QString::number(iPageSizeX));
    Write(settingkey::kPageSizeY, QString::number(iPageSizeY));
    Write(settingkey::kResizeResolution, Flag(ui->checkBox_Resolution->isChecked()));
    Write(settingkey::kResolutionX, QString::number(iResolutionX));
    Write(settingkey::kResolutionY, QString::number(iResolutionY));
    Write(settingkey::kCompressMethod, QString::number(CompressMethodtoInt(strCompressMethod)));
    Write(settingkey::kFaxTiff, strFaxTiff);

    pSettings->sync();
    if (pSettings->status() != QSettings::AccessError)
        return;

    // The toolkit keeps what it could not write, and would hand it to whoever opens the file next in this process. A
    // conversion is to use what is stored.
    for (const auto& [strKey, value] : former) {
        if (value.isValid())
            pSettings->setValue(strKey, value);
        else
            pSettings->remove(strKey);
    }
    QMessageBox::information(this, tr("Warning"),
        tr("The settings could not be saved in this folder:\n%1\nConversions use those that were saved before.")
            .arg(QDir::toNativeSeparators(QCoreApplication::applicationDirPath())));
}
