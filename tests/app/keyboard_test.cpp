// What the keyboard does in the dialogs.

#include "settings/settingdialog.h"
#include "tests/app/support/windowtest.h"
#include "ui/aboutdlg.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTextEdit>

using namespace windowtest;

class KeyboardTest : public QObject {
    Q_OBJECT

private slots:
    void init() { RemoveSettings(); }
    void cleanupTestCase() { RemoveSettings(); }

    void EnterInAFieldIsOk();
    void EnterOnResetResets();
    void EscapeCancels();
    void EveryOpeningBeginsAtTheFirstControl();
    void FirstControlIsOneThatIsEnabled();
    void TabGoesFromTopToBottomAndResetComesLast();
    void TabLeavesTheTextOfAbout();

private:
    static void Open(QWidget& dialog)
    {
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
    }
    static QString Focused(const QWidget& dialog)
    {
        return dialog.focusWidget() ? dialog.focusWidget()->objectName() : QString();
    }
};

void KeyboardTest::EnterInAFieldIsOk()
{
    SettingDialog dialog;
    Open(dialog);
    Child<QCheckBox>(dialog, "checkBox_PageSize")->click();
    auto* width = Child<QLineEdit>(dialog, "lineEdit_PageSizeX");
    width->setFocus();
    width->clear();
    QTest::keyClicks(width, "850");
    QTest::keyClick(width, Qt::Key_Return);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), static_cast<int>(QDialog::Accepted));
    QCOMPARE(width->text(), QString("850"));
    QCOMPARE(ReadSetting("SettingInfo/PageSizeX"), QString("850"));
    QCOMPARE(ReadSetting("SettingInfo/ResizePage"), QString("TRUE"));
}

void KeyboardTest::EnterOnResetResets()
{
    SettingDialog dialog;
    Open(dialog);
    auto* reset = Child<QPushButton>(dialog, "pushButton_Reset");
    reset->setFocus();
    QTest::keyClick(reset, Qt::Key_Return);
    QVERIFY(dialog.isVisible());
    QCOMPARE(Child<QLineEdit>(dialog, "lineEdit_PageSizeX")->text(), QString());
}

void KeyboardTest::EscapeCancels()
{
    SettingDialog dialog;
    Open(dialog);
    QTest::keyClick(Child<QComboBox>(dialog, "comboBox_Format"), Qt::Key_Escape);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), static_cast<int>(QDialog::Rejected));
    QVERIFY(ReadSetting("SettingInfo/Format").isNull());
}

void KeyboardTest::EveryOpeningBeginsAtTheFirstControl()
{
    SettingDialog dialog;
    for (int i = 0; i < 2; ++i) {
        Open(dialog);
        QCOMPARE(Focused(dialog), QString("checkBox_PageSize"));
        Child<QPushButton>(dialog, "pushButton_Cancel")->setFocus();
        dialog.close();
    }
}

void KeyboardTest::FirstControlIsOneThatIsEnabled()
{
    WriteSetting("SettingInfo/Format", "4");
    WriteSetting("SettingInfo/FaxTiff", "1");
    SettingDialog dialog;
    Open(dialog);
    QCOMPARE(Focused(dialog), QString("comboBox_Format"));
}

void KeyboardTest::TabGoesFromTopToBottomAndResetComesLast()
{
    WriteSetting("SettingInfo/Format", "4");
    WriteSetting("SettingInfo/ResizePage", "TRUE");
    WriteSetting("SettingInfo/ResizeResolution", "TRUE");
    SettingDialog dialog;
    Open(dialog);
    const QStringList order { "checkBox_PageSize", "lineEdit_PageSizeX", "lineEdit_PageSizeY", "checkBox_Resolution",
        "lineEdit_ResoX", "lineEdit_ResoY", "comboBox_BitCount", "comboBox_Format", "comboBox_Compress",
        "comboBox_FaxKind", "pushButton_Ok", "pushButton_Cancel", "pushButton_Reset" };
    QStringList visited;
    for (int i = 0; i < order.size(); ++i) {
        visited.append(Focused(dialog));
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(visited, order);
    QCOMPARE(Focused(dialog), order.first());
}

void KeyboardTest::TabLeavesTheTextOfAbout()
{
    AboutDlg dialog;
    Open(dialog);
    auto* text = Child<QTextEdit>(dialog, "textEdit");
    const QString strBefore = text->toPlainText();
    text->setFocus();
    QTest::keyClick(text, Qt::Key_Tab);
    QCOMPARE(Focused(dialog), QString("pushButton_URL"));
    QCOMPARE(text->toPlainText(), strBefore);
}

PRISMO_TEST_MAIN(KeyboardTest)
#include "keyboard_test.moc"
