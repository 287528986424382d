// What the window itself costs: adding and clearing 10,000 files, and its own time per file of a run over them.
// The backend of the measured run ends at once, and the time that it lives is not counted.
//
// Prints one line per figure: name, median, worst, unit.

#include "tests/app/support/dialogdriver.h"
#include "tests/app/support/fakebackend.h"
#include "tests/app/support/windowtest.h"

#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QProcess>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

#include <csignal>
#include <sys/wait.h>

using namespace windowtest;

namespace {

constexpr int kFiles = 10'000;
constexpr int kRounds = 5;
constexpr int kFilesConverted = 300;

// Processor time of this process, system calls included: what other programs take is not counted.
double processorMilliseconds()
{
    timespec time {};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double milliseconds(const QElapsedTimer& timer) { return static_cast<double>(timer.nsecsElapsed()) / 1e6; }

void report(const char* name, std::vector<double> values, const char* unit)
{
    std::sort(values.begin(), values.end());
    std::printf("%-30s %10.3f %10.3f %s\n", name, values[values.size() / 2], values.back(), unit);
    std::fflush(stdout);
}

// From the first row that appears until AddFile returns, so that the dialog's own work is left out.
double addFiles(MainWindow& window)
{
    QElapsedTimer timer;
    const auto* model = Child<QTableWidget>(window, "tableWidget")->model();
    const auto connection = QObject::connect(model, &QAbstractItemModel::rowsAboutToBeInserted, &window, [&timer] {
        if (!timer.isValid())
            timer.start();
    });
    DialogDriver driver;
    driver.Expect([](QWidget* dialog) {
        // All of the folder: the dialog's name field is too short for so many names.
        auto* view = Child<QListView>(*dialog, "listView");
        if (!WaitUntil([view] { return view->model()->rowCount(view->rootIndex()) == kFiles; }))
            qFatal("the dialog does not list the folder");
        view->selectAll();
        static_cast<QDialog*>(qobject_cast<QFileDialog*>(dialog))->accept();
    });
    window.AddFile();
    const double elapsed = milliseconds(timer);
    QObject::disconnect(connection);
    if (Child<QTableWidget>(window, "tableWidget")->rowCount() != kFiles)
        qFatal("not all files were added");
    // What the rows still cost when they are shown.
    timer.restart();
    QCoreApplication::processEvents();
    return elapsed + milliseconds(timer);
}

double clearFiles(MainWindow& window)
{
    QElapsedTimer timer;
    timer.start();
    window.DeleteAllFile();
    QCoreApplication::processEvents();
    return milliseconds(timer);
}

// Runs over the first rows. Each event that the loop handles while a run goes on is the window's work, except that it
// waits for the backend; so what is measured is the time inside ExeCmd and in the repainting that follows it.
void convertFiles(MainWindow& window)
{
    std::vector<double> elapsed;
    std::vector<double> processor;
    QElapsedTimer timer;
    timer.start();
    window.StartConvert();
    report("press with 10,000 rows", { milliseconds(timer) }, "ms");
    int iRow = MainWindowProbe::CurrentRow(window);
    while (iRow < kFilesConverted) {
        // Sleeps until the backend has ended; what is ready then is handled in the measured call.
        QProcess* process = MainWindowProbe::Process(window);
        process->waitForStarted();
        siginfo_t end {};
        ::waitid(P_PID, static_cast<id_t>(process->processId()), &end, WEXITED | WNOWAIT);
        timer.restart();
        const double before = processorMilliseconds();
        while (MainWindowProbe::CurrentRow(window) == iRow)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::processEvents();
        elapsed.push_back(milliseconds(timer));
        processor.push_back(processorMilliseconds() - before);
        iRow = MainWindowProbe::CurrentRow(window);
    }
    MainWindowProbe::Running(window) = false;
    report("own time per file, elapsed", elapsed, "ms");
    report("own time per file, processor", processor, "ms");
}

} // namespace

int main(int argc, char** argv)
{
    const TestEnvironment environment;
    qputenv("QT_LOGGING_RULES", "default.debug=false");
    QApplication application(argc, argv);

    RemoveSettings();
    const QTemporaryDir folder;
    for (int i = 0; i < kFiles; ++i)
        MakeFile(folder.filePath(QString("job%1.pcl").arg(i)), 1000 + i);
    WriteSetting("SettingInfo/InputFolder", folder.path());

    MainWindow window;
    window.setFixedSize(730, 450);
    window.show();
    window.InitAllChoice();

    std::printf("%-30s %10s %10s\n", "figure", "median", "worst");
    std::vector<double> adding;
    std::vector<double> clearing;
    for (int i = 0; i < kRounds; ++i) {
        adding.push_back(addFiles(window));
        clearing.push_back(clearFiles(window));
    }
    report("adding 10,000 files", adding, "ms");
    report("clearing 10,000 files", clearing, "ms");

    addFiles(window);
    FakeBackend backend;
    qunsetenv("PRISMO_FAKE_RUNS"); // recording is the backend's time, but the watcher of records is not
    Child<QLineEdit>(window, "lineEdit_OutPutPath")->setText(folder.path());
    convertFiles(window);
    RemoveSettings();
    return 0;
}
