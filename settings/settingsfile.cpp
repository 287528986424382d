#include "settings/settingsfile.h"

#include <QCoreApplication>

const char g_chSoftwareName[] = "tessary";

QString SettingsFilePath()
{
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(g_chSoftwareName)
        + QLatin1String("info.ini");
}
