#include "tests/app/support/conversiontest.h"

#include <QDir>
#include <QPointer>
#include <QProcess>
#include <QSignalSpy>

using namespace windowtest;

class ConversionRunTest : public ConversionTest {
    Q_OBJECT

private slots:
    void BarCountsStartedFilesAndDropsAtTheEnd();
    void FailingBackendDoesNotInterruptTheRun_data();
    void FailingBackendDoesNotInterruptTheRun();
    void FileWithoutADotConverts();
    void ButtonShowsTheState();
    void RowBeingConvertedIsCurrent();
    void ArgumentsAreThoseOfTheLine();
    void SettingsAndFolderChangesCountFromTheNextFile();
    void UnreadOutputIsNotKept();
    void ChannelsStaySeparate();
    void EachCallMakesAProcessThatIsNeverDeleted();
    void FileListGrowsWithEveryPress();
    void OneBackendAtATime();
    void ClosedWindowLeavesItsBackendRunning();
    void PathsOfAnyLanguageReachTheBackend();
};

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

PRISMO_TEST_MAIN(ConversionRunTest)
#include "conversionrun_test.moc"
