#include "settings/settingdialog.h"
#include "settings/settingsfile.h"
#include "tests/app/support/dialogdriver.h"
#include "tests/app/support/windowtest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QSignalSpy>

#include <memory>

using namespace windowtest;

class SettingDialogTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanupTestCase();

    void NoSettingsFileShowsOneBitBmp();
    void StoredTiffOf8BitsIsShown();
    void DepthChangeStartsFormatAnew();
    void FaxRowDisablesAndRowZeroEnables();
    void FaxRowStoredWithPngDisablesAllLists();
    void StoredJpgWith1BitShowsNoFormat();
    void CancelledEditIsStillShown();
    void ResetYieldsInitialChoiceFromAnyState_data();
    void ResetYieldsInitialChoiceFromAnyState();
    void CheckBoxTogglesOnlyItsOwnFields();
    void CheckBoxSetFromCodeRunsNoSlot();

    void EachDepthOffersItsFormatsAndMethods_data();
    void EachDepthOffersItsFormatsAndMethods();
    void UnknownDepthChangesNothing();
    void UnknownDepthLeavesTiffMethodsAsTheyAre();
    void ClearedListsRunTheirSlots();
    void ChangingAFaxDialogBackToBmpEnablesTheRest();
    void CompressChoiceChangesNothingElse();
    void SlotsComeInDeclarationOrder();
    void SizeIsFixed();
    void BackgroundIsThePictureScaledToTheDialog();
    void FileIsReadOnlyWhenTheDialogIsBuilt();
    void StoredTiffOfUnknownDepthOffersOneBitMethods();

private:
    QComboBox* List(const char* name) { return Child<QComboBox>(*m_dialog, name); }
    QLineEdit* Field(const char* name) { return Child<QLineEdit>(*m_dialog, name); }
    QCheckBox* Box(const char* name) { return Child<QCheckBox>(*m_dialog, name); }
    static QStringList Entries(const QComboBox* list)
    {
        QStringList entries;
        for (int i = 0; i < list->count(); ++i)
            entries.append(list->itemText(i));
        return entries;
    }
    void Open() { m_dialog = std::make_unique<SettingDialog>(); }
    // Each control's name and whether it is enabled, for comparing whole states.
    QStringList Enabled() const;
    void CompareWithInitialChoice();

    std::unique_ptr<SettingDialog> m_dialog;
};

namespace {

const QStringList kAllFormats { ".jpg", ".bmp", ".pcx", ".png", ".tif" };
const QStringList kOneBitFormats { ".bmp", ".pcx", ".png", ".tif" };
const QStringList kAllMethods { "None", "PackBits", "Lempel-Ziv-Welch-1", "Lempel-Ziv-Welch-2", "CCITT Group 3 (1-D)",
    "CCITT Group 3 (2-D)", "CCITT Group 4", "ZIP" };
const QStringList kOneBitMethods { "None", "PackBits", "Lempel-Ziv-Welch-1", "CCITT Group 3 (1-D)",
    "CCITT Group 3 (2-D)", "CCITT Group 4", "ZIP" };
const QStringList kEightBitMethods { "None", "PackBits", "Lempel-Ziv-Welch-1", "Lempel-Ziv-Welch-2", "ZIP" };
const QStringList k24BitMethods { "None", "PackBits", "Lempel-Ziv-Welch-2", "ZIP" };
const char* const kFields[] = { "lineEdit_PageSizeX", "lineEdit_PageSizeY", "lineEdit_ResoX", "lineEdit_ResoY" };

} // namespace

QStringList SettingDialogTest::Enabled() const
{
    QStringList names;
    for (const char* name :
        { "comboBox_Format", "comboBox_BitCount", "comboBox_Compress", "comboBox_FaxKind", "checkBox_PageSize",
            "checkBox_Resolution", "lineEdit_PageSizeX", "lineEdit_PageSizeY", "lineEdit_ResoX", "lineEdit_ResoY" }) {
        if (Child<QWidget>(*m_dialog, name)->isEnabled())
            names.append(QLatin1String(name));
    }
    return names;
}

void SettingDialogTest::init() { RemoveSettings(); }

void SettingDialogTest::cleanupTestCase()
{
    m_dialog.reset();
    RemoveSettings();
}

void SettingDialogTest::NoSettingsFileShowsOneBitBmp()
{
    Open();
    QCOMPARE(Entries(List("comboBox_Format")), kOneBitFormats);
    QCOMPARE(List("comboBox_Format")->currentText(), QString(".bmp"));
    QCOMPARE(List("comboBox_BitCount")->currentText(), QString("1 Bit"));
    QCOMPARE(Entries(List("comboBox_Compress")), kOneBitMethods);
    QCOMPARE(List("comboBox_Compress")->currentText(), QString("None"));
    QCOMPARE(List("comboBox_FaxKind")->currentIndex(), 0);
    QCOMPARE(
        Enabled(), QStringList({ "comboBox_Format", "comboBox_BitCount", "checkBox_PageSize", "checkBox_Resolution" }));
}

void SettingDialogTest::StoredTiffOf8BitsIsShown()
{
    WriteSetting("SettingInfo/Format", "4");
    WriteSetting("SettingInfo/BitCount", "1");
    WriteSetting("SettingInfo/CompressMethod", "6"); // reads back as "ZIP"
    WriteSetting("SettingInfo/FaxTiff", "0");
    Open();
    QCOMPARE(Entries(List("comboBox_Format")), kAllFormats);
    QCOMPARE(List("comboBox_Format")->currentText(), QString(".tif"));
    QCOMPARE(List("comboBox_BitCount")->currentText(), QString("8 Bits"));
    QCOMPARE(Entries(List("comboBox_Compress")), kEightBitMethods);
    QCOMPARE(List("comboBox_Compress")->currentText(), QString("ZIP"));
    QVERIFY(List("comboBox_Compress")->isEnabled());
    QVERIFY(List("comboBox_FaxKind")->isEnabled());
}

void SettingDialogTest::DepthChangeStartsFormatAnew()
{
    StoredTiffOf8BitsIsShown();
    List("comboBox_BitCount")->setCurrentText("24 Bits");
    QCOMPARE(List("comboBox_Format")->currentText(), QString(".jpg"));
    QCOMPARE(Entries(List("comboBox_Compress")), k24BitMethods);
    QCOMPARE(List("comboBox_Compress")->currentText(), QString("None"));
    QVERIFY(!List("comboBox_Compress")->isEnabled());
    QVERIFY(!List("comboBox_FaxKind")->isEnabled());

    List("comboBox_Format")->setCurrentText(".tif");
    QCOMPARE(Entries(List("comboBox_Compress")), k24BitMethods);
    QCOMPARE(List("comboBox_Compress")->currentText(), QString("None"));
    QVERIFY(List("comboBox_Compress")->isEnabled());
    QVERIFY(List("comboBox_FaxKind")->isEnabled());
}

void SettingDialogTest::FaxRowDisablesAndRowZeroEnables()
{
    for (const int row : { 1, 2 }) {
        WriteSetting("SettingInfo/Format", "4");
        WriteSetting("SettingInfo/ResizePage", "TRUE");
        Open();
        const QStringList before = Enabled();
        QVERIFY(before.contains("lineEdit_PageSizeX"));
        List("comboBox_FaxKind")->setCurrentIndex(row);
        QCOMPARE(Enabled(), QStringList({ "comboBox_Format", "comboBox_FaxKind" }));
        QVERIFY(Box("checkBox_PageSize")->isChecked());
        QCOMPARE(Field("lineEdit_PageSizeX")->text(), QString("100"));
        List("comboBox_FaxKind")->setCurrentIndex(0);
        QCOMPARE(Enabled(), before);
        QVERIFY(Field("lineEdit_PageSizeX")->isEnabled());
        QVERIFY(!Field("lineEdit_ResoX")->isEnabled());
    }
}

void SettingDialogTest::FaxRowStoredWithPngDisablesAllLists()
{
    WriteSetting("SettingInfo/Format", "3");
    WriteSetting("SettingInfo/BitCount", "1");
    WriteSetting("SettingInfo/ResizePage", "TRUE");
    WriteSetting("SettingInfo/FaxTiff", "2");
    Open();
    QCOMPARE(List("comboBox_Format")->currentText(), QString(".png"));
    QCOMPARE(List("comboBox_FaxKind")->currentIndex(), 2);
    QCOMPARE(Enabled(), QStringList({ "comboBox_Format" }));
}

void SettingDialogTest::StoredJpgWith1BitShowsNoFormat()
{
    WriteSetting("SettingInfo/Format", "0");
    WriteSetting("SettingInfo/BitCount", "0");
    Open();
    QCOMPARE(List("comboBox_Format")->currentIndex(), -1);
    QCOMPARE(List("comboBox_Format")->currentText(), QString());
    QVERIFY(!List("comboBox_Compress")->isEnabled());
    QVERIFY(!List("comboBox_FaxKind")->isEnabled());
    QVERIFY(List("comboBox_BitCount")->isEnabled());
}

// Opened as the user does, from the main window's button, whose dialog is one object for its whole life.
void SettingDialogTest::CancelledEditIsStillShown()
{
    MainWindow window;
    window.show();
    window.InitAllChoice();
    DialogDriver driver;
    driver.Expect([](QWidget* dialog) {
        QCOMPARE(Child<QComboBox>(*dialog, "comboBox_Format")->currentText(), QString(".bmp"));
        Child<QComboBox>(*dialog, "comboBox_Format")->setCurrentText(".tif");
        ClickButton(*dialog, "pushButton_Cancel");
    });
    ClickButton(window, "pushButton_Setting");

    driver.Expect([](QWidget* dialog) {
        QCOMPARE(Child<QComboBox>(*dialog, "comboBox_Format")->currentText(), QString(".tif"));
        ClickButton(*dialog, "pushButton_Cancel");
    });
    ClickButton(window, "pushButton_Setting");
    QVERIFY(driver.AllShown());
    QVERIFY(!QFile::exists(SettingsFilePath()));
    window.GetCmdArg();
    QCOMPARE(MainWindowProbe::Extension(window), QString(".bmp"));
}

void SettingDialogTest::CompareWithInitialChoice()
{
    QCOMPARE(Entries(List("comboBox_Format")), kOneBitFormats);
    QCOMPARE(List("comboBox_Format")->currentText(), QString(".bmp"));
    QCOMPARE(Entries(List("comboBox_BitCount")), QStringList({ "1 Bit", "8 Bits", "24 Bits" }));
    QCOMPARE(List("comboBox_BitCount")->currentText(), QString("1 Bit"));
    QCOMPARE(Entries(List("comboBox_Compress")), kAllMethods);
    QCOMPARE(List("comboBox_Compress")->currentText(), QString("None"));
    QCOMPARE(Entries(List("comboBox_FaxKind")),
        QStringList(
            { "NOT Faxable TIFF", "Faxable TIFF Class F (DPI: 204x98)", "Faxable TIFF Class F (DPI: 204x196)" }));
    QCOMPARE(List("comboBox_FaxKind")->currentText(), QString("NOT Faxable TIFF"));
    for (const char* name : kFields)
        QCOMPARE(Field(name)->text(), QString());
    QVERIFY(!Box("checkBox_PageSize")->isChecked());
    QVERIFY(!Box("checkBox_Resolution")->isChecked());
    QCOMPARE(Enabled(),
        QStringList({ "comboBox_Format", "comboBox_BitCount", "comboBox_Compress", "checkBox_PageSize",
            "checkBox_Resolution" }));
}

void SettingDialogTest::ResetYieldsInitialChoiceFromAnyState_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("bitCount");
    QTest::addColumn<QString>("fax");
    QTest::newRow("defaults") << "1"
                              << "0"
                              << "0";
    QTest::newRow("jpeg of 24 bits") << "0"
                                     << "2"
                                     << "-1";
    QTest::newRow("tiff of 8 bits") << "4"
                                    << "1"
                                    << "0";
    QTest::newRow("fax tiff") << "4"
                              << "0"
                              << "2";
    QTest::newRow("fax row with png") << "3"
                                      << "1"
                                      << "1";
    QTest::newRow("nothing known") << "9"
                                   << "9"
                                   << "9";
}

void SettingDialogTest::ResetYieldsInitialChoiceFromAnyState()
{
    QFETCH(QString, format);
    QFETCH(QString, bitCount);
    QFETCH(QString, fax);
    WriteSetting("SettingInfo/Format", format);
    WriteSetting("SettingInfo/BitCount", bitCount);
    WriteSetting("SettingInfo/FaxTiff", fax);
    WriteSetting("SettingInfo/ResizePage", "TRUE");
    WriteSetting("SettingInfo/ResizeResolution", "TRUE");
    Open();
    m_dialog->show();
    ClickButton(*m_dialog, "pushButton_Reset");
    QVERIFY(m_dialog->isVisible());
    CompareWithInitialChoice();
}

void SettingDialogTest::CheckBoxTogglesOnlyItsOwnFields()
{
    Open();
    m_dialog->show();
    Box("checkBox_PageSize")->click();
    QVERIFY(Field("lineEdit_PageSizeX")->isEnabled());
    QVERIFY(Field("lineEdit_PageSizeY")->isEnabled());
    QVERIFY(!Field("lineEdit_ResoX")->isEnabled());
    QVERIFY(!Field("lineEdit_ResoY")->isEnabled());
    Box("checkBox_PageSize")->click();
    QVERIFY(!Field("lineEdit_PageSizeX")->isEnabled());
    QVERIFY(!Field("lineEdit_PageSizeY")->isEnabled());

    Box("checkBox_Resolution")->click();
    QVERIFY(Field("lineEdit_ResoX")->isEnabled());
    QVERIFY(Field("lineEdit_ResoY")->isEnabled());
    QVERIFY(!Field("lineEdit_PageSizeX")->isEnabled());
    Box("checkBox_Resolution")->click();
    QVERIFY(!Field("lineEdit_ResoX")->isEnabled());
    QVERIFY(!Field("lineEdit_ResoY")->isEnabled());
    for (const char* name : kFields)
        QCOMPARE(Field(name)->text(), QString("100"));
}

void SettingDialogTest::CheckBoxSetFromCodeRunsNoSlot()
{
    Open();
    Box("checkBox_PageSize")->setChecked(true);
    Box("checkBox_Resolution")->setChecked(true);
    for (const char* name : kFields)
        QVERIFY(!Field(name)->isEnabled());
}

void SettingDialogTest::EachDepthOffersItsFormatsAndMethods_data()
{
    QTest::addColumn<QString>("depth");
    QTest::addColumn<QStringList>("formats");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QStringList>("methods");
    QTest::newRow("1 bit") << "1 Bit" << kOneBitFormats << ".bmp" << kOneBitMethods;
    QTest::newRow("8 bits") << "8 Bits" << kAllFormats << ".jpg" << kEightBitMethods;
    QTest::newRow("24 bits") << "24 Bits" << kAllFormats << ".jpg" << k24BitMethods;
}

void SettingDialogTest::EachDepthOffersItsFormatsAndMethods()
{
    QFETCH(QString, depth);
    QFETCH(QStringList, formats);
    QFETCH(QString, format);
    QFETCH(QStringList, methods);
    Open();
    List("comboBox_BitCount")->setCurrentIndex(-1);
    List("comboBox_BitCount")->setCurrentText(depth);
    QCOMPARE(Entries(List("comboBox_Format")), formats);
    QCOMPARE(List("comboBox_Format")->currentText(), format);
    QVERIFY(!List("comboBox_Compress")->isEnabled());
    QVERIFY(!List("comboBox_FaxKind")->isEnabled());
    List("comboBox_Format")->setCurrentText(".tif");
    QCOMPARE(Entries(List("comboBox_Compress")), methods);
    QCOMPARE(List("comboBox_Compress")->currentText(), QString("None"));

    // Every other format leaves the methods in their list and only disables it.
    for (const QString& strFormat : formats) {
        if (strFormat == ".tif")
            continue;
        List("comboBox_Format")->setCurrentText(strFormat);
        QVERIFY(!List("comboBox_Compress")->isEnabled());
        QVERIFY(!List("comboBox_FaxKind")->isEnabled());
        QCOMPARE(Entries(List("comboBox_Compress")), methods);
    }
}

void SettingDialogTest::UnknownDepthChangesNothing()
{
    StoredTiffOf8BitsIsShown();
    const QStringList before = Enabled();
    m_dialog->BitCountChanged("16 Bits");
    m_dialog->BitCountChanged("8 bits");
    m_dialog->BitCountChanged(QString());
    QCOMPARE(Entries(List("comboBox_Compress")), kEightBitMethods);
    QCOMPARE(List("comboBox_Compress")->currentText(), QString("ZIP"));
    QCOMPARE(List("comboBox_Format")->currentText(), QString(".tif"));
    QCOMPARE(Enabled(), before);
}

void SettingDialogTest::UnknownDepthLeavesTiffMethodsAsTheyAre()
{
    StoredTiffOf8BitsIsShown();
    List("comboBox_BitCount")->setCurrentIndex(-1);
    m_dialog->FormatChanged(".bmp");
    m_dialog->FormatChanged(".tif");
    QCOMPARE(List("comboBox_Compress")->currentText(), QString("ZIP"));
    QVERIFY(List("comboBox_Compress")->isEnabled());
}

// The rules rest on what the lists emit while they are refilled; nothing may block it.
void SettingDialogTest::ClearedListsRunTheirSlots()
{
    Open();
    QSignalSpy formatSpy(List("comboBox_Format"), &QComboBox::currentIndexChanged);
    QSignalSpy compressSpy(List("comboBox_Compress"), &QComboBox::currentIndexChanged);
    List("comboBox_BitCount")->setCurrentText("8 Bits");
    QCOMPARE(formatSpy.size(), 2);
    QCOMPARE(formatSpy.at(0).at(0).toInt(), -1);
    QCOMPARE(formatSpy.at(1).at(0).toInt(), 0);
    QCOMPARE(compressSpy.size(), 2);
    QCOMPARE(compressSpy.at(0).at(0).toInt(), -1);
    QCOMPARE(compressSpy.at(1).at(0).toInt(), 0);
}

void SettingDialogTest::ChangingAFaxDialogBackToBmpEnablesTheRest()
{
    WriteSetting("SettingInfo/Format", "4");
    WriteSetting("SettingInfo/FaxTiff", "1");
    WriteSetting("SettingInfo/ResizeResolution", "TRUE");
    Open();
    QVERIFY(!Field("lineEdit_ResoX")->isEnabled());
    List("comboBox_Format")->setCurrentText(".bmp");
    QCOMPARE(Enabled(),
        QStringList({ "comboBox_Format", "comboBox_BitCount", "checkBox_PageSize", "checkBox_Resolution",
            "lineEdit_ResoX", "lineEdit_ResoY" }));
    // And ".tif" again brings the fax class back, since its row is still chosen.
    List("comboBox_Format")->setCurrentText(".tif");
    QCOMPARE(Enabled(), QStringList({ "comboBox_Format", "comboBox_FaxKind" }));
}

void SettingDialogTest::CompressChoiceChangesNothingElse()
{
    StoredTiffOf8BitsIsShown();
    const QStringList before = Enabled();
    List("comboBox_Compress")->setCurrentText("PackBits");
    QCOMPARE(Enabled(), before);
    QCOMPARE(List("comboBox_Format")->currentText(), QString(".tif"));
    QCOMPARE(List("comboBox_BitCount")->currentText(), QString("8 Bits"));
}

void SettingDialogTest::SlotsComeInDeclarationOrder()
{
    const QMetaObject& meta = SettingDialog::staticMetaObject;
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        QCOMPARE(meta.method(i).returnMetaType().id(), static_cast<int>(QMetaType::Void));
        signatures.append(QString::fromLatin1(meta.method(i).methodSignature()));
    }
    QCOMPARE(signatures,
        QStringList({ "OnButtonOk()", "ClickCheckBoxResizePage()", "ClickCheckBoxResolution()", "OnButtonReset()",
            "ChangeFormat()", "ChangeBitCount()", "ChangeCompress()", "ChangeFaxTiff()" }));
}

void SettingDialogTest::SizeIsFixed()
{
    Open();
    m_dialog->show();
    m_dialog->resize(600, 500);
    QCOMPARE(m_dialog->size(), QSize(400, 300));
    QCOMPARE(m_dialog->minimumSize(), QSize(400, 300));
    QCOMPARE(m_dialog->maximumSize(), QSize(400, 300));
}

void SettingDialogTest::BackgroundIsThePictureScaledToTheDialog()
{
    Open();
    const QImage expected = QPixmap(":/MyImage/Image/bg2.png")
                                .scaled(400, 300, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                .toImage();
    for (const QPalette::ColorGroup group : { QPalette::Active, QPalette::Inactive, QPalette::Disabled })
        QCOMPARE(m_dialog->palette().brush(group, QPalette::Window).texture().toImage(), expected);
}

void SettingDialogTest::FileIsReadOnlyWhenTheDialogIsBuilt()
{
    Open();
    WriteSetting("SettingInfo/Format", "3");
    WriteSetting("SettingInfo/PageSizeX", "850");
    m_dialog->show();
    m_dialog->hide();
    m_dialog->show();
    QCOMPARE(List("comboBox_Format")->currentText(), QString(".bmp"));
    QCOMPARE(Field("lineEdit_PageSizeX")->text(), QString("100"));
}

// The format is applied before the depth is selected, while the list still shows "1 Bit"; nothing refills it after
// that.
void SettingDialogTest::StoredTiffOfUnknownDepthOffersOneBitMethods()
{
    WriteSetting("SettingInfo/Format", "4");
    WriteSetting("SettingInfo/BitCount", "9");
    Open();
    QCOMPARE(List("comboBox_BitCount")->currentIndex(), -1);
    QCOMPARE(List("comboBox_Format")->currentText(), QString(".tif"));
    QCOMPARE(Entries(List("comboBox_Compress")), kOneBitMethods);
    QVERIFY(List("comboBox_Compress")->isEnabled());
    QVERIFY(List("comboBox_FaxKind")->isEnabled());
}

PRISMO_TEST_MAIN(SettingDialogTest)
#include "settingdialog_test.moc"
