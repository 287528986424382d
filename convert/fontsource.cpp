#include "convert/fontsource.h"

#include "ui/mainwindow.h"

#include <QCoreApplication>

#include <cstdlib>
#include <cstring>

namespace {

constexpr std::size_t kEntryBytes = 1024;

// What lies left of the last occurrence; the whole text where there is none, since a negative length keeps it all.
QString CutBeforeLast(const QString& strText, QChar separator) { return strText.left(strText.lastIndexOf(separator)); }

} // namespace

QByteArray FontSourceEntry(const QString& strApplicationFolder)
{
    const QString strBundleStem = CutBeforeLast(strApplicationFolder, QLatin1Char('.'));
    QByteArray baseFolder = CutBeforeLast(strBundleStem, QLatin1Char('/')).toLatin1();
    if (!baseFolder.endsWith('/') && !baseFolder.endsWith('\\'))
        baseFolder.append('/');

    QByteArray entry = "PCLFONTSOURCE=" + baseFolder + "fonts/";
    entry.replace('\\', '/');
    return entry;
}

bool InstallFontSource(const QByteArray& entry)
{
    // putenv keeps this very storage in the environment, so it has to live as long as the application.
    static char s_chEntry[kEntryBytes];

    if (static_cast<std::size_t>(entry.size()) >= kEntryBytes) {
        qDebug("PCLFONTSOURCE not set: the entry needs %lld bytes and has room for %zu\n",
            static_cast<long long>(entry.size()) + 1, kEntryBytes);
        return false;
    }
    std::memset(s_chEntry, 0, kEntryBytes);
    std::memcpy(s_chEntry, entry.constData(), static_cast<std::size_t>(entry.size()));
    qDebug("%s\n", s_chEntry);
    ::putenv(s_chEntry);
    return ::getenv("PCLFONTSOURCE") != nullptr;
}

bool MainWindow::SetFontPath() { return InstallFontSource(FontSourceEntry(QCoreApplication::applicationDirPath())); }
