#include "tests/app/support/windowtest.h"

#include <QDir>
#include <QLibraryInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <map>
#include <memory>

using namespace windowtest;

class StartupTest : public QObject {
    Q_OBJECT

private slots:
    void init();

    void PluginListIsThePluginsFolderAlone();
    void WindowCannotBeResized();
    void ClosingTheWindowEndsWithTheLoopsResult();
    void MissingPluginsFolderLeavesTheLevelAbove();
    void InitialisationRunsBeforeTheLoop();
    void CommandLineIsLeftToTheToolkit();
    void TextsAreDarkOnLightOnADarkDesktop();

private:
    struct Outcome {
        int exitCode;
        std::map<QString, QString> notes;
    };
    Outcome Run(const QStringList& arguments = {}, const QStringList& environment = {})
    {
        QProcess process;
        process.setEnvironment(QProcess::systemEnvironment() + environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(m_strProgram, arguments);
        if (!process.waitForFinished(60'000) || process.exitStatus() != QProcess::NormalExit)
            qFatal("the application did not end by itself");
        Outcome outcome { process.exitCode(), {} };
        for (const QByteArray& line : process.readAllStandardOutput().split('\n')) {
            const QString strLine = QString::fromLocal8Bit(line);
            outcome.notes[strLine.section('=', 0, 0)] = strLine.section('=', 1);
        }
        return outcome;
    }
    QString Contents() { return m_folder->filePath("Prismo.app/Contents"); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_strProgram;
};

// A bundle of its own for each test, with the application's executable in it and the ICO plug-in where it belongs.
void StartupTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir().mkpath(Contents() + "/MacOS"));
    QVERIFY(QDir().mkpath(Contents() + "/plugins/imageformats"));
    QVERIFY(QFile::copy(QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/imageformats/libqico.so",
        Contents() + "/plugins/imageformats/libqico.so"));
    m_strProgram = Contents() + "/MacOS/Prismo";
    QVERIFY(QFile::copy(PRISMO_STARTUP_PROBE, m_strProgram));
}

void StartupTest::PluginListIsThePluginsFolderAlone()
{
    QCOMPARE(Run().notes.at("libraryPaths"), Contents() + "/plugins");
}

void StartupTest::WindowCannotBeResized()
{
    const Outcome outcome = Run();
    QCOMPARE(outcome.notes.at("visible"), QString("yes"));
    for (const char* name : { "size", "minimum", "maximum" })
        QCOMPARE(outcome.notes.at(name), QString("730x450"));
}

void StartupTest::ClosingTheWindowEndsWithTheLoopsResult()
{
    QCOMPARE(Run().exitCode, 0);
    QCOMPARE(Run({}, { "PRISMO_PROBE_EXIT=23" }).exitCode, 23);
}

void StartupTest::MissingPluginsFolderLeavesTheLevelAbove()
{
    QVERIFY(QDir(Contents() + "/plugins").removeRecursively());
    const Outcome outcome = Run();
    QCOMPARE(outcome.notes.at("libraryPaths"), Contents());
    QCOMPARE(outcome.exitCode, 0);
}

void StartupTest::InitialisationRunsBeforeTheLoop()
{
    const Outcome outcome = Run();
    QCOMPARE(outcome.notes.at("rows"), QString("0"));
    QCOMPARE(outcome.notes.at("columns"), QString("2"));
    QCOMPARE(outcome.notes.at("icon"), QString("48x48"));
}

void StartupTest::CommandLineIsLeftToTheToolkit()
{
    const Outcome outcome = Run({ "-style", "fusion", "job.pcl", "--whatever" });
    QCOMPARE(outcome.notes.at("rows"), QString("0"));
    QCOMPARE(outcome.exitCode, 0);
}

// The windows' own grounds are light whatever the desktop prefers, so their texts have to be dark.
void StartupTest::TextsAreDarkOnLightOnADarkDesktop()
{
    const Outcome light = Run();
    const Outcome dark = Run({}, { "PRISMO_PROBE_DARK=1" });
    for (const char* name : { "pushButton_Add", "label", "tableWidget", "lineEdit_OutPutPath" }) {
        QCOMPARE(dark.notes.at(name), light.notes.at(name));
        QVERIFY(dark.notes.at(name).section(' ', 0, 0).toInt() < 64);
        QVERIFY(dark.notes.at(name).section(' ', 1).toInt() > 192);
    }
}

PRISMO_TEST_MAIN(StartupTest)
#include "startup_test.moc"
