#include "tests/app/support/dialogdriver.h"
#include "tests/app/support/fakebackend.h"
#include "tests/app/support/windowtest.h"

#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include <memory>

using namespace windowtest;

class OutputFolderTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void CancellingEmptiesTheField();
    void DialogOpensAtItsDefaultWithoutARememberedFolder();
    void DialogOpensAtItsDefaultWhenTheRememberedFolderIsGone();
    void TypedFolderIsUsedWithoutTheDialog();
    void FolderButtonDoesNothingDuringAConversion();

    void FieldStartsEmptyWhateverIsRemembered();
    void DialogOpensAtTheRememberedFolder();
    void ChosenFolderIsShownAndNotStored();
    void DialogHasItsCaptionAndOptions();

private:
    QLineEdit* Field() { return Child<QLineEdit>(*m_window, "lineEdit_OutPutPath"); }
    // Where the dialog starts; it is cancelled.
    QString StartFolder()
    {
        QString strFolder;
        DialogDriver driver;
        driver.Expect([&strFolder](QWidget* dialog) {
            strFolder = qobject_cast<QFileDialog*>(dialog)->directory().absolutePath();
            dialog->close();
        });
        ClickButton(*m_window, "pushButton_OutPutPath");
        return strFolder;
    }
    static QString DefaultFolder() { return QDir::currentPath(); }

    QTemporaryDir m_folder;
    std::unique_ptr<MainWindow> m_window;
};

void OutputFolderTest::init()
{
    RemoveSettings();
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    m_window->InitAllChoice();
}

void OutputFolderTest::cleanup()
{
    m_window.reset();
    RemoveSettings();
}

void OutputFolderTest::CancellingEmptiesTheField()
{
    Field()->setText(m_folder.path());
    DialogDriver driver;
    driver.Expect([](QWidget* dialog) { static_cast<QDialog*>(qobject_cast<QFileDialog*>(dialog))->reject(); });
    ClickButton(*m_window, "pushButton_OutPutPath");
    QVERIFY(driver.AllShown());
    QCOMPARE(Field()->text(), QString());
    QCOMPARE(MainWindowProbe::OutputFolder(*m_window), QString());
}

void OutputFolderTest::DialogOpensAtItsDefaultWithoutARememberedFolder() { QCOMPARE(StartFolder(), DefaultFolder()); }

void OutputFolderTest::DialogOpensAtItsDefaultWhenTheRememberedFolderIsGone()
{
    const QString strGone = m_folder.filePath("gone");
    QVERIFY(QDir().mkdir(strGone));
    WriteSetting("SettingInfo/OutputFolder", strGone);
    QCOMPARE(StartFolder(), strGone);
    QVERIFY(QDir().rmdir(strGone));
    m_window = std::make_unique<MainWindow>();
    // The dialog itself remembers where it was last, as its own default.
    QVERIFY(StartFolder() != strGone);
}

void OutputFolderTest::TypedFolderIsUsedWithoutTheDialog()
{
    FakeBackend backend;
    const DialogDriver driver;
    {
        DialogDriver adding;
        adding.Expect(
            [this](QWidget* dialog) { ChooseInFileDialog(dialog, { MakeFile(m_folder.filePath("a.pcl"), 10) }); });
        ClickButton(*m_window, "pushButton_Add");
    }
    const QString strTyped = m_folder.filePath("typed");
    QVERIFY(QDir().mkpath(strTyped));
    QTest::keyClicks(Field(), strTyped);
    ClickButton(*m_window, "pushButton_Convert");
    QVERIFY(WaitUntil([this] { return !MainWindowProbe::Running(*m_window); }));
    QCOMPARE(driver.ShownCount(), 1); // adding
    QCOMPARE(backend.Runs().size(), std::size_t(1));
    QVERIFY(backend.Runs().at(0).arguments.contains(strTyped + "/a.bmp"));
    QCOMPARE(ReadSetting("SettingInfo/OutputFolder"), strTyped);
}

void OutputFolderTest::FolderButtonDoesNothingDuringAConversion()
{
    MainWindowProbe::Running(*m_window) = true;
    Field()->setText("/somewhere");
    const DialogDriver driver;
    ClickButton(*m_window, "pushButton_OutPutPath");
    QCOMPARE(driver.ShownCount(), 0);
    QCOMPARE(Field()->text(), QString("/somewhere"));
    MainWindowProbe::Running(*m_window) = false;
}

void OutputFolderTest::FieldStartsEmptyWhateverIsRemembered()
{
    WriteSetting("SettingInfo/OutputFolder", m_folder.path());
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    m_window->InitAllChoice();
    QCOMPARE(Field()->text(), QString());
}

void OutputFolderTest::DialogOpensAtTheRememberedFolder()
{
    WriteSetting("SettingInfo/OutputFolder", m_folder.path());
    QCOMPARE(StartFolder(), m_folder.path());
}

void OutputFolderTest::ChosenFolderIsShownAndNotStored()
{
    DialogDriver driver;
    driver.Expect([this](QWidget* dialog) { ChooseInFileDialog(dialog, { m_folder.path() }); });
    ClickButton(*m_window, "pushButton_OutPutPath");
    QCOMPARE(Field()->text(), m_folder.path());
    QCOMPARE(MainWindowProbe::OutputFolder(*m_window), m_folder.path());
    QVERIFY(ReadSetting("SettingInfo/OutputFolder").isNull());
}

void OutputFolderTest::DialogHasItsCaptionAndOptions()
{
    DialogDriver driver;
    driver.Expect([](QWidget* dialog) {
        const auto* fileDialog = qobject_cast<QFileDialog*>(dialog);
        QVERIFY(fileDialog);
        QCOMPARE(fileDialog->windowTitle(), QString("Open directory"));
        QCOMPARE(fileDialog->fileMode(), QFileDialog::Directory);
        QVERIFY(fileDialog->testOption(QFileDialog::ShowDirsOnly));
        QVERIFY(fileDialog->testOption(QFileDialog::DontResolveSymlinks));
        dialog->close();
    });
    ClickButton(*m_window, "pushButton_OutPutPath");
    QVERIFY(driver.AllShown());
}

PRISMO_TEST_MAIN(OutputFolderTest)
#include "outputfolder_test.moc"
