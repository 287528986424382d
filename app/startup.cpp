#include "app/startup.h"

#include "ui/mainwindow.h"

#include <QApplication>
#include <QDir>
#include <QPalette>
#include <QStyle>

namespace {

// The windows' pictures and style sheets are light, and none of them names a colour for text. A desktop's dark palette
// would write pale on pale, so the application keeps to its style's own colours, or to a plain light palette where the
// style takes its colours from the desktop. Every role is set, since the rest would be filled in from the desktop.
QPalette LightPalette()
{
    QPalette palette = QApplication::style()->standardPalette();
    if (palette.color(QPalette::WindowText).lightness() > palette.color(QPalette::Window).lightness())
        palette = QPalette(QColor(0xEF, 0xEF, 0xEF));
    for (int iGroup = 0; iGroup < QPalette::NColorGroups; ++iGroup) {
        for (int iRole = 0; iRole < QPalette::NColorRoles; ++iRole) {
            const auto group = static_cast<QPalette::ColorGroup>(iGroup);
            const auto role = static_cast<QPalette::ColorRole>(iRole);
            palette.setBrush(group, role, palette.brush(group, role));
        }
    }
    return palette;
}

} // namespace

int StartPrismo(int& argc, char** argv)
{
    QApplication application(argc, argv);

    // In a bundle the plug-ins lie one level above the executable. Where that folder is missing the level itself stays.
    QDir pluginFolder(QCoreApplication::applicationDirPath());
    pluginFolder.cdUp();
    pluginFolder.cd(QStringLiteral("plugins"));
    QCoreApplication::setLibraryPaths({ pluginFolder.absolutePath() });

    QApplication::setPalette(LightPalette());

    MainWindow mainWindow;
    mainWindow.setFixedSize(MainWindow::kWindowSize);
    mainWindow.show();
    mainWindow.InitAllChoice();

    return QApplication::exec();
}
