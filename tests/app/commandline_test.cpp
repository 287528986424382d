#include "convert/commandline.h"
#include "tests/app/support/windowtest.h"

#include <QProcess>
#include <QTemporaryDir>

#include <map>
#include <memory>

using namespace windowtest;

class CommandLineTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanupTestCase();

    void HeightAloneWhenTheWidthIsZero();
    void ResolutionNeedsBothValues();
    void ResolutionNeedsItsSwitch();
    void CompressMinusOneIsLeftOutAndZeroIsSent_data();
    void CompressMinusOneIsLeftOutAndZeroIsSent();
    void FaxZeroAndMinusOneAreLeftOut_data();
    void FaxZeroAndMinusOneAreLeftOut();
    void BaseNameEndsBeforeTheLastDotOfTheName_data();
    void BaseNameEndsBeforeTheLastDotOfTheName();
    void TrailingSlashOfTheFolderIsKept();
    void EmptyFolderGivesAPathFromTheRoot();
    void QuoteInAPathBreaksTheSplitting();

    void WorkedExampleIsExact();
    void EmptySettingsGiveTheDepthOnly();
    void SplitLineKeepsBlanksInPaths();
    void UnknownValuesLeaveTheirPieceOut();
    void UnknownFormatNamesTheOutputNULL();
    void PageSizesAreNotReadWithoutTheirSwitch();
    void SettingsAreReadAgainForEachCall();

private:
    static void Store(const std::map<QString, QString>& values)
    {
        for (const auto& [key, value] : values)
            WriteSetting("SettingInfo/" + key, value);
    }
    std::unique_ptr<MainWindow> m_window;
};

void CommandLineTest::init()
{
    RemoveSettings();
    if (!m_window)
        m_window = std::make_unique<MainWindow>();
}

void CommandLineTest::cleanupTestCase()
{
    m_window.reset();
    RemoveSettings();
}

void CommandLineTest::HeightAloneWhenTheWidthIsZero()
{
    Store({ { "ResizePage", "TRUE" }, { "PageSizeX", "0" }, { "PageSizeY", "500" } });
    QCOMPARE(m_window->GetCmdArg(), QString(R"( "-gh" "500" "-b" "1")"));
    Store({ { "PageSizeX", "400" }, { "PageSizeY", "-1" } });
    QCOMPARE(m_window->GetCmdArg(), QString(R"( "-gw" "400" "-b" "1")"));
}

void CommandLineTest::ResolutionNeedsBothValues()
{
    Store({ { "ResizeResolution", "TRUE" }, { "ResolutionX", "300" }, { "ResolutionY", "0" } });
    QCOMPARE(m_window->GetCmdArg(), QString(R"("-b" "1")"));
    Store({ { "ResolutionY", "200" } });
    QCOMPARE(m_window->GetCmdArg(), QString(R"( "-r" "300x200" "-b" "1")"));
}

void CommandLineTest::ResolutionNeedsItsSwitch()
{
    for (const char* off : { "FALSE", "true", "1", "" }) {
        Store({ { "ResizeResolution", off }, { "ResolutionX", "300" }, { "ResolutionY", "300" } });
        QCOMPARE(m_window->GetCmdArg(), QString(R"("-b" "1")"));
    }
}

void CommandLineTest::CompressMinusOneIsLeftOutAndZeroIsSent_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("piece");
    QTest::newRow("-1") << "-1"
                        << "";
    QTest::newRow("0") << "0"
                       << R"( "-c" "0" )";
    QTest::newRow("7") << "7"
                       << R"( "-c" "7" )";
    QTest::newRow("8") << "8"
                       << "";
    QTest::newRow("no number") << "abc"
                               << R"( "-c" "0" )";
}

// Whatever the format is: the default here is ".bmp".
void CommandLineTest::CompressMinusOneIsLeftOutAndZeroIsSent()
{
    QFETCH(QString, stored);
    QFETCH(QString, piece);
    Store({ { "CompressMethod", stored } });
    QCOMPARE(m_window->GetCmdArg(), R"("-b" "1")" + piece);
}

void CommandLineTest::FaxZeroAndMinusOneAreLeftOut_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("piece");
    QTest::newRow("0") << "0"
                       << "";
    QTest::newRow("-1") << "-1"
                        << "";
    QTest::newRow("1") << "1"
                       << R"( "-faxtif" "0" )";
    QTest::newRow("2") << "2"
                       << R"( "-faxtif" "1" )";
    QTest::newRow("3") << "3"
                       << "";
    QTest::newRow("01") << "01"
                        << "";
}

void CommandLineTest::FaxZeroAndMinusOneAreLeftOut()
{
    QFETCH(QString, stored);
    QFETCH(QString, piece);
    Store({ { "FaxTiff", stored } });
    QCOMPARE(m_window->GetCmdArg(), R"("-b" "1")" + piece);
}

void CommandLineTest::BaseNameEndsBeforeTheLastDotOfTheName_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("output");
    QTest::newRow("plain") << "/a/b/file.pcl"
                           << "/out/file.png";
    QTest::newRow("two dots") << "/a/b/invoice.2024.pcl"
                              << "/out/invoice.2024.png";
    QTest::newRow("no dot") << "/a/b/file"
                            << "/out/file.png";
    QTest::newRow("hidden") << "/a/b/.hidden"
                            << "/out/.png";
    QTest::newRow("dot in the folder only") << "C.D/x"
                                            << "/out/x.png";
    QTest::newRow("no folder") << "file.prn"
                               << "/out/file.png";
    QTest::newRow("dot at the end") << "/a/file."
                                    << "/out/file.png";
}

void CommandLineTest::BaseNameEndsBeforeTheLastDotOfTheName()
{
    QFETCH(QString, input);
    QFETCH(QString, output);
    QCOMPARE(OutputFilePath("/out", input, ".png"), output);
}

void CommandLineTest::TrailingSlashOfTheFolderIsKept()
{
    QCOMPARE(OutputFilePath("/out/", "/a/x.pcl", ".bmp"), QString("/out//x.bmp"));
}

void CommandLineTest::EmptyFolderGivesAPathFromTheRoot()
{
    QCOMPARE(OutputFilePath(QString(), "/a/x.pcl", ".bmp"), QString("/x.bmp"));
}

void CommandLineTest::QuoteInAPathBreaksTheSplitting()
{
    const QString strInput = "/in/two \"big\" words.pcl";
    const QStringList words = QProcess::splitCommand(BackendCommandLine("/app/quillrip", {}, "/out/x.bmp", strInput));
    QVERIFY(!words.contains(strInput));
}

void CommandLineTest::WorkedExampleIsExact()
{
    Store({ { "Format", "4" }, { "BitCount", "0" }, { "CompressMethod", "6" }, { "FaxTiff", "2" },
        { "ResizePage", "TRUE" }, { "PageSizeX", "850" }, { "PageSizeY", "1100" }, { "ResizeResolution", "TRUE" },
        { "ResolutionX", "204" }, { "ResolutionY", "196" } });
    const QString strOptions = m_window->GetCmdArg();
    QCOMPARE(MainWindowProbe::Extension(*m_window), QString(".tif"));
    const QString strInput = "/home/user/jobs/invoice.2024.pcl";
    const QString strOutput = OutputFilePath("/home/user/out", strInput, MainWindowProbe::Extension(*m_window));
    QCOMPARE(BackendCommandLine("/home/user/app/quillrip", strOptions, strOutput, strInput),
        QString(R"("/home/user/app/quillrip"  "-gw" "850"  "-gh" "1100"  "-r" "204x196" "-b" "1" "-c" "6"  )"
                R"("-faxtif" "1"  "-writelocal" "n"  "-o" "/home/user/out/invoice.2024.tif"  )"
                R"("-i" "/home/user/jobs/invoice.2024.pcl" )"));
}

void CommandLineTest::EmptySettingsGiveTheDepthOnly()
{
    const QString strOptions = m_window->GetCmdArg();
    QCOMPARE(strOptions, QString(R"("-b" "1")"));
    QCOMPARE(MainWindowProbe::Extension(*m_window), QString(".bmp"));
    const QString strInput = "/home/user/jobs/invoice.2024.pcl";
    const QString strOutput = OutputFilePath("/home/user/out", strInput, ".bmp");
    QCOMPARE(BackendCommandLine("/home/user/app/quillrip", strOptions, strOutput, strInput),
        QString(R"("/home/user/app/quillrip" "-b" "1" "-writelocal" "n"  "-o" "/home/user/out/invoice.2024.bmp"  )"
                R"("-i" "/home/user/jobs/invoice.2024.pcl" )"));
}

void CommandLineTest::SplitLineKeepsBlanksInPaths()
{
    Store({ { "ResizePage", "TRUE" }, { "PageSizeX", "850" }, { "PageSizeY", "1100" }, { "BitCount", "2" } });
    const QString strLine
        = BackendCommandLine("/my app/quillrip", m_window->GetCmdArg(), "/my out/a b.bmp", "/my in/a b.pcl");
    QCOMPARE(QProcess::splitCommand(strLine),
        QStringList({ "/my app/quillrip", "-gw", "850", "-gh", "1100", "-b", "24", "-writelocal", "n", "-o",
            "/my out/a b.bmp", "-i", "/my in/a b.pcl" }));
}

void CommandLineTest::UnknownValuesLeaveTheirPieceOut()
{
    Store({ { "BitCount", "3" }, { "CompressMethod", "99" }, { "FaxTiff", "x" } });
    QCOMPARE(m_window->GetCmdArg(), QString());
}

void CommandLineTest::UnknownFormatNamesTheOutputNULL()
{
    Store({ { "Format", "7" } });
    m_window->GetCmdArg();
    QCOMPARE(MainWindowProbe::Extension(*m_window), QString("NULL"));
    QCOMPARE(OutputFilePath("/out", "/a/invoice.2024.pcl", MainWindowProbe::Extension(*m_window)),
        QString("/out/invoice.2024NULL"));
}

void CommandLineTest::PageSizesAreNotReadWithoutTheirSwitch()
{
    Store({ { "ResizePage", "FALSE" }, { "PageSizeX", "850" }, { "PageSizeY", "1100" } });
    QCOMPARE(m_window->GetCmdArg(), QString(R"("-b" "1")"));
    // What is no number counts as 0.
    Store({ { "ResizePage", "TRUE" }, { "PageSizeX", "wide" }, { "ResizeResolution", "TRUE" },
        { "ResolutionX", "fine" } });
    QCOMPARE(m_window->GetCmdArg(), QString(R"( "-gh" "1100" "-b" "1")"));
    // With the switch and no sizes, both default to 100.
    RemoveSettings();
    Store({ { "ResizePage", "TRUE" }, { "ResizeResolution", "TRUE" } });
    QCOMPARE(m_window->GetCmdArg(), QString(R"( "-gw" "100"  "-gh" "100"  "-r" "100x100" "-b" "1")"));
}

void CommandLineTest::SettingsAreReadAgainForEachCall()
{
    Store({ { "BitCount", "1" }, { "Format", "3" } });
    QCOMPARE(m_window->GetCmdArg(), QString(R"("-b" "8")"));
    QCOMPARE(MainWindowProbe::Extension(*m_window), QString(".png"));
    Store({ { "BitCount", "2" }, { "Format", "0" } });
    QCOMPARE(m_window->GetCmdArg(), QString(R"("-b" "24")"));
    QCOMPARE(MainWindowProbe::Extension(*m_window), QString(".jpg"));
}

PRISMO_TEST_MAIN(CommandLineTest)
#include "commandline_test.moc"
