// The option part of the backend's command line, built from the settings file anew for every file.

#include "settings/optionvocabulary.h"
#include "settings/settingsfile.h"
#include "ui/mainwindow.h"

#include <QSettings>

using namespace vocabulary;

namespace {

QString ReadText(const QSettings& settings, const char* chKey, const char* chDefault)
{
    return settings.value(QLatin1String(chKey), QString::fromLatin1(chDefault)).toString();
}

int ReadNumber(const QSettings& settings, const char* chKey, int iDefault)
{
    return settings.value(QLatin1String(chKey), iDefault).toInt();
}

// A page size of less than one pixel asks for nothing.
QString PageSizePiece(const QSettings& settings, const char* chKey, const QString& strPiece)
{
    const int iPixels = ReadNumber(settings, chKey, kDefaultLength);
    return iPixels < 1 ? QString() : strPiece.arg(iPixels, 0, 10, QLatin1Char(' '));
}

QString ResolutionText(const QSettings& settings, const char* chKey)
{
    const int iDpi = ReadNumber(settings, chKey, kDefaultLength);
    return iDpi < 1 ? QStringLiteral("Default") : QString::number(iDpi);
}

QString FaxPiece(const QString& strFaxTiff)
{
    if (strFaxTiff == QLatin1String("1"))
        return QStringLiteral(" \"-faxtif\" \"0\" ");
    if (strFaxTiff == QLatin1String("2"))
        return QStringLiteral(" \"-faxtif\" \"1\" ");
    return QString();
}

} // namespace

QString MainWindow::GetCmdArg()
{
    const QSettings settings(SettingsFilePath(), QSettings::IniFormat);

    m_strExtension = iFormattoFormat(ReadText(settings, settingkey::kFormat, "1"));

    const QString strBitCount = ReadText(settings, settingkey::kBitCount, "0");
    const auto iCompressMethod = static_cast<uint>(ReadNumber(settings, settingkey::kCompressMethod, -1));
    const QString strFaxTiff = ReadText(settings, settingkey::kFaxTiff, "0");

    const QString strBitCountPiece = iBitCounttoBitCount(strBitCount);

    // The index itself goes to the backend, whatever the output format is. As unsigned, -1 is out of range too.
    QString strCompressPiece;
    if (iCompressMethod < kCompressShortNames.size())
        strCompressPiece = QStringLiteral(" \"-c\" \"%1\" ").arg(iCompressMethod, 0, 10, QLatin1Char(' '));

    const bool bResizePage = ReadText(settings, settingkey::kResizePage, "FALSE") == QLatin1String("TRUE");
    const bool bResizeResolution = ReadText(settings, settingkey::kResizeResolution, "FALSE") == QLatin1String("TRUE");

    QString strWidthPiece;
    QString strHeightPiece;
    if (bResizePage) {
        strWidthPiece = PageSizePiece(settings, settingkey::kPageSizeX, QStringLiteral(" \"-gw\" \"%1\" "));
        strHeightPiece = PageSizePiece(settings, settingkey::kPageSizeY, QStringLiteral(" \"-gh\" \"%1\" "));
    }

    const QString strResolutionX = ResolutionText(settings, settingkey::kResolutionX);
    const QString strResolutionY = ResolutionText(settings, settingkey::kResolutionY);
    QString strResolutionPiece;
    if (strResolutionX != QLatin1String("Default") && strResolutionY != QLatin1String("Default") && bResizeResolution)
        strResolutionPiece
            = QLatin1String(" \"-r\" \"") + strResolutionX + QLatin1Char('x') + strResolutionY + QLatin1String("\" ");

    return strWidthPiece + strHeightPiece + strResolutionPiece + strBitCountPiece + strCompressPiece
        + FaxPiece(strFaxTiff);
}

QString MainWindow::iFormattoFormat(QString strFormat)
{
    return TextAt(kFormats, PositionOf(kFormats, strFormat), "NULL");
}

QString MainWindow::iBitCounttoBitCount(QString strBitCount)
{
    const int iBitCount = PositionOf(kBitCountArguments, strBitCount);
    if (iBitCount < 0)
        return QString();
    return QLatin1String("\"-b\" \"") + TextAt(kBitCountArguments, iBitCount, "") + QLatin1Char('"');
}

// Not on the command line, which carries the index; kept for whoever wants the method by name.
QString MainWindow::iCompressMethodtoCompressMethod(QString strCompressMethod)
{
    // One entry late from "6" on, as in the settings dialog.
    if (strCompressMethod == QLatin1String("6"))
        return QStringLiteral("\"-c\" \"zip\"");
    const int iMethod = PositionOf(kCompressShortNames, strCompressMethod);
    if (iMethod < 0 || strCompressMethod == QLatin1String("7"))
        return QString();
    return QLatin1String("\"-c\" \"") + TextAt(kCompressShortNames, iMethod, "") + QLatin1Char('"');
}
