// What a screen reader is told: the tree of accessible objects behind each window.

#include "settings/settingdialog.h"
#include "tests/app/support/windowtest.h"
#include "ui/aboutdlg.h"

#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTextEdit>

#include <functional>

using namespace windowtest;

class AccessibilityTest : public QObject {
    Q_OBJECT

private slots:
    void init() { RemoveSettings(); }
    void cleanupTestCase() { RemoveSettings(); }

    void NothingThatTakesTheFocusIsNameless();
    void ControlsWithoutATextHaveAName_data();
    void ControlsWithoutATextHaveAName();
    void LabelsBelongToTheirControls_data();
    void LabelsBelongToTheirControls();
    void NamesAreNoTextsOfTheForms();

private:
    // The object and all below it, depth first.
    static void Visit(QAccessibleInterface* object, const std::function<void(QAccessibleInterface&)>& visitor)
    {
        visitor(*object);
        for (int i = 0; i < object->childCount(); ++i) {
            if (QAccessibleInterface* child = object->child(i))
                Visit(child, visitor);
        }
    }
    static QString Name(QObject* object)
    {
        return QAccessible::queryAccessibleInterface(object)->text(QAccessible::Name);
    }
};

void AccessibilityTest::NothingThatTakesTheFocusIsNameless()
{
    const QTemporaryDir folder;
    MainWindow window;
    window.show();
    window.InitAllChoice();
    AddRows(window, { MakeFile(folder.filePath("a.pcl"), 1000), MakeFile(folder.filePath("b.spl"), 2000) });
    SettingDialog settings;
    settings.show();
    AboutDlg about;
    about.show();

    for (QWidget* opened : std::initializer_list<QWidget*> { &window, &settings, &about }) {
        int focusable = 0;
        Visit(QAccessible::queryAccessibleInterface(opened), [&](QAccessibleInterface& object) {
            if (!object.state().focusable)
                return;
            ++focusable;
            const QString strWhat
                = QString("%1 in %2")
                      .arg(object.object() ? object.object()->objectName() : QString("role %1").arg(object.role()),
                          opened->objectName());
            QVERIFY2(!object.text(QAccessible::Name).trimmed().isEmpty(), qPrintable(strWhat));
        });
        QVERIFY(focusable >= 2);
    }
}

void AccessibilityTest::ControlsWithoutATextHaveAName_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("name");
    const auto Row
        = [](const char* control, const char* name) { QTest::newRow(control) << QString(control) << QString(name); };
    Row("tableWidget", "Files to convert");
    Row("progressBarA", "Conversion progress");
    Row("pushButton_OutPutPath", "Choose the output folder");
    Row("lineEdit_OutPutPath", "Output path");
    Row("lineEdit_PageSizeX", "Page width in pixels");
    Row("lineEdit_PageSizeY", "Page height in pixels");
    Row("lineEdit_ResoX", "Horizontal resolution in dots per inch");
    Row("lineEdit_ResoY", "Vertical resolution in dots per inch");
    Row("comboBox_BitCount", "Color depth");
    Row("comboBox_Format", "Output format");
    Row("comboBox_Compress", "TIFF compression");
    Row("comboBox_FaxKind", "Fax TIFF");
    Row("textEdit", "About Prismo");
}

void AccessibilityTest::ControlsWithoutATextHaveAName()
{
    QFETCH(QString, control);
    QFETCH(QString, name);
    MainWindow window;
    SettingDialog settings;
    AboutDlg about;
    for (QWidget* parent : std::initializer_list<QWidget*> { &window, &settings, &about }) {
        if (auto* found = parent->findChild<QWidget*>(control)) {
            QCOMPARE(found->accessibleName(), name);
            // On Unix the toolkit calls a list by its current entry, and points to its label besides.
            if (!qobject_cast<QComboBox*>(found))
                QCOMPARE(Name(found), name);
            return;
        }
    }
    QFAIL("no such control");
}

void AccessibilityTest::LabelsBelongToTheirControls_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("control");
    const auto Row
        = [](const char* label, const char* control) { QTest::newRow(label) << QString(label) << QString(control); };
    Row("label_3", "lineEdit_PageSizeX");
    Row("label_4", "lineEdit_PageSizeY");
    Row("label_5", "lineEdit_ResoX");
    Row("label_6", "lineEdit_ResoY");
    Row("label_2", "comboBox_BitCount");
    Row("label", "comboBox_Format");
    Row("label_9", "comboBox_Compress");
    Row("label_7", "comboBox_FaxKind");
}

void AccessibilityTest::LabelsBelongToTheirControls()
{
    QFETCH(QString, label);
    QFETCH(QString, control);
    const SettingDialog settings;
    const auto* found = settings.findChild<QLabel*>(label);
    QVERIFY(found);
    QVERIFY(found->buddy());
    QCOMPARE(found->buddy()->objectName(), control);
    const auto relations = QAccessible::queryAccessibleInterface(found->buddy())->relations(QAccessible::Label);
    QCOMPARE(relations.size(), 1);
    QCOMPARE(relations.at(0).first->object(), found);

    const MainWindow window;
    QCOMPARE(Child<QLabel>(window, "label")->buddy(), Child<QLineEdit>(window, "lineEdit_OutPutPath"));
}

// The forms' texts are what the product says; what a screen reader says besides is not among them.
void AccessibilityTest::NamesAreNoTextsOfTheForms()
{
    const NotingTranslator translator;
    MainWindow window;
    const SettingDialog settings;
    const AboutDlg about;
    for (const QString& strAsked : translator.Asked()) {
        for (const char* name : { "Files to convert", "Output path", "Output format", "About Prismo" })
            QVERIFY2(!strAsked.endsWith(QLatin1String(name)), name);
    }
    QCOMPARE(Name(Child<QTableWidget>(window, "tableWidget")), QString("Files to convert"));
}

PRISMO_TEST_MAIN(AccessibilityTest)
#include "accessibility_test.moc"
