// Starts the application, lets its event loop begin, notes what the outside can see, and closes the window (or quits
// with PRISMO_PROBE_EXIT as the loop's result). One line per note on standard output.

#include "app/startup.h"

#include <QApplication>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>

#include <cstdio>

namespace {

void note(const char* name, const QString& strValue) { std::printf("%s=%s\n", name, qPrintable(strValue)); }

QString sizeText(const QSize& size) { return QString("%1x%2").arg(size.width()).arg(size.height()); }

void look()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    QWidget* window = nullptr;
    for (QWidget* candidate : windows) {
        if (candidate->objectName() == "MainWindow")
            window = candidate;
    }
    if (!window)
        qFatal("no main window");
    note("libraryPaths", QCoreApplication::libraryPaths().join('|'));
    note("visible", window->isVisible() ? "yes" : "no");
    note("size", sizeText(window->size()));
    note("minimum", sizeText(window->minimumSize()));
    note("maximum", sizeText(window->maximumSize()));
    note("rows", QString::number(window->findChild<QTableWidget*>("tableWidget")->rowCount()));
    note("columns", QString::number(window->findChild<QTableWidget*>("tableWidget")->columnCount()));
    note("icon", sizeText(window->findChild<QPushButton*>("pushButton_Convert")->iconSize()));
    std::fflush(stdout);

    if (qEnvironmentVariableIsSet("PRISMO_PROBE_EXIT"))
        QCoreApplication::exit(qEnvironmentVariableIntValue("PRISMO_PROBE_EXIT"));
    else
        window->close();
}

void whenTheApplicationExists() { QTimer::singleShot(0, look); }

} // namespace

Q_COREAPP_STARTUP_FUNCTION(whenTheApplicationExists)

int main(int argc, char** argv) { return StartPrismo(argc, argv); }
