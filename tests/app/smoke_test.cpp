// The window on a real display: the platform that users have, not the one without a screen that the other tests use.

#include "tests/app/support/dialogdriver.h"
#include "tests/app/support/windowtest.h"

#include <QComboBox>
#include <QDir>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>

#include <filesystem>

using namespace windowtest;

class SmokeTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void WindowIsShownWithItsBackground();
    void WindowKeepsItsSizeWhenMaximised();
    void ButtonsOpenTheirDialogs();
    void StagedTreeStartsElsewhereWithItsOwnPlugins();
};

void SmokeTest::initTestCase()
{
    RemoveSettings();
    QCOMPARE(QGuiApplication::platformName(), QString("xcb"));
}

void SmokeTest::cleanupTestCase() { RemoveSettings(); }

void SmokeTest::WindowIsShownWithItsBackground()
{
    MainWindow window;
    window.setFixedSize(730, 450);
    window.show();
    window.InitAllChoice();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QImage background = QPixmap(":/MyImage/Image/bg1.png")
                                  .scaled(730, 450, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                  .toImage();
    // The window's own pixels as the server has them. They arrive some time after the first paint.
    QImage shown;
    QVERIFY(WaitUntil([&] {
        window.update();
        shown = window.screen()->grabWindow(window.winId()).toImage();
        return shown.size() == QSize(730, 450) && shown.pixel(400, 40) == background.pixel(400, 40);
    }));
    for (const QPoint point : { QPoint(40, 40), QPoint(700, 60), QPoint(5, 90), QPoint(600, 405), QPoint(20, 440) })
        QCOMPARE(QColor(shown.pixel(point)), QColor(background.pixel(point)));
    QCOMPARE(QColor(shown.pixel(80, 104)), QColor("#F0F0F0"));
}

void SmokeTest::WindowKeepsItsSizeWhenMaximised()
{
    MainWindow window;
    window.setFixedSize(730, 450);
    window.show();
    window.InitAllChoice();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.showMaximized();
    QCoreApplication::processEvents();
    QCOMPARE(window.size(), QSize(730, 450));
}

void SmokeTest::ButtonsOpenTheirDialogs()
{
    MainWindow window;
    window.setFixedSize(730, 450);
    window.show();
    window.InitAllChoice();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    DialogDriver driver;
    QStringList titles;
    for (const char* name :
        { "pushButton_Add", "pushButton_Setting", "pushButton_About", "pushButton_Convert", "pushButton_OutPutPath" }) {
        driver.Expect([&titles](QWidget* dialog) {
            QVERIFY(QTest::qWaitForWindowExposed(dialog));
            titles.append(dialog->windowTitle());
            dialog->close();
        });
        ClickButton(window, name);
    }
    QCOMPARE(
        titles, QStringList({ "Select one or more files to open", "Setting", "About ", "Warning", "Open directory" }));
    QVERIFY(driver.AllShown());
}

// A copy of the tree that the build stages, with a program in it that starts the application, looks, and ends.
void SmokeTest::StagedTreeStartsElsewhereWithItsOwnPlugins()
{
    const QTemporaryDir folder;
    const QString strContents = folder.filePath("moved/Prismo.app/Contents");
    QVERIFY(QDir().mkpath(strContents + "/MacOS"));
    std::filesystem::copy(
        PRISMO_STAGED_PLUGINS, (strContents + "/plugins").toStdString(), std::filesystem::copy_options::recursive);
    const QString strProgram = strContents + "/MacOS/Prismo";
    QVERIFY(QFile::copy(PRISMO_STARTUP_PROBE, strProgram));

    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(strProgram, {});
    QVERIFY(process.waitForFinished(60'000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    const QStringList notes = QString::fromLocal8Bit(process.readAllStandardOutput()).split('\n');
    QVERIFY(notes.contains("libraryPaths=" + strContents + "/plugins"));
    QVERIFY(notes.contains("size=730x450"));
    // An icon of its own size: the ICO plug-in was found, and it can only have been found there.
    QVERIFY(notes.contains("icon=48x48"));
}

PRISMO_TEST_MAIN(SmokeTest)
#include "smoke_test.moc"
