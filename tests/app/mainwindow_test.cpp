#include "tests/app/support/dialogdriver.h"
#include "tests/app/support/fakebackend.h"
#include "tests/app/support/formtest.h"
#include "tests/app/support/windowtest.h"
#include "ui/aboutdlg.h"
#include "ui_mainwindow.h"

#include <QDir>
#include <QMenuBar>
#include <QMetaMethod>
#include <QPainter>
#include <QSignalSpy>
#include <QStatusBar>
#include <QStyleOptionButton>
#include <QTemporaryDir>
#include <QToolBar>

#include <memory>

using namespace windowtest;

class MainWindowTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void SizeStays730By450();
    void HoverDropsTheRightEdgeOnTheLeftAndTheTopEdgeOnConvert();
    void SelectingRowsChangesNothingElse();
    void AboutAndSettingOpenDuringAConversion();

    void MembersComeInOrder();
    void ChildrenAndActionsAreCreatedInOrder();
    void ActionsHaveTextsAndNoEffect();
    void WidgetsHaveTheirGeometry_data();
    void WidgetsHaveTheirGeometry();
    void ButtonsHaveTheirTextsIconsAndCursor_data();
    void ButtonsHaveTheirTextsIconsAndCursor();
    void StyleSheetsAreKeptByteForByte();
    void OutputRowIsOneBoxWithoutMargins();
    void TableIsReadOnlyWithoutRowNumbers();
    void ProgressBarHidesItsText();
    void WindowHasTitleIconNoBars();
    void NameIsSetUnlessTheCallerGaveOne();
    void InitAllChoiceShapesTheTable();
    void InitAllChoiceBringsTheWindowToIdle();
    void SlotsComeInDeclarationOrder();
    void EveryConnectionExists();
    void BackgroundIsThePictureScaledToTheWindow();
    void ButtonsAreNeverDisabled();
    void TextsAreAskedForInTheWindowsName();

private:
    void Open()
    {
        m_window = std::make_unique<MainWindow>();
        m_window->setFixedSize(730, 450);
        m_window->show();
        m_window->InitAllChoice();
    }
    QPushButton* Button(const char* name) { return Child<QPushButton>(*m_window, name); }
    QTableWidget* Table() { return Child<QTableWidget>(*m_window, "tableWidget"); }

    std::unique_ptr<MainWindow> m_window;
    // The form alone, as setupUi leaves it.
    std::unique_ptr<QMainWindow> m_bare;
    Ui_MainWindow m_form;
};

namespace {

const char kStyleConvert[] = "QPushButton{\n"
                             "background-color:#F0F0F0;\n"
                             "font-weight:normal;\n"
                             "border-left:1px solid #000000;\n"
                             "border-top:1px solid #000000;\n"
                             "border-right:1px solid #000000;\n"
                             "border-bottom:1px solid #000000;\n"
                             "border-radius:2px;\n"
                             "}\n"
                             "QPushButton:hover{\n"
                             "border-left:2px solid #C2C2C2;\n"
                             "border-top:0px solid #000000;\n"
                             "border-right:2px solid #C2C2C2;\n"
                             "border-bottom:2px solid #C2C2C2;\n"
                             "background-color:#FFFFFF;\n"
                             "}\n";
const char kStyleLeftColumn[] = "QPushButton{\n"
                                "background-color:#F0F0F0;\n"
                                "font-weight:normal;\n"
                                "border-left:1px solid #000000;\n"
                                "border-top:1px solid #000000;\n"
                                "border-right:1px solid #000000;\n"
                                "border-bottom:1px solid #000000;\n"
                                "border-radius:2px;\n"
                                "}\n"
                                "QPushButton:hover{\n"
                                "border-left:2px solid #C2C2C2;\n"
                                "border-top:2px solid #C2C2C2;\n"
                                "border-right:0px solid #000000;\n"
                                "border-bottom:2px solid #C2C2C2;\n"
                                "background-color:#FFFFFF;\n"
                                "}\n"
                                "\n"
                                "QPushButton:active {\n"
                                "\n"
                                "}\n"
                                "QPushBUtton:focus{\n"
                                "\n"
                                "}";
const char kStyleTable[] = "border-left:1px solid #000000;\n"
                           "border-top:1px solid #000000;\n"
                           "border-right:1px solid #000000;\n"
                           "border-bottom:1px solid #000000;\n"
                           "border-radius:2px;";
const char* const kLeftColumn[]
    = { "pushButton_Add", "pushButton_Remove", "pushButton_RemoveAll", "pushButton_Setting", "pushButton_About" };

// What the button paints when the style believes the mouse to be over it, or not.
QImage Painted(QPushButton* button, bool bHover)
{
    QImage image(button->size(), QImage::Format_RGB32);
    image.fill(Qt::magenta);
    QPainter painter(&image);
    QStyleOptionButton option;
    option.initFrom(button);
    option.state.setFlag(QStyle::State_MouseOver, bHover);
    option.features = QStyleOptionButton::None;
    button->style()->drawControl(QStyle::CE_PushButtonBevel, &option, &painter, button);
    return image;
}

} // namespace

void MainWindowTest::init()
{
    RemoveSettings();
    m_bare = std::make_unique<QMainWindow>();
    m_form.setupUi(m_bare.get());
}

void MainWindowTest::cleanup()
{
    m_window.reset();
    m_bare.reset();
    RemoveSettings();
}

void MainWindowTest::SizeStays730By450()
{
    Open();
    QCOMPARE(m_window->size(), QSize(730, 450));
    m_window->resize(900, 700);
    QCOMPARE(m_window->size(), QSize(730, 450));
    QCOMPARE(m_window->minimumSize(), QSize(730, 450));
    QCOMPARE(m_window->maximumSize(), QSize(730, 450));
}

void MainWindowTest::HoverDropsTheRightEdgeOnTheLeftAndTheTopEdgeOnConvert()
{
    Open();
    const QRgb black = qRgb(0, 0, 0);
    const QRgb grey = qRgb(0xC2, 0xC2, 0xC2);
    const QRgb white = qRgb(255, 255, 255);
    const QRgb face = qRgb(0xF0, 0xF0, 0xF0);

    for (const char* name : kLeftColumn) {
        QPushButton* button = Button(name);
        const int right = button->width() - 1;
        const int bottom = button->height() - 1;
        const int midX = button->width() / 2;
        const int midY = button->height() / 2;

        const QImage idle = Painted(button, false);
        QCOMPARE(idle.pixel(0, midY), black);
        QCOMPARE(idle.pixel(midX, 0), black);
        QCOMPARE(idle.pixel(right, midY), black);
        QCOMPARE(idle.pixel(midX, bottom), black);
        QCOMPARE(idle.pixel(1, midY), face);

        const QImage hover = Painted(button, true);
        for (const int edge : { 0, 1 }) {
            QCOMPARE(hover.pixel(edge, midY), grey);
            QCOMPARE(hover.pixel(midX, edge), grey);
            QCOMPARE(hover.pixel(midX, bottom - edge), grey);
        }
        QCOMPARE(hover.pixel(right, midY), white);
        QCOMPARE(hover.pixel(2, midY), white);
    }

    QPushButton* convert = Button("pushButton_Convert");
    const int right = convert->width() - 1;
    const int bottom = convert->height() - 1;
    const QImage hover = Painted(convert, true);
    for (const int edge : { 0, 1 }) {
        QCOMPARE(hover.pixel(edge, bottom / 2), grey);
        QCOMPARE(hover.pixel(right - edge, bottom / 2), grey);
        QCOMPARE(hover.pixel(right / 2, bottom - edge), grey);
    }
    QCOMPARE(hover.pixel(right / 2, 0), white);
}

void MainWindowTest::SelectingRowsChangesNothingElse()
{
    Open();
    const QTemporaryDir folder;
    AddRows(*m_window, { MakeFile(folder.filePath("a.pcl"), 1000), MakeFile(folder.filePath("b.pcl"), 2000) });
    const QPixmap rightBefore = m_window->grab(QRect(0, 352, 730, 98));
    const QPixmap leftBefore = m_window->grab(QRect(0, 0, 150, 450));
    Table()->selectRow(1);
    Table()->selectAll();
    QCoreApplication::processEvents();
    QCOMPARE(m_window->grab(QRect(0, 352, 730, 98)).toImage(), rightBefore.toImage());
    QCOMPARE(m_window->grab(QRect(0, 0, 150, 450)).toImage(), leftBefore.toImage());
    QCOMPARE(Table()->rowCount(), 2);
    QVERIFY(!MainWindowProbe::Running(*m_window));
}

void MainWindowTest::AboutAndSettingOpenDuringAConversion()
{
    FakeBackend backend;
    backend.WaitAtGate();
    const QTemporaryDir folder;
    Open();
    AddRows(*m_window, { MakeFile(folder.filePath("a.pcl"), 10) });
    Child<QLineEdit>(*m_window, "lineEdit_OutPutPath")->setText(folder.path());
    Click(Button("pushButton_Convert"));
    QVERIFY(backend.WaitForRuns(1));

    DialogDriver driver;
    driver.Expect([](QWidget* dialog) {
        QVERIFY(qobject_cast<AboutDlg*>(dialog));
        dialog->close();
    });
    Click(Button("pushButton_About"));
    driver.Expect([](QWidget* dialog) {
        QVERIFY(qobject_cast<SettingDialog*>(dialog));
        dialog->close();
    });
    Click(Button("pushButton_Setting"));
    QVERIFY(driver.AllShown());
    QVERIFY(MainWindowProbe::Running(*m_window));
    QCOMPARE(Button("pushButton_Convert")->text(), QString("Stop "));

    backend.OpenGate();
    QVERIFY(WaitUntil([this] { return !MainWindowProbe::Running(*m_window); }));
}

void MainWindowTest::MembersComeInOrder()
{
    QCOMPARE(formtest::ClassesAndNames(formtest::Members(m_form)),
        QStringList({ "QAction actionNew", "QAction actionOpen", "QAction actionDOC", "QAction actionRTF",
            "QAction actionPDF", "QAction actionHTML", "QAction actionXLS", "QAction actionTXT", "QAction actionCSV",
            "QAction actionJPEG", "QAction actionTIFF", "QAction actionODT", "QAction actionODS", "QAction actionXML",
            "QAction actionXLSX", "QAction actionSQL", "QAction actionDBF", "QAction actionDIFF", "QAction actionSYLK",
            "QAction actionLaTex", "QAction actionLotus", "QAction actionRemove_All", "QWidget centralWidget",
            "QPushButton pushButton_Convert", "QTableWidget tableWidget", "QProgressBar progressBarA",
            "QPushButton pushButton_Add", "QPushButton pushButton_Remove", "QPushButton pushButton_RemoveAll",
            "QPushButton pushButton_Setting", "QPushButton pushButton_About", "QPushButton pushButton_OutPutPath",
            "QWidget layoutWidget", "QHBoxLayout horizontalLayout", "QLabel label", "QLineEdit lineEdit_OutPutPath" }));
}

void MainWindowTest::ChildrenAndActionsAreCreatedInOrder()
{
    const QList<QObject*> members = formtest::Members(m_form);
    QStringList names = formtest::Names(members);
    QCOMPARE(formtest::ChildrenAmong(m_bare.get(), members), names.mid(0, 23));
    QCOMPARE(formtest::ChildrenAmong(m_form.centralWidget, members), names.mid(23, 10));
    QCOMPARE(formtest::ChildrenAmong(m_form.layoutWidget, members), names.mid(33));
    QCOMPARE(m_bare->centralWidget(), m_form.centralWidget);
}

void MainWindowTest::ActionsHaveTextsAndNoEffect()
{
    const QStringList texts { "Add", "Remove", "DOC", "RTF", "PDF", "HTML", "XLS", "TXT", "CSV", "JPEG", "TIFF", "ODT",
        "ODS", "XML", "XLSX", "SQL", "DBF", "DIFF", "SYLK", "LaTex", "Lotus", "Remove All" };
    const QList<QObject*> members = formtest::Members(m_form);
    for (int i = 0; i < texts.size(); ++i) {
        const auto* action = qobject_cast<QAction*>(members.at(i));
        QVERIFY(action);
        QCOMPARE(action->text(), texts.at(i));
        QCOMPARE(action->parent(), m_bare.get());
        QVERIFY(action->shortcut().isEmpty());
        QVERIFY(action->associatedObjects().isEmpty());
        QCOMPARE(action->icon().isNull(), i != 0);
    }
    QCOMPARE(
        m_form.actionNew->icon().pixmap(48, 48).toImage(), QIcon(":/MyIco/Image/Main.ico").pixmap(48, 48).toImage());
}

void MainWindowTest::WidgetsHaveTheirGeometry_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QRect>("geometry");
    QTest::newRow("convert") << "pushButton_Convert" << QRect(550, 350, 151, 50);
    QTest::newRow("table") << "tableWidget" << QRect(150, 80, 571, 271);
    QTest::newRow("progress") << "progressBarA" << QRect(10, 413, 711, 20);
    QTest::newRow("add") << "pushButton_Add" << QRect(10, 100, 141, 40);
    QTest::newRow("remove") << "pushButton_Remove" << QRect(10, 150, 141, 40);
    QTest::newRow("clear") << "pushButton_RemoveAll" << QRect(10, 200, 141, 40);
    QTest::newRow("setting") << "pushButton_Setting" << QRect(10, 250, 141, 40);
    QTest::newRow("about") << "pushButton_About" << QRect(10, 300, 141, 40);
    QTest::newRow("folder") << "pushButton_OutPutPath" << QRect(467, 362, 36, 32);
    QTest::newRow("output row") << "layoutWidget" << QRect(63, 364, 401, 31);
}

void MainWindowTest::WidgetsHaveTheirGeometry()
{
    QFETCH(QString, name);
    QFETCH(QRect, geometry);
    QCOMPARE(m_bare->findChild<QWidget*>(name)->geometry(), geometry);
    Open();
    const auto* widget = m_window->findChild<QWidget*>(name);
    QCOMPARE(widget->geometry(), geometry);
    QCOMPARE(widget->parentWidget(), m_window->centralWidget());
}

void MainWindowTest::ButtonsHaveTheirTextsIconsAndCursor_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QSize>("iconSize");
    QTest::newRow("convert") << "pushButton_Convert"
                             << "Convert"
                             << "" << QSize(42, 42);
    QTest::newRow("add") << "pushButton_Add"
                         << "Add File(s)"
                         << "plus_orange" << QSize(32, 32);
    QTest::newRow("remove") << "pushButton_Remove"
                            << "Remove    "
                            << "delete" << QSize(32, 32);
    QTest::newRow("clear") << "pushButton_RemoveAll"
                           << "Clear       "
                           << "deleteall" << QSize(32, 32);
    QTest::newRow("setting") << "pushButton_Setting"
                             << "Setting   "
                             << "settings" << QSize(32, 32);
    QTest::newRow("about") << "pushButton_About"
                           << "About     "
                           << "get_info" << QSize(32, 32);
    QTest::newRow("folder") << "pushButton_OutPutPath"
                            << ""
                            << "folder_open" << QSize(32, 32);
}

void MainWindowTest::ButtonsHaveTheirTextsIconsAndCursor()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QFETCH(QString, icon);
    QFETCH(QSize, iconSize);
    const auto* button = m_bare->findChild<QPushButton*>(name);
    QCOMPARE(button->text(), text);
    QCOMPARE(button->iconSize(), iconSize);
    QCOMPARE(button->cursor().shape(), Qt::PointingHandCursor);
    if (icon.isEmpty()) {
        QVERIFY(button->icon().isNull());
    } else {
        const QImage expected = QPixmap(":/MyIco/Image/" + icon + ".ico").toImage();
        QVERIFY(!expected.isNull());
        QCOMPARE(button->icon().pixmap(48, 48).toImage(), expected);
    }
}

void MainWindowTest::StyleSheetsAreKeptByteForByte()
{
    QCOMPARE(m_form.pushButton_Convert->styleSheet(), QString(kStyleConvert));
    for (const char* name : kLeftColumn)
        QCOMPARE(Child<QPushButton>(*m_bare, name)->styleSheet(), QString(kStyleLeftColumn));
    QCOMPARE(m_form.tableWidget->styleSheet(), QString(kStyleTable));
    QCOMPARE(m_form.pushButton_OutPutPath->styleSheet(), QString("border:0px solid #000000;"));
    QCOMPARE(m_form.lineEdit_OutPutPath->styleSheet(), QString("border:1xp blue solid;"));
    QCOMPARE(m_bare->styleSheet(), QString());
    QCOMPARE(m_form.label->styleSheet(), QString());
    QCOMPARE(m_form.progressBarA->styleSheet(), QString());
    QCOMPARE(m_form.layoutWidget->styleSheet(), QString());
    QCOMPARE(m_form.centralWidget->styleSheet(), QString());
}

void MainWindowTest::OutputRowIsOneBoxWithoutMargins()
{
    QCOMPARE(m_form.layoutWidget->layout(), m_form.horizontalLayout);
    QCOMPARE(m_form.horizontalLayout->spacing(), 6);
    QCOMPARE(m_form.horizontalLayout->contentsMargins(), QMargins(0, 0, 0, 0));
    QCOMPARE(m_form.horizontalLayout->count(), 2);
    QCOMPARE(m_form.horizontalLayout->itemAt(0)->widget(), m_form.label);
    QCOMPARE(m_form.horizontalLayout->itemAt(1)->widget(), m_form.lineEdit_OutPutPath);
    for (const int i : { 0, 1 }) {
        QCOMPARE(m_form.horizontalLayout->stretch(i), 0);
        QCOMPARE(m_form.horizontalLayout->itemAt(i)->alignment(), Qt::Alignment());
    }
    QCOMPARE(m_form.label->text(), QString("Output Path:"));
    QCOMPARE(m_form.lineEdit_OutPutPath->text(), QString());
}

void MainWindowTest::TableIsReadOnlyWithoutRowNumbers()
{
    QCOMPARE(m_form.tableWidget->editTriggers(), QAbstractItemView::NoEditTriggers);
    QVERIFY(!m_form.tableWidget->dragEnabled());
    QVERIFY(m_form.tableWidget->horizontalHeader()->stretchLastSection());
    QVERIFY(m_form.tableWidget->verticalHeader()->isHidden());
}

void MainWindowTest::ProgressBarHidesItsText()
{
    QCOMPARE(m_form.progressBarA->value(), 0);
    QVERIFY(!m_form.progressBarA->isTextVisible());
}

void MainWindowTest::WindowHasTitleIconNoBars()
{
    Open();
    QCOMPARE(m_window->windowTitle(), QString("Prismo"));
    QCOMPARE(m_window->windowIcon().pixmap(48, 48).toImage(), QIcon(":/MyIco/Image/Main.ico").pixmap(48, 48).toImage());
    QVERIFY(m_window->findChildren<QMenuBar*>().isEmpty());
    QVERIFY(m_window->findChildren<QToolBar*>().isEmpty());
    QVERIFY(m_window->findChildren<QStatusBar*>().isEmpty());
}

void MainWindowTest::NameIsSetUnlessTheCallerGaveOne()
{
    QCOMPARE(m_bare->objectName(), QString("MainWindow"));
    QMainWindow named;
    named.setObjectName("mine");
    Ui_MainWindow form;
    form.setupUi(&named);
    QCOMPARE(named.objectName(), QString("mine"));
}

void MainWindowTest::InitAllChoiceShapesTheTable()
{
    Open();
    QCOMPARE(Table()->rowCount(), 0);
    QCOMPARE(Table()->columnCount(), 2);
    QCOMPARE(Table()->focusPolicy(), Qt::NoFocus);
    QCOMPARE(Table()->selectionBehavior(), QAbstractItemView::SelectRows);
    QCOMPARE(Table()->horizontalHeaderItem(0)->text(), QString("File Name"));
    QCOMPARE(Table()->horizontalHeaderItem(1)->text(), QString("File Size"));
    // 571 / 6 * 4; the last column takes what the header has left.
    QCOMPARE(Table()->columnWidth(0), 380);
    QCOMPARE(Table()->columnWidth(1), Table()->horizontalHeader()->viewport()->width() - 380);
    QVERIFY(Table()->columnWidth(1) > 571 / 6);
}

void MainWindowTest::InitAllChoiceBringsTheWindowToIdle()
{
    m_window = std::make_unique<MainWindow>();
    QCOMPARE(MainWindowProbe::Extension(*m_window), QString());
    QCOMPARE(MainWindowProbe::OutputFolder(*m_window), QString());
    QVERIFY(Button("pushButton_Convert")->icon().isNull());
    MainWindowProbe::Running(*m_window) = true;
    Button("pushButton_About")->setText("?");
    m_window->ClearAllInfo();
    QVERIFY(MainWindowProbe::Running(*m_window));

    m_window->InitAllChoice();
    QVERIFY(!MainWindowProbe::Running(*m_window));
    QCOMPARE(MainWindowProbe::Extension(*m_window), QString(".PDF"));
    QCOMPARE(m_window->minimumSize(), QSize(730, 450));
    QCOMPARE(Button("pushButton_About")->text(), QString("About     "));
    QCOMPARE(Button("pushButton_Convert")->iconSize(), QSize(48, 48));
    QCOMPARE(Button("pushButton_Convert")->icon().pixmap(48, 48).toImage(),
        QPixmap(":/MyIco/Image/media_playback_start.ico").toImage());
}

void MainWindowTest::SlotsComeInDeclarationOrder()
{
    const QMetaObject& meta = MainWindow::staticMetaObject;
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        QCOMPARE(meta.method(i).access(), QMetaMethod::Public);
        signatures.append(
            QLatin1String(meta.method(i).typeName()) + ' ' + QString::fromLatin1(meta.method(i).methodSignature()));
    }
    QCOMPARE(signatures,
        QStringList({ "void AddFile()", "void DeleteFile()", "void DeleteAllFile()", "void Setting()",
            "void StartConvert()", "bool ExeCmd()", "void AddOutputPath()", "bool SetFontPath()", "void ShowAbout()",
            "void Onkeyboard()" }));
}

// Each button opens what is behind it, or acts on the table; the selection signal has one receiver.
void MainWindowTest::EveryConnectionExists()
{
    Open();
    const QTemporaryDir folder;
    const QStringList paths { MakeFile(folder.filePath("a.pcl")), MakeFile(folder.filePath("b.pcl")),
        MakeFile(folder.filePath("c.pcl")) };
    AddRows(*m_window, paths);
    QCOMPARE(Table()->rowCount(), 3);
    Table()->setCurrentCell(1, 0);
    Click(Button("pushButton_Remove"));
    QCOMPARE(Table()->rowCount(), 2);
    Click(Button("pushButton_RemoveAll"));
    QCOMPARE(Table()->rowCount(), 0);

    DialogDriver driver;
    QStringList titles;
    const auto Note = [&titles](QWidget* dialog) {
        titles.append(dialog->windowTitle());
        dialog->close();
    };
    for (const char* name :
        { "pushButton_Setting", "pushButton_Convert", "pushButton_OutPutPath", "pushButton_About" }) {
        driver.Expect(Note);
        Click(Button(name));
    }
    QCOMPARE(titles, QStringList({ "Setting", "Warning", "Open directory", "About " }));

    // Disconnecting succeeds only where there is a connection.
    QVERIFY(QObject::disconnect(Table(), SIGNAL(itemSelectionChanged()), m_window.get(), SLOT(Onkeyboard())));
    QVERIFY(!QObject::disconnect(Table(), SIGNAL(itemSelectionChanged()), m_window.get(), SLOT(Onkeyboard())));
}

void MainWindowTest::BackgroundIsThePictureScaledToTheWindow()
{
    m_window = std::make_unique<MainWindow>();
    const QImage expected = QPixmap(":/MyImage/Image/bg1.png")
                                .scaled(730, 450, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                .toImage();
    for (const QPalette::ColorGroup group : { QPalette::Active, QPalette::Inactive, QPalette::Disabled })
        QCOMPARE(m_window->palette().brush(group, QPalette::Window).texture().toImage(), expected);
    QVERIFY(!m_window->autoFillBackground());
}

void MainWindowTest::ButtonsAreNeverDisabled()
{
    Open();
    MainWindowProbe::Running(*m_window) = true;
    for (const QPushButton* button : m_window->findChildren<QPushButton*>())
        QVERIFY(button->isEnabled());
}

void MainWindowTest::TextsAreAskedForInTheWindowsName()
{
    NotingTranslator translator;
    Open();
    for (const char* text : { "Prismo", "Convert", "Add File(s)", "Remove    ", "Clear       ", "Setting   ",
             "About     ", "Output Path:", "File Name", "File Size", "Remove All" })
        QVERIFY2(translator.Asked().contains(QLatin1String("MainWindow: ") + QLatin1String(text)), text);

    // The dialogs' texts, too; the list comes first, so that there is something to convert.
    const QTemporaryDir folder;
    AddRows(*m_window, { MakeFile(folder.filePath("a.pcl"), 10) });
    DialogDriver driver;
    QStringList titles;
    for (const char* name : { "pushButton_Add", "pushButton_OutPutPath", "pushButton_Convert" }) {
        driver.Expect([&titles](QWidget* dialog) {
            titles.append(dialog->windowTitle());
            dialog->close();
        });
        Click(Button(name));
    }
    QCOMPARE(titles, QStringList({ "Select one or more files to open~", "Open directory~", "Warning~" }));
    QVERIFY(translator.Asked().contains("MainWindow: Please select a correct output folder."));

    // A button that reads otherwise than "Convert" or "Stop " starts nothing.
    QCOMPARE(Button("pushButton_Convert")->text(), QString("Convert~"));
    Child<QLineEdit>(*m_window, "lineEdit_OutPutPath")->setText(folder.path());
    Click(Button("pushButton_Convert"));
    QVERIFY(!MainWindowProbe::Running(*m_window));
    QVERIFY(!MainWindowProbe::Process(*m_window));
}

PRISMO_TEST_MAIN(MainWindowTest)
#include "mainwindow_test.moc"
