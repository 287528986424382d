#include "tests/app/support/conversiontest.h"

#include <QDir>
#include <QMetaMethod>
#include <QProcess>
#include <QSignalSpy>

using namespace windowtest;

class ConversionStopTest : public ConversionTest {
    Q_OBJECT

private slots:
    void StopPressCollectsAgainAndStartsFromTheTop();
    void StopPressWithoutFolderDoesNotStop();
    void StopStartsTheFirstRowOnceMore();
    void StopWithOneRowEndsTheRunOnceMore();
    void StopAfterAFailedStartReturnsToIdle();
    void RunAfterAStopStartsFromTheFirstRow();
    void StopPressStoresTheFolder();
    void KillProcessWithoutARunDoesNothing();
    void CallWithoutTheFlagStartsNothing();
};

void ConversionStopTest::StopPressCollectsAgainAndStartsFromTheTop()
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

void ConversionStopTest::StopPressWithoutFolderDoesNotStop()
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

void ConversionStopTest::StopStartsTheFirstRowOnceMore()
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

void ConversionStopTest::StopWithOneRowEndsTheRunOnceMore()
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

void ConversionStopTest::StopAfterAFailedStartReturnsToIdle()
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

void ConversionStopTest::RunAfterAStopStartsFromTheFirstRow()
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

void ConversionStopTest::StopPressStoresTheFolder()
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

void ConversionStopTest::KillProcessWithoutARunDoesNothing()
{
    m_window->KillProcess();
    QVERIFY(!Running());
    const QMetaObject& meta = MainWindow::staticMetaObject;
    QCOMPARE(meta.indexOfSlot("KillProcess()"), -1);
}

// What the end of a stopped run's last backend does: all preparations, and no start.
void ConversionStopTest::CallWithoutTheFlagStartsNothing()
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

PRISMO_TEST_MAIN(ConversionStopTest)
#include "conversionstop_test.moc"
