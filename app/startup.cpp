#include "app/startup.h"

#include "ui/mainwindow.h"

#include <QApplication>
#include <QDir>

int StartPrismo(int& argc, char** argv)
{
    QApplication application(argc, argv);

    // In a bundle the plug-ins lie one level above the executable. Where that folder is missing the level itself stays.
    QDir pluginFolder(QCoreApplication::applicationDirPath());
    pluginFolder.cdUp();
    pluginFolder.cd(QStringLiteral("plugins"));
    QCoreApplication::setLibraryPaths({ pluginFolder.absolutePath() });

    MainWindow mainWindow;
    mainWindow.setFixedSize(730, 450);
    mainWindow.show();
    mainWindow.InitAllChoice();

    return QApplication::exec();
}
