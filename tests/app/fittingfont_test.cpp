// Captions in the desktop's font, whatever its size: whole, and as large as their places allow.

#include "settings/fittingfont.h"
#include "settings/settingdialog.h"
#include "tests/app/support/windowtest.h"
#include "ui/aboutdlg.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontInfo>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QTableWidget>

using namespace windowtest;

class FittingFontTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void EveryTextHasItsRoom_data();
    void EveryTextHasItsRoom();
    void UsualFontIsLeftAlone();
    void LargeFontIsTakenUpAsFarAsItFits();
    void SizesInTheTableAreNeverCut();
    void HeaderIsPaintedInTheSizeThatItHasRoomFor();
    void SmallestSizeIsTheEnd();

private:
    static void SetDesktopFont(int iPixels)
    {
        QFont font = QApplication::font();
        font.setPixelSize(iPixels);
        QApplication::setFont(font);
    }
    static int Pixels(const QWidget* widget) { return QFontInfo(widget->font()).pixelSize(); }
    static int TextWidth(const QWidget* widget, const QString& strText)
    {
        return widget->fontMetrics().horizontalAdvance(strText);
    }

    QFont m_before;
};

void FittingFontTest::init()
{
    RemoveSettings();
    m_before = QApplication::font();
}

void FittingFontTest::cleanup()
{
    QApplication::setFont(m_before);
    RemoveSettings();
}

void FittingFontTest::EveryTextHasItsRoom_data()
{
    QTest::addColumn<int>("pixels");
    for (const int pixels : { 12, 16, 21, 32 })
        QTest::addRow("%d pixels", pixels) << pixels;
}

// Measured here by what the toolkit says of its controls, not by what the windows ask.
void FittingFontTest::EveryTextHasItsRoom()
{
    QFETCH(int, pixels);
    SetDesktopFont(pixels);
    MainWindow window;
    window.show();
    window.InitAllChoice();
    SettingDialog settings;
    settings.show();
    AboutDlg about;
    about.show();
    QCoreApplication::processEvents();
    QCOMPARE(window.size(), QSize(730, 450));
    QCOMPARE(settings.size(), QSize(400, 300));
    QCOMPARE(about.size(), QSize(366, 205));

    // Any depth: the lists are longest with 1 bit, which is where the dialog begins.
    for (const QComboBox* list : settings.findChildren<QComboBox*>()) {
        QStyleOptionComboBox option;
        option.initFrom(list);
        const int room
            = list->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, list).width();
        for (int i = 0; i < list->count(); ++i)
            QVERIFY2(TextWidth(list, list->itemText(i)) <= room, qPrintable(list->itemText(i)));
        const QWidget* box = list->parentWidget()->parentWidget();
        QVERIFY2(list->mapTo(box, QPoint(0, list->height())).y() <= box->height(), qPrintable(list->objectName()));
    }
    for (const QWidget* parent : std::initializer_list<QWidget*> { &window, &settings, &about }) {
        for (const QLabel* label : parent->findChildren<QLabel*>())
            QVERIFY2(label->minimumSizeHint().width() <= label->width(), qPrintable(label->text()));
        for (const QCheckBox* box : parent->findChildren<QCheckBox*>())
            QVERIFY2(box->minimumSizeHint().height() <= box->height(), qPrintable(box->text()));
        for (const QPushButton* button : parent->findChildren<QPushButton*>()) {
            const int icon = button->icon().isNull() ? 0 : button->iconSize().width();
            QVERIFY2(icon + TextWidth(button, button->text()) <= button->width(), qPrintable(button->text()));
            if (!button->text().isEmpty())
                QVERIFY2(button->fontMetrics().height() <= button->height(), qPrintable(button->text()));
        }
        for (const QLineEdit* field : parent->findChildren<QLineEdit*>())
            QVERIFY2(field->fontMetrics().height() <= field->height(), qPrintable(field->objectName()));
    }
    // The title stands above what is in the group.
    const auto* group = Child<QGroupBox>(settings, "groupBox");
    QVERIFY(group->fontMetrics().height() <= Child<QWidget>(settings, "layoutWidget3")->y());
}

void FittingFontTest::UsualFontIsLeftAlone()
{
    SetDesktopFont(12);
    MainWindow window;
    window.show();
    window.InitAllChoice();
    const SettingDialog settings;
    for (const char* name : { "pushButton_Add", "pushButton_Convert", "label", "lineEdit_OutPutPath", "tableWidget" })
        QCOMPARE(Pixels(Child<QWidget>(window, name)), 12);
    for (const char* name : { "checkBox_PageSize", "lineEdit_ResoX", "label_2", "comboBox_BitCount", "comboBox_Format",
             "comboBox_Compress", "groupBox", "pushButton_Ok" })
        QCOMPARE(Pixels(Child<QWidget>(settings, name)), 12);
}

// Each control by its own place: what has room takes the whole size, and nothing is as small as what has least.
void FittingFontTest::LargeFontIsTakenUpAsFarAsItFits()
{
    SetDesktopFont(21);
    MainWindow window;
    window.show();
    window.InitAllChoice();
    const SettingDialog settings;
    const AboutDlg about;
    QCOMPARE(Pixels(Child<QWidget>(window, "pushButton_Convert")), 21);
    QCOMPARE(Pixels(Child<QWidget>(window, "lineEdit_OutPutPath")), 21);
    QCOMPARE(Pixels(Child<QWidget>(about, "pushButton_URL")), 21);
    QVERIFY(Pixels(Child<QWidget>(window, "pushButton_Add")) >= 16);
    QVERIFY(Pixels(Child<QWidget>(window, "tableWidget")) >= 16);
    QVERIFY(Pixels(Child<QWidget>(settings, "comboBox_BitCount")) >= 15);
    for (const char* name : { "checkBox_PageSize", "label_2", "comboBox_Format", "comboBox_Compress" })
        QVERIFY2(Pixels(Child<QWidget>(settings, name)) >= 13, name);
    // The longest text of all, with the blanks of its label in front.
    QVERIFY(Pixels(Child<QWidget>(settings, "comboBox_FaxKind")) >= 10);
}

void FittingFontTest::SizesInTheTableAreNeverCut()
{
    SetDesktopFont(40);
    MainWindow window;
    window.show();
    window.InitAllChoice();
    const auto* table = Child<QTableWidget>(window, "tableWidget");
    QVERIFY(TextWidth(table, "   2147483.647 KB") < table->columnWidth(1));
    QVERIFY(table->fontMetrics().height() < table->verticalHeader()->defaultSectionSize());
}

void FittingFontTest::HeaderIsPaintedInTheSizeThatItHasRoomFor()
{
    SetDesktopFont(40);
    MainWindow window;
    window.show();
    window.InitAllChoice();
    const QHeaderView* header = Child<QTableWidget>(window, "tableWidget")->horizontalHeader();
    QCOMPARE(Pixels(header->viewport()), Pixels(header));
    QVERIFY(header->fontMetrics().height() <= header->height());
}

void FittingFontTest::SmallestSizeIsTheEnd()
{
    QLabel label("anything");
    int iAsked = 0;
    FitFont({ &label }, [&iAsked] {
        ++iAsked;
        return false;
    });
    QCOMPARE(Pixels(&label), 8);
    QVERIFY(iAsked < 100);
}

PRISMO_TEST_MAIN(FittingFontTest)
#include "fittingfont_test.moc"
