// The dialog's conversions between stored index, shown text and short name.

#include "settings/settingdialog.h"

#include "settings/optionvocabulary.h"

using namespace vocabulary;

QString SettingDialog::iFormattoFormat(QString strFormat)
{
    return TextAt(kFormats, PositionOf(kFormats, strFormat), "NULL");
}

int SettingDialog::FormattoInt(QString strFormat) { return IndexOf(kFormats, strFormat); }

QString SettingDialog::iBitCounttoBitCount(QString strBitCount)
{
    return TextAt(kBitCounts, PositionOf(kBitCounts, strBitCount), "");
}

int SettingDialog::BitCounttoInt(QString strBitCount) { return IndexOf(kBitCounts, strBitCount); }

QString SettingDialog::iCompressMethodtoCompressMethod(QString strCompressMethod)
{
    // What "6" and "7" read back as is one entry late: "zip" and nothing. A stored "CCITT Group 4" is therefore shown
    // as "ZIP"; the backend still gets the stored index.
    if (strCompressMethod == QLatin1String("6"))
        return QStringLiteral("zip");
    if (strCompressMethod == QLatin1String("7"))
        return QString();
    return TextAt(kCompressShortNames, PositionOf(kCompressShortNames, strCompressMethod), "");
}

int SettingDialog::CompressMethodtoInt(QString strCompressMethod)
{
    return IndexOf(kCompressShortNames, strCompressMethod);
}

QString SettingDialog::CompressMethodShortNametoFullName(QString strShortName)
{
    return TextAt(kCompressFullNames, IndexOf(kCompressShortNames, strShortName), "None");
}

QString SettingDialog::CompressMethodFullNametoShortName(QString strFullName)
{
    return TextAt(kCompressShortNames, IndexOf(kCompressFullNames, strFullName), "none");
}
