#include "tests/app/support/dialogdriver.h"
#include "tests/app/support/windowtest.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>

#include <memory>

using namespace windowtest;

class FileListTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void SameFileTwiceIsListedTwice();
    void EmptyFileHasNoSizeCell();
    void SizesAreDecimalKilobytes_data();
    void SizesAreDecimalKilobytes();
    void NextDialogOpensAtTheFirstAddedFile();
    void CancelledDialogChangesNothing();
    void RemoveTakesTheSelectedRowsAndTheCurrentOne();
    void RemoveOnAnEmptyTableDoesNothing();
    void ClearOnAnEmptyTableDoesNothing();
    void NothingHappensDuringAConversion();

    void DialogHasItsCaptionAndFilters();
    void AllFilesFilterTakesAnyFile();
    void RowsAreAppendedInTheDialogsOrder();
    void RemoveReadsTheSelectionAfterTheCurrentRowIsGone();
    void RemoveWithSelectionElsewhereTakesBoth();
    void ClearTakesAllRows();
    void PathUpToTheLastBackslashIsRemembered();
    void CellsCannotBeEdited();
    void LongPathsKeepTheirEnds();
    void SizesLineUpAtTheRight();
    void HeaderStaysAsItIsWhenARowIsSelected();

private:
    QTableWidget* Table() { return Child<QTableWidget>(*m_window, "tableWidget"); }
    QStringList Paths()
    {
        QStringList paths;
        for (int i = 0; i < Table()->rowCount(); ++i)
            paths.append(QFileInfo(Table()->item(i, 0)->text()).fileName());
        return paths;
    }
    QString Path(const char* name) { return m_folder->filePath(name); }
    void AddFiveFiles()
    {
        QStringList paths;
        for (const char* name : { "0.pcl", "1.pcl", "2.pcl", "3.pcl", "4.pcl", "5.pcl" })
            paths.append(MakeFile(Path(name), 10));
        AddRows(*m_window, paths);
    }
    void Select(std::initializer_list<int> rows)
    {
        Table()->clearSelection();
        for (const int row : rows) {
            for (const int column : { 0, 1 })
                Table()->selectionModel()->select(Table()->model()->index(row, column), QItemSelectionModel::Select);
        }
    }
    void SetCurrent(int iRow)
    {
        Table()->selectionModel()->setCurrentIndex(Table()->model()->index(iRow, 0), QItemSelectionModel::NoUpdate);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MainWindow> m_window;
};

void FileListTest::init()
{
    RemoveSettings();
    m_folder = std::make_unique<QTemporaryDir>();
    m_window = std::make_unique<MainWindow>();
    m_window->setFixedSize(730, 450);
    m_window->show();
    m_window->InitAllChoice();
}

void FileListTest::cleanup()
{
    m_window.reset();
    RemoveSettings();
}

void FileListTest::SameFileTwiceIsListedTwice()
{
    const QString strPath = MakeFile(Path("a.pcl"), 10);
    AddRows(*m_window, { strPath });
    AddRows(*m_window, { strPath });
    QCOMPARE(Table()->rowCount(), 2);
    QCOMPARE(Table()->item(0, 0)->text(), strPath);
    QCOMPARE(Table()->item(1, 0)->text(), strPath);
}

void FileListTest::EmptyFileHasNoSizeCell()
{
    AddRows(*m_window, { MakeFile(Path("empty.prn")) });
    QCOMPARE(Table()->rowCount(), 1);
    QVERIFY(!Table()->item(0, 1));
}

void FileListTest::SizesAreDecimalKilobytes_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("1,500") << qint64(1500) << "         1.500 KB";
    QTest::newRow("2,048") << qint64(2048) << "         2.048 KB";
    QTest::newRow("1,048,576") << qint64(1'048'576) << "      1048.576 KB";
    QTest::newRow("1") << qint64(1) << "         0.001 KB";
    QTest::newRow("just below 2 GiB") << qint64(0x7FFFFFFF) << "   2147483.647 KB";
    // A count of 32 bits with a sign: at 2 GiB it is negative, from 4 GiB on it begins anew.
    QTest::newRow("2 GiB") << qint64(0x80000000) << QString();
    QTest::newRow("4 GiB") << qint64(0x100000000) << QString();
    QTest::newRow("4 GiB and 1,500") << qint64(0x100000000) + 1500 << "         1.500 KB";
}

void FileListTest::SizesAreDecimalKilobytes()
{
    QFETCH(qint64, bytes);
    QFETCH(QString, text);
    AddRows(*m_window, { MakeFile(Path("a.pcl"), bytes) });
    if (text.isNull())
        QVERIFY(!Table()->item(0, 1));
    else
        QCOMPARE(Table()->item(0, 1)->text(), text);
}

void FileListTest::NextDialogOpensAtTheFirstAddedFile()
{
    const QString strFirst = MakeFile(Path("first.pcl"), 10);
    AddRows(*m_window, { strFirst, MakeFile(Path("second.pcl"), 10) });
    QCOMPARE(ReadSetting("SettingInfo/InputFolder"), strFirst);

    DialogDriver driver;
    driver.Expect([this](QWidget* dialog) {
        const auto* fileDialog = qobject_cast<QFileDialog*>(dialog);
        QCOMPARE(fileDialog->directory().absolutePath(), m_folder->path());
        QCOMPARE(Child<QLineEdit>(*dialog, "fileNameEdit")->text(), QString("first.pcl"));
        dialog->close();
    });
    ClickButton(*m_window, "pushButton_Add");
    QVERIFY(driver.AllShown());
}

void FileListTest::CancelledDialogChangesNothing()
{
    WriteSetting("SettingInfo/InputFolder", m_folder->path());
    DialogDriver driver;
    driver.Expect([](QWidget* dialog) { static_cast<QDialog*>(qobject_cast<QFileDialog*>(dialog))->reject(); });
    ClickButton(*m_window, "pushButton_Add");
    QVERIFY(driver.AllShown());
    QCOMPARE(Table()->rowCount(), 0);
    QCOMPARE(ReadSetting("SettingInfo/InputFolder"), m_folder->path());
}

void FileListTest::RemoveTakesTheSelectedRowsAndTheCurrentOne()
{
    AddFiveFiles();
    Select({ 2, 3, 4 });
    SetCurrent(4);
    ClickButton(*m_window, "pushButton_Remove");
    QCOMPARE(Paths(), QStringList({ "0.pcl", "1.pcl", "5.pcl" }));
}

void FileListTest::RemoveOnAnEmptyTableDoesNothing()
{
    ClickButton(*m_window, "pushButton_Remove");
    QCOMPARE(Table()->rowCount(), 0);
}

void FileListTest::ClearOnAnEmptyTableDoesNothing()
{
    ClickButton(*m_window, "pushButton_RemoveAll");
    QCOMPARE(Table()->rowCount(), 0);
}

void FileListTest::NothingHappensDuringAConversion()
{
    AddFiveFiles();
    Table()->selectRow(1);
    MainWindowProbe::Running(*m_window) = true;
    const DialogDriver driver;
    for (const char* name : { "pushButton_Add", "pushButton_Remove", "pushButton_RemoveAll" })
        ClickButton(*m_window, name);
    QCOMPARE(driver.ShownCount(), 0);
    QCOMPARE(Table()->rowCount(), 6);
    MainWindowProbe::Running(*m_window) = false;
}

void FileListTest::DialogHasItsCaptionAndFilters()
{
    DialogDriver driver;
    driver.Expect([](QWidget* dialog) {
        const auto* fileDialog = qobject_cast<QFileDialog*>(dialog);
        QVERIFY(fileDialog);
        QCOMPARE(fileDialog->windowTitle(), QString("Select one or more files to open"));
        QCOMPARE(fileDialog->fileMode(), QFileDialog::ExistingFiles);
        QCOMPARE(fileDialog->acceptMode(), QFileDialog::AcceptOpen);
        QCOMPARE(fileDialog->nameFilters(),
            QStringList({ "All Supported Files (*.pcl *.pxl *.px3 *.prn *.spl)", "PCL File (*.pcl)", "PXL File (*.pxl)",
                "PX3 File (*.px3)", "PRN File (*.prn)", "SPL File (*.spl)", "All Files (*.*)" }));
        QCOMPARE(fileDialog->selectedNameFilter(), fileDialog->nameFilters().at(0));
        dialog->close();
    });
    ClickButton(*m_window, "pushButton_Add");
    QVERIFY(driver.AllShown());
}

void FileListTest::AllFilesFilterTakesAnyFile()
{
    const QString strPath = MakeFile(Path("notes.txt"), 10);
    DialogDriver driver;
    driver.Expect([&strPath](QWidget* dialog) {
        qobject_cast<QFileDialog*>(dialog)->selectNameFilter("All Files (*.*)");
        ChooseInFileDialog(dialog, { strPath });
    });
    ClickButton(*m_window, "pushButton_Add");
    QCOMPARE(Table()->rowCount(), 1);
    QCOMPARE(Table()->item(0, 0)->text(), strPath);
}

void FileListTest::RowsAreAppendedInTheDialogsOrder()
{
    AddRows(*m_window, { MakeFile(Path("b.pcl"), 10), MakeFile(Path("a.pcl"), 10) });
    AddRows(*m_window, { MakeFile(Path("c.pxl"), 10) });
    QCOMPARE(Paths(), QStringList({ "b.pcl", "a.pcl", "c.pxl" }));
}

// Current row 1 goes first; rows 3 and 4 have moved up by then and are still the selected ones.
void FileListTest::RemoveReadsTheSelectionAfterTheCurrentRowIsGone()
{
    AddFiveFiles();
    Select({ 3, 4 });
    SetCurrent(1);
    ClickButton(*m_window, "pushButton_Remove");
    QCOMPARE(Paths(), QStringList({ "0.pcl", "2.pcl", "5.pcl" }));
}

void FileListTest::RemoveWithSelectionElsewhereTakesBoth()
{
    AddFiveFiles();
    Select({ 0 });
    SetCurrent(5);
    ClickButton(*m_window, "pushButton_Remove");
    QCOMPARE(Paths(), QStringList({ "1.pcl", "2.pcl", "3.pcl", "4.pcl" }));
}

void FileListTest::ClearTakesAllRows()
{
    AddFiveFiles();
    ClickButton(*m_window, "pushButton_RemoveAll");
    QCOMPARE(Table()->rowCount(), 0);
}

// Only a backslash separates the folder here, which elsewhere is a letter like any other.
void FileListTest::PathUpToTheLastBackslashIsRemembered()
{
    AddRows(*m_window, { MakeFile(Path("one\\two\\three.pcl"), 10) });
    QCOMPARE(ReadSetting("SettingInfo/InputFolder"), Path("one\\two"));
}

void FileListTest::CellsCannotBeEdited()
{
    AddFiveFiles();
    Table()->setCurrentCell(0, 0);
    QTest::mouseDClick(Table()->viewport(), Qt::LeftButton, {}, Table()->visualItemRect(Table()->item(0, 0)).center());
    QTest::keyClick(Table(), Qt::Key_F2);
    QVERIFY(Table()->viewport()->findChildren<QLineEdit*>().isEmpty());
}

// A path too long for its column is cut in the middle, on one line; the cell's text stays whole.
void FileListTest::LongPathsKeepTheirEnds()
{
    QString strFolder = m_folder->path();
    for (int i = 0; i < 6; ++i)
        strFolder += "/a-folder-with-a-long-name";
    QVERIFY(QDir().mkpath(strFolder));
    const QString strPath = MakeFile(strFolder + "/invoice.pcl", 10);
    AddRows(*m_window, { strPath });
    QCOMPARE(Table()->item(0, 0)->text(), strPath);
    QCOMPARE(Table()->textElideMode(), Qt::ElideMiddle);
    QVERIFY(!Table()->wordWrap());
}

// Three decimals and the unit: with the ends in a line the points are too.
void FileListTest::SizesLineUpAtTheRight()
{
    AddRows(*m_window, { MakeFile(Path("a.pcl"), 10), MakeFile(Path("b.pcl"), 12'345'678) });
    for (const int row : { 0, 1 })
        QCOMPARE(Table()->item(row, 1)->textAlignment(), static_cast<int>(Qt::AlignRight | Qt::AlignVCenter));
}

void FileListTest::HeaderStaysAsItIsWhenARowIsSelected()
{
    AddFiveFiles();
    QHeaderView* header = Table()->horizontalHeader();
    const QImage before = header->grab().toImage();
    Table()->selectRow(2);
    QCoreApplication::processEvents();
    QCOMPARE(header->grab().toImage(), before);
}

PRISMO_TEST_MAIN(FileListTest)
#include "filelist_test.moc"
