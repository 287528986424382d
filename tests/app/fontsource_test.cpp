#include "convert/fontsource.h"
#include "tests/app/support/fakebackend.h"
#include "tests/app/support/windowtest.h"

#include <QDir>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cstdlib>
#include <cstring>

#include <unistd.h>

using namespace windowtest;

class FontSourceTest : public QObject {
    Q_OBJECT

private slots:
    void FolderWithoutADotGivesTheParentsFonts();
    void BaseEndingInASeparatorGetsNoSecondOne_data();
    void BaseEndingInASeparatorGetsNoSecondOne();
    void BackslashesBecomeSlashes();
    void SettingItTwiceLeavesOneVariable();

    void BundleGivesTheFolderBesideIt();
    void EmptyBaseGivesTheRootsFonts();
    void EntryThatDoesNotFitIsNotInstalled();
    void LongestEntryThatFitsIsInstalled();
    void EntryIsWrittenToTheDebugOutput();
    void BackendInheritsTheVariable();
};

namespace {

QByteArrayList s_messages;

void NoteMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& strMessage)
{
    if (type == QtDebugMsg)
        s_messages.append(strMessage.toLatin1());
}

// Debug output of the code that runs while this lives.
struct DebugOutput {
    DebugOutput()
    {
        s_messages.clear();
        m_previous = qInstallMessageHandler(NoteMessage);
    }
    ~DebugOutput() { qInstallMessageHandler(m_previous); }
    QtMessageHandler m_previous;
};

} // namespace

void FontSourceTest::FolderWithoutADotGivesTheParentsFonts()
{
    QCOMPARE(FontSourceEntry("/opt/prismo/bin"), QByteArray("PCLFONTSOURCE=/opt/prismo/fonts/"));
}

void FontSourceTest::BaseEndingInASeparatorGetsNoSecondOne_data()
{
    QTest::addColumn<QString>("applicationFolder");
    QTest::addColumn<QByteArray>("entry");
    QTest::newRow("slash") << "/opt//bin" << QByteArray("PCLFONTSOURCE=/opt/fonts/");
    QTest::newRow("backslash") << "/opt\\/bin" << QByteArray("PCLFONTSOURCE=/opt/fonts/");
}

void FontSourceTest::BaseEndingInASeparatorGetsNoSecondOne()
{
    QFETCH(QString, applicationFolder);
    QFETCH(QByteArray, entry);
    QCOMPARE(FontSourceEntry(applicationFolder), entry);
}

void FontSourceTest::BackslashesBecomeSlashes()
{
    QCOMPARE(FontSourceEntry("C:\\Tools\\Prismo/bin"), QByteArray("PCLFONTSOURCE=C:/Tools/Prismo/fonts/"));
}

void FontSourceTest::SettingItTwiceLeavesOneVariable()
{
    MainWindow window;
    window.SetFontPath();
    const QByteArray first = qgetenv("PCLFONTSOURCE");
    QVERIFY(!first.isEmpty());
    window.SetFontPath();
    QCOMPARE(qgetenv("PCLFONTSOURCE"), first);
    int iCount = 0;
    for (char** entry = environ; *entry; ++entry)
        iCount += std::strncmp(*entry, "PCLFONTSOURCE=", 14) == 0 ? 1 : 0;
    QCOMPARE(iCount, 1);
}

void FontSourceTest::BundleGivesTheFolderBesideIt()
{
    QCOMPARE(
        FontSourceEntry("/Applications/Tool.app/Contents/MacOS"), QByteArray("PCLFONTSOURCE=/Applications/fonts/"));
    // This program lies in a bundle, too.
    MainWindow window;
    QVERIFY(window.SetFontPath());
    const QString strBundleParent = QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../../..");
    QCOMPARE(qgetenv("PCLFONTSOURCE"), (strBundleParent + "/fonts/").toLatin1());
}

void FontSourceTest::EmptyBaseGivesTheRootsFonts()
{
    QCOMPARE(FontSourceEntry("/Tool.app/Contents/MacOS"), QByteArray("PCLFONTSOURCE=/fonts/"));
    QCOMPARE(FontSourceEntry("/bin"), QByteArray("PCLFONTSOURCE=/fonts/"));
}

void FontSourceTest::EntryThatDoesNotFitIsNotInstalled()
{
    ::setenv("PCLFONTSOURCE", "/before/", 1);
    const DebugOutput output;
    const QByteArray entry = "PCLFONTSOURCE=/" + QByteArray(1024 - 15, 'x');
    QCOMPARE(entry.size(), 1024);
    QVERIFY(!InstallFontSource(entry));
    QVERIFY(!InstallFontSource(entry + QByteArray(100'000, 'y')));
    QCOMPARE(qgetenv("PCLFONTSOURCE"), QByteArray("/before/"));
    QCOMPARE(s_messages.size(), 2);
    QVERIFY(s_messages.at(0).startsWith("PCLFONTSOURCE not set"));
    QVERIFY(s_messages.at(0).contains("1025 bytes"));
    ::unsetenv("PCLFONTSOURCE");
}

void FontSourceTest::LongestEntryThatFitsIsInstalled()
{
    const QByteArray value = '/' + QByteArray(1023 - 15, 'x');
    QVERIFY(InstallFontSource("PCLFONTSOURCE=" + value));
    QCOMPARE(qgetenv("PCLFONTSOURCE"), value);
}

void FontSourceTest::EntryIsWrittenToTheDebugOutput()
{
    MainWindow window;
    const DebugOutput output;
    window.SetFontPath();
    QCOMPARE(s_messages, QByteArrayList({ "PCLFONTSOURCE=" + qgetenv("PCLFONTSOURCE") + '\n' }));
}

void FontSourceTest::BackendInheritsTheVariable()
{
    RemoveSettings();
    ::unsetenv("PCLFONTSOURCE");
    FakeBackend backend;
    const QTemporaryDir folder;
    MainWindow window;
    window.show();
    window.InitAllChoice();
    AddRows(window, { MakeFile(folder.filePath("a.pcl"), 10), MakeFile(folder.filePath("b.pcl"), 10) });
    Child<QLineEdit>(window, "lineEdit_OutPutPath")->setText(folder.path());
    ClickButton(window, "pushButton_Convert");
    QVERIFY(WaitUntil([&window] { return !MainWindowProbe::Running(window); }));
    const QByteArray expected = FontSourceEntry(QCoreApplication::applicationDirPath()).mid(14);
    QCOMPARE(backend.Runs().size(), std::size_t(2));
    for (const BackendRun& run : backend.Runs())
        QCOMPARE(run.fontSource, expected);
    RemoveSettings();
}

PRISMO_TEST_MAIN(FontSourceTest)
#include "fontsource_test.moc"
