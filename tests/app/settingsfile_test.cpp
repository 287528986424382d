#include "settings/settingdialog.h"
#include "settings/settingsfile.h"
#include "tests/app/support/dialogdriver.h"
#include "tests/app/support/windowtest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace windowtest;

namespace {

// Whether root may write what its permissions deny; nobody else may anyway.
void OverridePermissions(bool bMay)
{
    __user_cap_header_struct header { _LINUX_CAPABILITY_VERSION_3, 0 };
    __user_cap_data_struct sets[_LINUX_CAPABILITY_U32S_3];
    if (::syscall(SYS_capget, &header, sets) != 0)
        qFatal("cannot read the capabilities");
    const quint32 bit = CAP_TO_MASK(CAP_DAC_OVERRIDE);
    sets[0].effective = bMay ? sets[0].effective | (sets[0].permitted & bit) : sets[0].effective & ~bit;
    if (::syscall(SYS_capset, &header, sets) != 0)
        qFatal("cannot change the capabilities");
}

// A folder that this process cannot write in while the object lives.
class LockedFolder {
public:
    explicit LockedFolder(const QString& strFolder)
        : m_strFolder(strFolder)
        , m_permissions(QFile::permissions(strFolder))
    {
        const QFile::Permissions write = QFile::WriteOwner | QFile::WriteUser | QFile::WriteGroup | QFile::WriteOther;
        if (!QFile::setPermissions(strFolder, m_permissions & ~write))
            qFatal("cannot lock %s", qPrintable(strFolder));
        OverridePermissions(false);
    }
    ~LockedFolder()
    {
        OverridePermissions(true);
        QFile::setPermissions(m_strFolder, m_permissions);
    }

private:
    QString m_strFolder;
    QFile::Permissions m_permissions;
};

} // namespace

class SettingsFileTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanupTestCase();

    void FileLiesInApplicationFolderUnderTheShortName();
    void NoFileOpensWithDefaults();
    void VerticalResolutionOpensWithTheHorizontalOne();
    void EmptyPageSizeIsSavedAsZeroAndEmptyResolutionAs100();
    void NegativePageSizeIsSavedAs100();
    void ZeroPageSizeIsKeptAndZeroResolutionIsNot();
    void CompressMethodOutOfRangeLoadsAsNone_data();
    void CompressMethodOutOfRangeLoadsAsNone();
    void CompressMethod6LoadsAsZipAnd7AsNone_data();
    void CompressMethod6LoadsAsZipAnd7AsNone();
    void DisabledListsAreSavedAsMinusOne();
    void FaxTiffMinusOneLoadsAsRowZero_data();
    void FaxTiffMinusOneLoadsAsRowZero();
    void UnknownFormatSelectsNothing();
    void FormatWithoutSelectionIsSavedAsMinusOne();
    void LowerCaseTrueIsOff();
    void ResetThenCancelLeavesTheFileUnchanged();
    void StoredNumbersOutOfRangeAreRepaired();
    void AllTenKeysAreWrittenAsTexts();
    void OkAcceptsAndCancelSavesNothing();
    void SavingKeepsTheFolders();
    void WhatIsSavedLoadsAgain();
    void SettingsThatCannotBeSavedAreReportedOnce();
    void ConversionUsesWhatIsStoredWhenSavingFailed();

private:
    static QString Shown(const SettingDialog& dialog, const char* name)
    {
        return Child<QComboBox>(dialog, name)->currentText();
    }
    static QString Text(const SettingDialog& dialog, const char* name)
    {
        return Child<QLineEdit>(dialog, name)->text();
    }
    static void SetText(const SettingDialog& dialog, const char* name, const QString& strText)
    {
        Child<QLineEdit>(dialog, name)->setText(strText);
    }
    static QByteArray FileBytes()
    {
        QFile file(SettingsFilePath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

void SettingsFileTest::init() { RemoveSettings(); }

void SettingsFileTest::cleanupTestCase() { RemoveSettings(); }

void SettingsFileTest::FileLiesInApplicationFolderUnderTheShortName()
{
    QCOMPARE(QString::fromLatin1(g_chSoftwareName), QString("tessary"));
    QCOMPARE(SettingsFilePath(), QCoreApplication::applicationDirPath() + "/tessaryinfo.ini");
}

void SettingsFileTest::NoFileOpensWithDefaults()
{
    const SettingDialog dialog;
    QCOMPARE(Shown(dialog, "comboBox_Format"), QString(".bmp"));
    QCOMPARE(Shown(dialog, "comboBox_BitCount"), QString("1 Bit"));
    QCOMPARE(Shown(dialog, "comboBox_Compress"), QString("None"));
    QVERIFY(!Child<QCheckBox>(dialog, "checkBox_PageSize")->isChecked());
    QVERIFY(!Child<QCheckBox>(dialog, "checkBox_Resolution")->isChecked());
    for (const char* name : { "lineEdit_PageSizeX", "lineEdit_PageSizeY", "lineEdit_ResoX", "lineEdit_ResoY" }) {
        QCOMPARE(Text(dialog, name), QString("100"));
        QVERIFY(!Child<QLineEdit>(dialog, name)->isEnabled());
    }
    QCOMPARE(Child<QComboBox>(dialog, "comboBox_FaxKind")->currentIndex(), 0);
    QVERIFY(!QFile::exists(SettingsFilePath()));
}

void SettingsFileTest::VerticalResolutionOpensWithTheHorizontalOne()
{
    WriteSetting("SettingInfo/ResolutionX", "300");
    WriteSetting("SettingInfo/ResolutionY", "200");
    SettingDialog dialog;
    QCOMPARE(Text(dialog, "lineEdit_ResoX"), QString("300"));
    QCOMPARE(Text(dialog, "lineEdit_ResoY"), QString("300"));
    ClickButton(dialog, "pushButton_Ok");
    QCOMPARE(ReadSetting("SettingInfo/ResolutionX"), QString("300"));
    QCOMPARE(ReadSetting("SettingInfo/ResolutionY"), QString("300"));
}

void SettingsFileTest::EmptyPageSizeIsSavedAsZeroAndEmptyResolutionAs100()
{
    SettingDialog dialog;
    for (const char* name : { "lineEdit_PageSizeX", "lineEdit_PageSizeY", "lineEdit_ResoX", "lineEdit_ResoY" })
        SetText(dialog, name, QString());
    ClickButton(dialog, "pushButton_Ok");
    QCOMPARE(ReadSetting("SettingInfo/PageSizeX"), QString("0"));
    QCOMPARE(ReadSetting("SettingInfo/PageSizeY"), QString("0"));
    QCOMPARE(ReadSetting("SettingInfo/ResolutionX"), QString("100"));
    QCOMPARE(ReadSetting("SettingInfo/ResolutionY"), QString("100"));
}

void SettingsFileTest::NegativePageSizeIsSavedAs100()
{
    SettingDialog dialog;
    SetText(dialog, "lineEdit_PageSizeX", "-5");
    SetText(dialog, "lineEdit_PageSizeY", "-5");
    ClickButton(dialog, "pushButton_Ok");
    QCOMPARE(ReadSetting("SettingInfo/PageSizeX"), QString("100"));
    QCOMPARE(ReadSetting("SettingInfo/PageSizeY"), QString("100"));
}

void SettingsFileTest::ZeroPageSizeIsKeptAndZeroResolutionIsNot()
{
    SettingDialog dialog;
    SetText(dialog, "lineEdit_PageSizeX", "0");
    SetText(dialog, "lineEdit_PageSizeY", "abc");
    SetText(dialog, "lineEdit_ResoX", "0");
    SetText(dialog, "lineEdit_ResoY", "-3");
    ClickButton(dialog, "pushButton_Ok");
    QCOMPARE(ReadSetting("SettingInfo/PageSizeX"), QString("0"));
    QCOMPARE(ReadSetting("SettingInfo/PageSizeY"), QString("0"));
    QCOMPARE(ReadSetting("SettingInfo/ResolutionX"), QString("100"));
    QCOMPARE(ReadSetting("SettingInfo/ResolutionY"), QString("100"));
}

void SettingsFileTest::CompressMethodOutOfRangeLoadsAsNone_data()
{
    QTest::addColumn<QString>("stored");
    QTest::newRow("9") << "9";
    QTest::newRow("8") << "8";
    QTest::newRow("-3") << "-3";
}

// Index "0" is stored beside a format with all methods in its list, so that "None" is a choice and not the only one.
void SettingsFileTest::CompressMethodOutOfRangeLoadsAsNone()
{
    QFETCH(QString, stored);
    WriteSetting("SettingInfo/Format", "4");
    WriteSetting("SettingInfo/CompressMethod", stored);
    const SettingDialog dialog;
    QCOMPARE(Shown(dialog, "comboBox_Compress"), QString("None"));
}

void SettingsFileTest::CompressMethod6LoadsAsZipAnd7AsNone_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("shown");
    QTest::newRow("5") << "5"
                       << "CCITT Group 3 (2-D)";
    QTest::newRow("6") << "6"
                       << "ZIP";
    QTest::newRow("7") << "7"
                       << "None";
}

void SettingsFileTest::CompressMethod6LoadsAsZipAnd7AsNone()
{
    QFETCH(QString, stored);
    QFETCH(QString, shown);
    WriteSetting("SettingInfo/Format", "4");
    WriteSetting("SettingInfo/CompressMethod", stored);
    const SettingDialog dialog;
    QCOMPARE(Shown(dialog, "comboBox_Compress"), shown);
}

void SettingsFileTest::DisabledListsAreSavedAsMinusOne()
{
    WriteSetting("SettingInfo/Format", "3");
    WriteSetting("SettingInfo/BitCount", "1");
    SettingDialog dialog;
    QVERIFY(!Child<QComboBox>(dialog, "comboBox_Compress")->isEnabled());
    QVERIFY(!Child<QComboBox>(dialog, "comboBox_FaxKind")->isEnabled());
    ClickButton(dialog, "pushButton_Ok");
    QCOMPARE(ReadSetting("SettingInfo/CompressMethod"), QString("-1"));
    QCOMPARE(ReadSetting("SettingInfo/FaxTiff"), QString("-1"));

    const SettingDialog again;
    QCOMPARE(Child<QComboBox>(again, "comboBox_FaxKind")->currentIndex(), 0);
}

void SettingsFileTest::FaxTiffMinusOneLoadsAsRowZero_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<int>("row");
    QTest::newRow("-1") << "-1" << 0;
    QTest::newRow("3") << "3" << 0;
    QTest::newRow("text") << "abc" << 0;
    QTest::newRow("1") << "1" << 1;
    QTest::newRow("2") << "2" << 2;
}

void SettingsFileTest::FaxTiffMinusOneLoadsAsRowZero()
{
    QFETCH(QString, stored);
    QFETCH(int, row);
    WriteSetting("SettingInfo/FaxTiff", stored);
    const SettingDialog dialog;
    QCOMPARE(Child<QComboBox>(dialog, "comboBox_FaxKind")->currentIndex(), row);
}

void SettingsFileTest::UnknownFormatSelectsNothing()
{
    WriteSetting("SettingInfo/Format", "7");
    const SettingDialog dialog;
    QCOMPARE(Child<QComboBox>(dialog, "comboBox_Format")->currentIndex(), -1);
    QCOMPARE(Shown(dialog, "comboBox_Format"), QString());
}

void SettingsFileTest::FormatWithoutSelectionIsSavedAsMinusOne()
{
    WriteSetting("SettingInfo/Format", "7");
    SettingDialog dialog;
    Child<QComboBox>(dialog, "comboBox_BitCount")->setCurrentIndex(-1);
    QCOMPARE(Child<QComboBox>(dialog, "comboBox_Format")->currentIndex(), -1);
    ClickButton(dialog, "pushButton_Ok");
    QCOMPARE(ReadSetting("SettingInfo/Format"), QString("-1"));
    QCOMPARE(ReadSetting("SettingInfo/BitCount"), QString("-1"));
}

void SettingsFileTest::LowerCaseTrueIsOff()
{
    WriteSetting("SettingInfo/ResizePage", "true");
    WriteSetting("SettingInfo/ResizeResolution", "True");
    const SettingDialog dialog;
    QVERIFY(!Child<QCheckBox>(dialog, "checkBox_PageSize")->isChecked());
    QVERIFY(!Child<QLineEdit>(dialog, "lineEdit_PageSizeX")->isEnabled());
    QVERIFY(!Child<QCheckBox>(dialog, "checkBox_Resolution")->isChecked());
    QVERIFY(!Child<QLineEdit>(dialog, "lineEdit_ResoX")->isEnabled());
}

void SettingsFileTest::ResetThenCancelLeavesTheFileUnchanged()
{
    WriteSetting("SettingInfo/Format", "4");
    WriteSetting("SettingInfo/PageSizeX", "850");
    const QByteArray before = FileBytes();
    QVERIFY(!before.isEmpty());
    SettingDialog dialog;
    dialog.show();
    ClickButton(dialog, "pushButton_Reset");
    QVERIFY(dialog.isVisible());
    QCOMPARE(Text(dialog, "lineEdit_PageSizeX"), QString());
    ClickButton(dialog, "pushButton_Cancel");
    QVERIFY(!dialog.isVisible());
    QCOMPARE(FileBytes(), before);
}

void SettingsFileTest::StoredNumbersOutOfRangeAreRepaired()
{
    WriteSetting("SettingInfo/PageSizeX", "-1");
    WriteSetting("SettingInfo/PageSizeY", "0");
    WriteSetting("SettingInfo/ResolutionX", "0");
    const SettingDialog dialog;
    QCOMPARE(Text(dialog, "lineEdit_PageSizeX"), QString("100"));
    QCOMPARE(Text(dialog, "lineEdit_PageSizeY"), QString("0"));
    QCOMPARE(Text(dialog, "lineEdit_ResoX"), QString("100"));
    QCOMPARE(Text(dialog, "lineEdit_ResoY"), QString("100"));

    // What is no number counts as 0, which a page size may be and a resolution may not.
    for (const char* key : { "PageSizeX", "PageSizeY", "ResolutionX", "CompressMethod", "FaxTiff" })
        WriteSetting(QLatin1String("SettingInfo/") + QLatin1String(key), "abc");
    const SettingDialog again;
    QCOMPARE(Text(again, "lineEdit_PageSizeX"), QString("0"));
    QCOMPARE(Text(again, "lineEdit_PageSizeY"), QString("0"));
    QCOMPARE(Text(again, "lineEdit_ResoX"), QString("100"));
    QCOMPARE(Shown(again, "comboBox_Compress"), QString("None"));
}

void SettingsFileTest::AllTenKeysAreWrittenAsTexts()
{
    SettingDialog dialog;
    Child<QComboBox>(dialog, "comboBox_BitCount")->setCurrentText("8 Bits");
    Child<QComboBox>(dialog, "comboBox_Format")->setCurrentText(".tif");
    Child<QComboBox>(dialog, "comboBox_Compress")->setCurrentText("ZIP");
    Child<QCheckBox>(dialog, "checkBox_PageSize")->setChecked(true);
    SetText(dialog, "lineEdit_PageSizeX", "850");
    SetText(dialog, "lineEdit_PageSizeY", "1100");
    SetText(dialog, "lineEdit_ResoX", "204");
    SetText(dialog, "lineEdit_ResoY", "196");
    ClickButton(dialog, "pushButton_Ok");

    QCOMPARE(FileBytes(),
        QByteArray("[SettingInfo]\n"
                   "BitCount=1\n"
                   "CompressMethod=7\n"
                   "FaxTiff=0\n"
                   "Format=4\n"
                   "PageSizeX=850\n"
                   "PageSizeY=1100\n"
                   "ResizePage=TRUE\n"
                   "ResizeResolution=FALSE\n"
                   "ResolutionX=204\n"
                   "ResolutionY=196\n"));
}

void SettingsFileTest::OkAcceptsAndCancelSavesNothing()
{
    SettingDialog dialog;
    dialog.show();
    ClickButton(dialog, "pushButton_Cancel");
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), static_cast<int>(QDialog::Rejected));
    QVERIFY(!QFile::exists(SettingsFilePath()));

    dialog.show();
    ClickButton(dialog, "pushButton_Ok");
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), static_cast<int>(QDialog::Accepted));
    QVERIFY(QFile::exists(SettingsFilePath()));
}

void SettingsFileTest::SavingKeepsTheFolders()
{
    WriteSetting("SettingInfo/InputFolder", "/in");
    WriteSetting("SettingInfo/OutputFolder", "/out");
    SettingDialog dialog;
    ClickButton(dialog, "pushButton_Ok");
    QCOMPARE(ReadSetting("SettingInfo/InputFolder"), QString("/in"));
    QCOMPARE(ReadSetting("SettingInfo/OutputFolder"), QString("/out"));
}

void SettingsFileTest::WhatIsSavedLoadsAgain()
{
    {
        SettingDialog dialog;
        Child<QComboBox>(dialog, "comboBox_BitCount")->setCurrentText("24 Bits");
        Child<QComboBox>(dialog, "comboBox_Format")->setCurrentText(".tif");
        Child<QComboBox>(dialog, "comboBox_Compress")->setCurrentText("Lempel-Ziv-Welch-2");
        Child<QComboBox>(dialog, "comboBox_FaxKind")->setCurrentIndex(2);
        Child<QCheckBox>(dialog, "checkBox_Resolution")->setChecked(true);
        SetText(dialog, "lineEdit_ResoX", "600");
        ClickButton(dialog, "pushButton_Ok");
    }
    // The fax class disabled the compression list, which is what was stored.
    QCOMPARE(ReadSetting("SettingInfo/CompressMethod"), QString("-1"));
    const SettingDialog dialog;
    QCOMPARE(Shown(dialog, "comboBox_BitCount"), QString("24 Bits"));
    QCOMPARE(Shown(dialog, "comboBox_Format"), QString(".tif"));
    QCOMPARE(Shown(dialog, "comboBox_Compress"), QString("None"));
    QCOMPARE(Child<QComboBox>(dialog, "comboBox_FaxKind")->currentIndex(), 2);
    QVERIFY(Child<QCheckBox>(dialog, "checkBox_Resolution")->isChecked());
    QCOMPARE(Text(dialog, "lineEdit_ResoX"), QString("600"));
}

void SettingsFileTest::SettingsThatCannotBeSavedAreReportedOnce()
{
    // A folder where the file should be: nobody can write that.
    QVERIFY(QDir().mkdir(SettingsFilePath()));
    SettingDialog dialog;
    dialog.show();
    DialogDriver driver;
    driver.Expect([](QWidget* shown) {
        auto* box = qobject_cast<QMessageBox*>(shown);
        QVERIFY(box);
        QVERIFY(box->text().contains("could not be saved"));
        QVERIFY(box->text().contains(QCoreApplication::applicationDirPath()));
        box->accept();
    });
    ClickButton(dialog, "pushButton_Ok");
    QVERIFY(driver.AllShown());
    QCOMPARE(driver.ShownCount(), 1);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), static_cast<int>(QDialog::Accepted));
    QVERIFY(QDir().rmdir(SettingsFilePath()));
}

// The application's folder as an installation for everyone leaves it: to be read, not to be written.
void SettingsFileTest::ConversionUsesWhatIsStoredWhenSavingFailed()
{
    WriteSetting("SettingInfo/Format", "3");
    const LockedFolder locked(QCoreApplication::applicationDirPath());
    SettingDialog dialog;
    dialog.show();
    Child<QComboBox>(dialog, "comboBox_BitCount")->setCurrentText("24 Bits");
    Child<QComboBox>(dialog, "comboBox_Format")->setCurrentText(".tif");
    DialogDriver driver;
    driver.Expect([](QWidget* shown) { shown->close(); });
    ClickButton(dialog, "pushButton_Ok");
    QVERIFY(driver.AllShown());
    QCOMPARE(ReadSetting("SettingInfo/Format"), QString("3"));
    QVERIFY(ReadSetting("SettingInfo/BitCount").isNull());
    // The dialog goes on showing what was chosen.
    QCOMPARE(Shown(dialog, "comboBox_Format"), QString(".tif"));
}

PRISMO_TEST_MAIN(SettingsFileTest)
#include "settingsfile_test.moc"
