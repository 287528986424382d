#include "tests/app/support/conversiontest.h"

#include <QProcess>
#include <QSignalSpy>

using namespace windowtest;

class ConversionRefusalTest : public ConversionTest {
    Q_OBJECT

private slots:
    void EmptyListIsRefusedWhateverTheButtonSays_data();
    void EmptyListIsRefusedWhateverTheButtonSays();
    void MissingFolderIsRefused();
    void PlainFilePassesAsFolder();
    void OutputFolderIsStoredEvenWithoutABackend();
    void MissingBackendLeavesTheFlagSetAndTheListFrozen_data();
    void MissingBackendLeavesTheFlagSetAndTheListFrozen();
    void BackendThatCannotStartLeavesTheRunRunning();
    void BackendThatVanishesDuringARunLeavesItRunning();
    void OtherButtonTextOnlyChecksAndSaves();
};

void ConversionRefusalTest::EmptyListIsRefusedWhateverTheButtonSays_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("idle") << "Convert";
    QTest::newRow("running") << "Stop ";
    QTest::newRow("other") << "Umwandeln";
}

void ConversionRefusalTest::EmptyListIsRefusedWhateverTheButtonSays()
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

void ConversionRefusalTest::MissingFolderIsRefused()
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

void ConversionRefusalTest::PlainFilePassesAsFolder()
{
    Prepare(1);
    Folder()->setText(m_paths.at(0));
    const DialogDriver driver;
    Press();
    QVERIFY(WaitForEnd());
    QCOMPARE(driver.ShownCount(), 0);
    QCOMPARE(m_backend->Runs().size(), std::size_t(1));
}

void ConversionRefusalTest::OutputFolderIsStoredEvenWithoutABackend()
{
    Prepare(1);
    m_backend->Remove();
    Press();
    QCOMPARE(ReadSetting("SettingInfo/OutputFolder"), m_folder->path());
}

void ConversionRefusalTest::MissingBackendLeavesTheFlagSetAndTheListFrozen_data()
{
    QTest::addColumn<bool>("empty");
    QTest::newRow("missing") << false;
    QTest::newRow("empty") << true;
}

void ConversionRefusalTest::MissingBackendLeavesTheFlagSetAndTheListFrozen()
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

void ConversionRefusalTest::BackendThatCannotStartLeavesTheRunRunning()
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

void ConversionRefusalTest::BackendThatVanishesDuringARunLeavesItRunning()
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

void ConversionRefusalTest::OtherButtonTextOnlyChecksAndSaves()
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

PRISMO_TEST_MAIN(ConversionRefusalTest)
#include "conversionrefusal_test.moc"
