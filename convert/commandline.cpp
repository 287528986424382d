#include "convert/commandline.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStringList>

QString BackendPath() { return QCoreApplication::applicationDirPath() + QLatin1String("/quillrip"); }

QString OutputFilePath(const QString& strOutputFolder, const QString& strInputPath, const QString& strExtension)
{
    // Without a "/" the position is -1 and the whole path is the name; without a "." the negative length keeps it all.
    const QString strName = strInputPath.mid(strInputPath.lastIndexOf(QLatin1Char('/')) + 1);
    const QString strBaseName = strName.left(strName.lastIndexOf(QLatin1Char('.')));
    return strOutputFolder + QLatin1Char('/') + strBaseName + strExtension;
}

QString BackendCommandLine(
    const QString& strBackendPath, const QString& strOptions, const QString& strOutputPath, const QString& strInputPath)
{
    return QLatin1String("\"") + strBackendPath + QLatin1String("\" ") + strOptions
        + QLatin1String(" \"-writelocal\" \"n\" ") + QLatin1String(" \"-o\" ") + QLatin1String("\"") + strOutputPath
        + QLatin1String("\"  \"-i\" \"") + strInputPath + QLatin1String("\" ");
}

void StartCommandLine(QProcess& process, const QString& strCommandLine)
{
    QStringList words = QProcess::splitCommand(strCommandLine);
    if (words.isEmpty())
        return;
    const QString strProgram = words.takeFirst();
    process.start(strProgram, words, QIODevice::ReadWrite);
}
