#include "tests/app/support/dialogdriver.h"
#include "tests/app/support/fakebackend.h"
#include "tests/app/support/windowtest.h"

#include <QDir>
#include <QLineEdit>
#include <QMessageBox>
#include <QMetaMethod>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTemporaryDir>

#include <memory>

using namespace windowtest;

class ConversionRunTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void EmptyListIsRefusedWhateverTheButtonSays_data();
    void EmptyListIsRefusedWhateverTheButtonSays();
    void OutputFolderIsStoredEvenWithoutABackend();
    void MissingBackendLeavesTheFlagSetAndTheListFrozen_data();
    void MissingBackendLeavesTheFlagSetAndTheListFrozen();
    void BarCountsStartedFilesAndDropsAtTheEnd();
    void FailingBackendDoesNotInterruptTheRun_data();
    void FailingBackendDoesNotInterruptTheRun();
    void StopPressCollectsAgainAndStartsFromTheTop();
    void FileWithoutADotConverts();
    void OtherButtonTextOnlyChecksAndSaves();

    void MissingFolderIsRefused();
    void PlainFilePassesAsFolder();
    void StopPressWithoutFolderDoesNotStop();
    void StopStartsTheFirstRowOnceMore();
    void StopWithOneRowEndsTheRunOnceMore();
    void StopAfterAFailedStartReturnsToIdle();
    void BackendThatCannotStartLeavesTheRunRunning();
    void RunAfterAStopStartsFromTheFirstRow();
    void ButtonShowsTheState();
    void RowBeingConvertedIsCurrent();
    void ArgumentsAreThoseOfTheLine();
    void SettingsAndFolderChangesCountFromTheNextFile();
    void UnreadOutputIsNotKept();
    void ChannelsStaySeparate();
    void EachCallMakesAProcessThatIsNeverDeleted();
    void FileListGrowsWithEveryPress();
    void KillProcessWithoutARunDoesNothing();
    void OneBackendAtATime();
    void StopPressStoresTheFolder();
    void CallWithoutTheFlagStartsNothing();
    void ClosedWindowLeavesItsBackendRunning();
    void PathsOfAnyLanguageReachTheBackend();
    void BackendThatVanishesDuringARunLeavesItRunning();

private:
    QPushButton* Button() { return Child<QPushButton>(*m_window, "pushButton_Convert"); }
    QProgressBar* Bar() { return Child<QProgressBar>(*m_window, "progressBarA"); }
    QTableWidget* Table() { return Child<QTableWidget>(*m_window, "tableWidget"); }
    QLineEdit* Folder() { return Child<QLineEdit>(*m_window, "lineEdit_OutPutPath"); }
    void Press() { Click(Button()); }
    bool Running() { return MainWindowProbe::Running(*m_window); }
    bool WaitForEnd()
    {
        return WaitUntil([this] { return !Running(); });
    }
    // Lists so many files and names an output folder.
    void Prepare(int iFiles)
    {
        QStringList paths;
        for (int i = 0; i < iFiles; ++i)
            paths.append(MakeFile(m_folder->filePath(QString("job%1.pcl").arg(i)), 10));
        AddRows(*m_window, paths);
        m_paths = paths;
        Folder()->setText(m_folder->path());
    }
    // Announces a message box, and checks it when it comes.
    void ExpectWarning(DialogDriver& driver, const QString& strText)
    {
        driver.Expect([this, strText](QWidget* dialog) {
            auto* box = qobject_cast<QMessageBox*>(dialog);
            QVERIFY(box);
            QCOMPARE(box->windowTitle(), QString("Warning"));
            QCOMPARE(box->text(), strText);
            QCOMPARE(box->icon(), QMessageBox::Information);
            QCOMPARE(box->standardButtons(), QMessageBox::StandardButtons(QMessageBox::Yes));
            QCOMPARE(box->parentWidget(), m_window.get());
            Click(box->button(QMessageBox::Yes));
        });
    }
    static QImage Picture(const char* name) { return QPixmap(QString(":/MyIco/Image/%1.ico").arg(name)).toImage(); }
    QImage ShownIcon() { return Button()->icon().pixmap(48, 48).toImage(); }

    std::unique_ptr<FakeBackend> m_backend;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MainWindow> m_window;
    QStringList m_paths;
};

void ConversionRunTest::init()
{
    RemoveSettings();
    m_backend = std::make_unique<FakeBackend>();
    m_folder = std::make_unique<QTemporaryDir>();
    m_window = std::make_unique<MainWindow>();
    m_window->setFixedSize(730, 450);
    m_window->show();
    m_window->InitAllChoice();
}

void ConversionRunTest::cleanup()
{
    m_window.reset();
    m_backend.reset();
    RemoveSettings();
}

void ConversionRunTest::EmptyListIsRefusedWhateverTheButtonSays_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("idle") << "Convert";
    QTest::newRow("running") << "Stop ";
    QTest::newRow("other") << "Umwandeln";
}

void ConversionRunTest::EmptyListIsRefusedWhateverTheButtonSays()
{
    QFETCH(QString, text);
    Button()->setText(text);
    Folder()->setText(m_folder->path());
    MainWindowProbe::CurrentRow(*m_window) = 7;
    DialogDriver driver;
    ExpectWarning(driver, "No File!");
    Press();
    QVERIFY(driver.AllShown());
    QCOMPARE(Button()->text(), text);
    QCOMPARE(MainWindowProbe::CurrentRow(*m_window), 7);
    QCOMPARE(MainWindowProbe::FileCount(*m_window), 0);
    QVERIFY(ReadSetting("SettingInfo/OutputFolder").isNull());
    QVERIFY(m_backend->Runs().empty());
}

void ConversionRunTest::OutputFolderIsStoredEvenWithoutABackend()
{
    Prepare(1);
    m_backend->Remove();
    Press();
    QCOMPARE(ReadSetting("SettingInfo/OutputFolder"), m_folder->path());
}

void ConversionRunTest::MissingBackendLeavesTheFlagSetAndTheListFrozen_data()
{
    QTest::addColumn<bool>("empty");
    QTest::newRow("missing") << false;
    QTest::newRow("empty") << true;
}

void ConversionRunTest::MissingBackendLeavesTheFlagSetAndTheListFrozen()
{
    QFETCH(bool, empty);
    Prepare(2);
    if (empty)
        m_backend->MakeEmpty();
    else
        m_backend->Remove();
    const DialogDriver driver;
    Press();
    QCOMPARE(Button()->text(), QString("Convert"));
    QCOMPARE(ShownIcon(), Picture("media_playback_start"));
    QVERIFY(Running());
    QVERIFY(!m_window->ExeCmd());

    for (const char* name : { "pushButton_Add", "pushButton_Remove", "pushButton_RemoveAll", "pushButton_OutPutPath" })
        ClickButton(*m_window, name);
    QCOMPARE(driver.ShownCount(), 0);
    QCOMPARE(Table()->rowCount(), 2);
    QCOMPARE(Folder()->text(), m_folder->path());

    // A run that ends normally frees the list.
    m_backend = nullptr;
    m_backend = std::make_unique<FakeBackend>();
    Press();
    QVERIFY(WaitForEnd());
    QCOMPARE(m_backend->InputsSoFar(), m_paths);
    ClickButton(*m_window, "pushButton_RemoveAll");
    QCOMPARE(Table()->rowCount(), 0);
}

void ConversionRunTest::BarCountsStartedFilesAndDropsAtTheEnd()
{
    Prepare(3);
    m_backend->WaitAtGate();
    Press();
    for (int i = 1; i <= 3; ++i) {
        QVERIFY(m_backend->WaitForRuns(i));
        QVERIFY(WaitUntil([this, i] { return Bar()->value() == i; }));
        QCOMPARE(Bar()->maximum(), 3);
        QCOMPARE(Button()->text(), QString("Stop "));
        if (i < 3)
            m_backend->OpenGate();
    }
    // The bar drops and the button returns in the finished signal of the third.
    QSignalSpy finished(MainWindowProbe::Process(*m_window), &QProcess::finished);
    m_backend->OpenGate();
    QVERIFY(WaitUntil([&finished] { return finished.size() == 1; }));
    QCOMPARE(Bar()->value(), 0);
    QCOMPARE(Button()->text(), QString("Convert"));
    QCOMPARE(ShownIcon(), Picture("media_playback_start"));
    QVERIFY(!Running());
    QCOMPARE(m_backend->InputsSoFar(), m_paths);
}

void ConversionRunTest::FailingBackendDoesNotInterruptTheRun_data()
{
    QTest::addColumn<bool>("crash");
    QTest::newRow("exit code 4") << false;
    QTest::newRow("crash") << true;
}

void ConversionRunTest::FailingBackendDoesNotInterruptTheRun()
{
    QFETCH(bool, crash);
    if (crash)
        m_backend->Crash();
    else
        m_backend->ExitWith(4);
    Prepare(3);
    const DialogDriver driver;
    Press();
    QVERIFY(WaitForEnd());
    QCOMPARE(m_backend->InputsSoFar(), m_paths);
    QCOMPARE(driver.ShownCount(), 0);
}

void ConversionRunTest::StopPressCollectsAgainAndStartsFromTheTop()
{
    Prepare(3);
    m_backend->WaitAtGate();
    Press();
    QCOMPARE(MainWindowProbe::FileList(*m_window), m_paths);
    m_backend->OpenGate();
    QVERIFY(m_backend->WaitForRuns(2));
    QCOMPARE(MainWindowProbe::CurrentRow(*m_window), 2);

    Press();
    QCOMPARE(MainWindowProbe::FileList(*m_window), m_paths + m_paths);
    // Reset to 0 before stopping, then advanced by the start that stopping causes.
    QCOMPARE(MainWindowProbe::CurrentRow(*m_window), 1);
    QCOMPARE(Button()->text(), QString("Convert"));
    m_backend->OpenGate();
    QVERIFY(m_backend->WaitForRuns(3));
    QCOMPARE(m_backend->InputsSoFar(), QStringList({ m_paths.at(0), m_paths.at(1), m_paths.at(0) }));
}

void ConversionRunTest::FileWithoutADotConverts()
{
    const QString strPath = MakeFile(m_folder->filePath("job"), 10);
    WriteSetting("SettingInfo/Format", "3");
    DialogDriver driver;
    driver.Expect([&strPath](QWidget* dialog) { ChooseInFileDialog(dialog, { strPath }); });
    ClickButton(*m_window, "pushButton_Add");
    Folder()->setText(m_folder->path());
    Press();
    QVERIFY(WaitForEnd());
    QCOMPARE(
        m_backend->Runs().at(0).arguments.mid(4), QStringList({ "-o", m_folder->filePath("job.png"), "-i", strPath }));
}

void ConversionRunTest::OtherButtonTextOnlyChecksAndSaves()
{
    Prepare(1);
    Button()->setText("Stop");
    Press();
    QCOMPARE(ReadSetting("SettingInfo/OutputFolder"), m_folder->path());
    QCOMPARE(Button()->text(), QString("Stop"));
    QVERIFY(!Running());
    QVERIFY(!MainWindowProbe::Process(*m_window));
    QCOMPARE(MainWindowProbe::FileList(*m_window), m_paths);
}

void ConversionRunTest::MissingFolderIsRefused()
{
    Prepare(1);
    MainWindowProbe::CurrentRow(*m_window) = 5;
    for (const QString& strFolder : { m_folder->filePath("missing"), QString() }) {
        Folder()->setText(strFolder);
        DialogDriver driver;
        ExpectWarning(driver, "Please select a correct output folder.");
        Press();
        QVERIFY(driver.AllShown());
        QCOMPARE(Button()->text(), QString("Convert"));
        QVERIFY(!Running());
        QCOMPARE(MainWindowProbe::CurrentRow(*m_window), 0);
        QVERIFY(ReadSetting("SettingInfo/OutputFolder").isNull());
    }
}

void ConversionRunTest::PlainFilePassesAsFolder()
{
    Prepare(1);
    Folder()->setText(m_paths.at(0));
    const DialogDriver driver;
    Press();
    QVERIFY(WaitForEnd());
    QCOMPARE(driver.ShownCount(), 0);
    QCOMPARE(m_backend->Runs().size(), std::size_t(1));
}

void ConversionRunTest::StopPressWithoutFolderDoesNotStop()
{
    Prepare(2);
    m_backend->WaitAtGate();
    Press();
    QVERIFY(m_backend->WaitForRuns(1));
    Folder()->setText("/no/such/folder");
    DialogDriver driver;
    ExpectWarning(driver, "Please select a correct output folder.");
    Press();
    QVERIFY(driver.AllShown());
    QVERIFY(Running());
    QCOMPARE(Button()->text(), QString("Stop "));
    QCOMPARE(MainWindowProbe::Process(*m_window)->state(), QProcess::Running);

    // The press has set the row back, so the run goes through the whole list from here.
    Folder()->setText(m_folder->path());
    m_backend->OpenGate(3);
    QVERIFY(WaitForEnd());
    QCOMPARE(m_backend->InputsSoFar(), QStringList({ m_paths.at(0), m_paths.at(0), m_paths.at(1) }));
}

void ConversionRunTest::StopStartsTheFirstRowOnceMore()
{
    Prepare(3);
    m_backend->WaitAtGate();
    Press();
    m_backend->OpenGate();
    QVERIFY(m_backend->WaitForRuns(2));
    QProcess* killed = MainWindowProbe::Process(*m_window);
    QSignalSpy killedFinished(killed, &QProcess::finished);

    Press();
    QCOMPARE(killedFinished.size(), 1);
    QCOMPARE(killed->state(), QProcess::NotRunning);
    QCOMPARE(killed->exitStatus(), QProcess::CrashExit);
    QCOMPARE(Button()->text(), QString("Convert"));
    QCOMPARE(ShownIcon(), Picture("media_playback_start"));
    QCOMPARE(Bar()->value(), 0);
    QVERIFY(!Running());

    QProcess* again = MainWindowProbe::Process(*m_window);
    QVERIFY(again != killed);
    QVERIFY(again->state() != QProcess::NotRunning);
    QSignalSpy againFinished(again, &QProcess::finished);
    QVERIFY(m_backend->WaitForRuns(3));
    QCOMPARE(m_backend->InputsSoFar(), QStringList({ m_paths.at(0), m_paths.at(1), m_paths.at(0) }));

    // It runs to its end, and that end starts nothing.
    m_backend->OpenGate();
    QVERIFY(WaitUntil([&againFinished] { return againFinished.size() == 1; }));
    QCOMPARE(again->exitStatus(), QProcess::NormalExit);
    QVERIFY(MainWindowProbe::Process(*m_window) != again);
    QCOMPARE(MainWindowProbe::Process(*m_window)->state(), QProcess::NotRunning);
    QCOMPARE(m_backend->Runs().size(), std::size_t(3));
    QVERIFY(!Running());
    QCOMPARE(Button()->text(), QString("Convert"));
}

void ConversionRunTest::StopWithOneRowEndsTheRunOnceMore()
{
    Prepare(1);
    m_backend->WaitAtGate();
    Press();
    QVERIFY(m_backend->WaitForRuns(1));
    Press();
    QVERIFY(m_backend->WaitForRuns(2));
    QProcess* again = MainWindowProbe::Process(*m_window);
    QSignalSpy againFinished(again, &QProcess::finished);
    // Something that only the end of a run resets.
    Bar()->setValue(1);
    Button()->setText("?");
    m_backend->OpenGate();
    QVERIFY(WaitUntil([&againFinished] { return againFinished.size() == 1; }));
    QCOMPARE(Bar()->value(), 0);
    QCOMPARE(Button()->text(), QString("Convert"));
    QCOMPARE(m_backend->Runs().size(), std::size_t(2));
}

void ConversionRunTest::StopAfterAFailedStartReturnsToIdle()
{
    Prepare(2);
    m_backend->MakeNotExecutable();
    Press();
    QCOMPARE(Button()->text(), QString("Stop "));
    Press();
    QCOMPARE(Button()->text(), QString("Convert"));
    QVERIFY(!Running());
    QCOMPARE(Bar()->value(), 0);
}

void ConversionRunTest::BackendThatCannotStartLeavesTheRunRunning()
{
    Prepare(2);
    m_backend->MakeNotExecutable();
    const DialogDriver driver;
    Press();
    QProcess* process = MainWindowProbe::Process(*m_window);
    QVERIFY(WaitUntil([process] { return process->state() == QProcess::NotRunning; }));
    QCOMPARE(process->error(), QProcess::FailedToStart);
    QCoreApplication::processEvents();
    QCOMPARE(MainWindowProbe::Process(*m_window), process);
    QVERIFY(Running());
    QCOMPARE(Button()->text(), QString("Stop "));
    QCOMPARE(driver.ShownCount(), 0);
}

void ConversionRunTest::RunAfterAStopStartsFromTheFirstRow()
{
    Prepare(2);
    m_backend->WaitAtGate();
    Press();
    QVERIFY(m_backend->WaitForRuns(1));
    Press();
    QVERIFY(m_backend->WaitForRuns(2));
    QProcess* again = MainWindowProbe::Process(*m_window);
    QSignalSpy againFinished(again, &QProcess::finished);
    m_backend->OpenGate();
    QVERIFY(WaitUntil([&againFinished] { return againFinished.size() == 1; }));

    Press();
    m_backend->OpenGate(2);
    QVERIFY(WaitForEnd());
    QCOMPARE(m_backend->InputsSoFar().mid(2), m_paths);
}

void ConversionRunTest::ButtonShowsTheState()
{
    Prepare(1);
    QCOMPARE(ShownIcon(), Picture("media_playback_start"));
    m_backend->WaitAtGate();
    Press();
    QCOMPARE(Button()->text(), QString("Stop "));
    QCOMPARE(ShownIcon(), Picture("stop"));
    QCOMPARE(Button()->iconSize(), QSize(48, 48));
    m_backend->OpenGate();
    QVERIFY(WaitForEnd());
    QCOMPARE(Button()->text(), QString("Convert"));
    QCOMPARE(ShownIcon(), Picture("media_playback_start"));
    QCOMPARE(Button()->iconSize(), QSize(48, 48));
}

void ConversionRunTest::RowBeingConvertedIsCurrent()
{
    Prepare(2);
    Table()->setSelectionBehavior(QAbstractItemView::SelectItems);
    m_backend->WaitAtGate();
    Press();
    QCOMPARE(Table()->selectionBehavior(), QAbstractItemView::SelectRows);
    for (int i = 0; i < 2; ++i) {
        QVERIFY(WaitUntil([this, i] { return Table()->currentRow() == i; }));
        QCOMPARE(Table()->currentColumn(), 1);
        QVERIFY(Table()->item(i, 0)->isSelected());
        QCOMPARE(Table()->selectionModel()->selectedRows().size(), 1);
        m_backend->OpenGate();
    }
    QVERIFY(WaitForEnd());
}

void ConversionRunTest::ArgumentsAreThoseOfTheLine()
{
    QVERIFY(QDir(m_folder->path()).mkdir("my images"));
    WriteSetting("SettingInfo/Format", "4");
    WriteSetting("SettingInfo/BitCount", "2");
    WriteSetting("SettingInfo/CompressMethod", "3");
    WriteSetting("SettingInfo/ResizePage", "TRUE");
    WriteSetting("SettingInfo/PageSizeX", "850");
    WriteSetting("SettingInfo/PageSizeY", "1100");
    const QString strInput = MakeFile(m_folder->filePath("my job.v2.prn"), 10);
    AddRows(*m_window, { strInput });
    const QString strFolder = m_folder->filePath("my images");
    Folder()->setText(strFolder);
    Press();
    QVERIFY(WaitForEnd());
    QCOMPARE(m_backend->Runs().at(0).arguments,
        QStringList({ "-gw", "850", "-gh", "1100", "-b", "24", "-c", "3", "-writelocal", "n", "-o",
            strFolder + "/my job.v2.tif", "-i", strInput }));
}

void ConversionRunTest::SettingsAndFolderChangesCountFromTheNextFile()
{
    Prepare(2);
    m_backend->WaitAtGate();
    Press();
    QVERIFY(m_backend->WaitForRuns(1));
    WriteSetting("SettingInfo/Format", "3");
    QVERIFY(QDir(m_folder->path()).mkdir("later"));
    Folder()->setText(m_folder->filePath("later"));
    m_backend->OpenGate(2);
    QVERIFY(WaitForEnd());
    QVERIFY(m_backend->Runs().at(0).arguments.contains(m_folder->filePath("job0.bmp")));
    QVERIFY(m_backend->Runs().at(1).arguments.contains(m_folder->filePath("later/job1.png")));
}

void ConversionRunTest::UnreadOutputIsNotKept()
{
    constexpr int kBytes = 4'000'000;
    Prepare(1);
    m_backend->Print(kBytes);
    m_backend->WaitAtGate();
    Press();
    QProcess* process = MainWindowProbe::Process(*m_window);
    QSignalSpy finished(process, &QProcess::finished);
    m_backend->OpenGate();
    QVERIFY(WaitUntil([&finished] { return finished.size() == 1; }));
    QCOMPARE(process->exitCode(), 0);
    QCOMPARE(process->bytesAvailable(), 0);
    QVERIFY(process->readAllStandardOutput().isEmpty());
    QVERIFY(process->readAllStandardError().isEmpty());
}

void ConversionRunTest::ChannelsStaySeparate()
{
    Prepare(1);
    Press();
    QCOMPARE(MainWindowProbe::Process(*m_window)->processChannelMode(), QProcess::SeparateChannels);
    QCOMPARE(MainWindowProbe::Process(*m_window)->openMode(), QIODevice::ReadWrite);
    QVERIFY(WaitForEnd());
}

void ConversionRunTest::EachCallMakesAProcessThatIsNeverDeleted()
{
    Prepare(1);
    m_backend->WaitAtGate();
    Press();
    const QPointer<QProcess> first = MainWindowProbe::Process(*m_window);
    QVERIFY(!first->parent());
    m_backend->OpenGate();
    QVERIFY(WaitForEnd());
    const QPointer<QProcess> last = MainWindowProbe::Process(*m_window);
    QVERIFY(last != first);
    QVERIFY(m_window->ExeCmd());
    QVERIFY(MainWindowProbe::Process(*m_window) != last);
    m_window.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(first);
    QVERIFY(last);
}

void ConversionRunTest::FileListGrowsWithEveryPress()
{
    Prepare(2);
    Press();
    QVERIFY(WaitForEnd());
    QCOMPARE(MainWindowProbe::FileList(*m_window), m_paths);
    QCOMPARE(MainWindowProbe::FileCount(*m_window), 2);
    Press();
    QVERIFY(WaitForEnd());
    QCOMPARE(MainWindowProbe::FileList(*m_window), m_paths + m_paths);
}

void ConversionRunTest::KillProcessWithoutARunDoesNothing()
{
    m_window->KillProcess();
    QVERIFY(!Running());
    const QMetaObject& meta = MainWindow::staticMetaObject;
    QCOMPARE(meta.indexOfSlot("KillProcess()"), -1);
}

void ConversionRunTest::OneBackendAtATime()
{
    Prepare(3);
    m_backend->WaitAtGate();
    Press();
    for (int i = 1; i <= 3; ++i) {
        QVERIFY(m_backend->WaitForRuns(i));
        QCoreApplication::processEvents();
        QCOMPARE(static_cast<int>(m_backend->Runs().size()), i);
        m_backend->OpenGate();
    }
    QVERIFY(WaitForEnd());
}

void ConversionRunTest::StopPressStoresTheFolder()
{
    Prepare(1);
    m_backend->WaitAtGate();
    Press();
    QVERIFY(m_backend->WaitForRuns(1));
    QVERIFY(QDir(m_folder->path()).mkdir("later"));
    Folder()->setText(m_folder->filePath("later"));
    Press();
    QCOMPARE(ReadSetting("SettingInfo/OutputFolder"), m_folder->filePath("later"));
    // The row that stopping started again.
    m_backend->OpenGate();
    QVERIFY(m_backend->WaitForRuns(2));
}

// What the end of a stopped run's last backend does: all preparations, and no start.
void ConversionRunTest::CallWithoutTheFlagStartsNothing()
{
    Prepare(1);
    qunsetenv("PCLFONTSOURCE");
    WriteSetting("SettingInfo/Format", "3");
    QVERIFY(m_window->ExeCmd());
    QVERIFY(MainWindowProbe::Process(*m_window));
    QCOMPARE(MainWindowProbe::Process(*m_window)->state(), QProcess::NotRunning);
    QCOMPARE(MainWindowProbe::Extension(*m_window), QString(".png"));
    QVERIFY(qEnvironmentVariableIsSet("PCLFONTSOURCE"));
    QCOMPARE(MainWindowProbe::CurrentRow(*m_window), 0);
    QCOMPARE(Bar()->value(), 0);
    QCOMPARE(Table()->currentRow(), -1);
    QVERIFY(m_backend->Runs().empty());
}

void ConversionRunTest::ClosedWindowLeavesItsBackendRunning()
{
    Prepare(2);
    m_backend->WaitAtGate();
    Press();
    QVERIFY(m_backend->WaitForRuns(1));
    QProcess* process = MainWindowProbe::Process(*m_window);
    QSignalSpy finished(process, &QProcess::finished);
    m_window.reset();
    QVERIFY(process->state() != QProcess::NotRunning);

    m_backend->OpenGate();
    QVERIFY(WaitUntil([&finished] { return finished.size() == 1; }));
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_backend->Runs().size(), std::size_t(1));
}

void ConversionRunTest::PathsOfAnyLanguageReachTheBackend()
{
    const QString strFolder = m_folder->filePath(QString::fromUtf8("B\u00FCcher, \u65E5\u672C=%"));
    QVERIFY(QDir().mkdir(strFolder));
    const QString strInput = MakeFile(m_folder->filePath(QString::fromUtf8("Gr\u00FC\u00DFe.pcl")), 10);
    AddRows(*m_window, { strInput });
    QCOMPARE(Table()->item(0, 0)->text(), strInput);
    Folder()->setText(strFolder);
    Press();
    QVERIFY(WaitForEnd());
    QCOMPARE(m_backend->InputsSoFar(), QStringList({ strInput }));
    QVERIFY(m_backend->Runs().at(0).arguments.contains(strFolder + QString::fromUtf8("/Gr\u00FC\u00DFe.bmp")));
    QCOMPARE(ReadSetting("SettingInfo/OutputFolder"), strFolder);
    QCOMPARE(ReadSetting("SettingInfo/InputFolder"), strInput);
}

void ConversionRunTest::BackendThatVanishesDuringARunLeavesItRunning()
{
    Prepare(3);
    m_backend->WaitAtGate();
    Press();
    QVERIFY(m_backend->WaitForRuns(1));
    QSignalSpy finished(MainWindowProbe::Process(*m_window), &QProcess::finished);
    m_backend->Remove();
    m_backend->OpenGate();
    const DialogDriver driver;
    QVERIFY(WaitUntil([&finished] { return finished.size() == 1; }));
    QVERIFY(Running());
    QCOMPARE(Button()->text(), QString("Stop "));
    QCOMPARE(Bar()->value(), 1);
    QCOMPARE(MainWindowProbe::CurrentRow(*m_window), 1);

    Press();
    QVERIFY(!Running());
    QCOMPARE(Button()->text(), QString("Convert"));
    QCOMPARE(Bar()->value(), 0);
    QCOMPARE(driver.ShownCount(), 0);
}

PRISMO_TEST_MAIN(ConversionRunTest)
#include "conversionrun_test.moc"
