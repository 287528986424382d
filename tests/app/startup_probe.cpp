// Starts the application, lets its event loop begin, notes what the outside can see, and closes the window (or quits
// with PRISMO_PROBE_EXIT as the loop's result). One line per note on standard output. With PRISMO_PROBE_DARK the
// desktop has a dark palette before the application looks at it.

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
    for (const char* name : { "pushButton_Add", "label", "tableWidget", "lineEdit_OutPutPath" }) {
        const QWidget* widget = window->findChild<QWidget*>(name);
        note(name,
            QString("%1 %2")
                .arg(widget->palette().color(widget->foregroundRole()).lightness())
                .arg(widget->palette().color(QPalette::Base).lightness()));
    }
    note("icon", sizeText(window->findChild<QPushButton*>("pushButton_Convert")->iconSize()));
    std::fflush(stdout);

    if (qEnvironmentVariableIsSet("PRISMO_PROBE_EXIT"))
        QCoreApplication::exit(qEnvironmentVariableIntValue("PRISMO_PROBE_EXIT"));
    else
        window->close();
}

void whenTheApplicationExists()
{
    if (qEnvironmentVariableIsSet("PRISMO_PROBE_DARK"))
        QGuiApplication::setPalette(QPalette(QColor(0x20, 0x20, 0x20)));
    QTimer::singleShot(0, look);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(whenTheApplicationExists)

int main(int argc, char** argv) { return StartPrismo(argc, argv); }
