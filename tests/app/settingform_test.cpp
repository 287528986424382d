#include "settings/settingdialog.h"
#include "tests/app/support/formtest.h"
#include "tests/app/support/windowtest.h"
#include "ui_settingdialog.h"

#include <QDialog>
#include <QRegularExpression>
#include <QSignalSpy>

#include <memory>

using namespace windowtest;

class SettingFormTest : public QObject {
    Q_OBJECT

private slots:
    void init();

    void NameIsSetUnlessTheCallerGaveOne();
    void SixthCharacterIsRefused_data();
    void SixthCharacterIsRefused();
    void DepthListKeepsItsWidth();
    void CancelClosesAndRunsNoSlot();

    void MembersComeInOrder();
    void ChildrenAreCreatedInOrder();
    void ContainersHaveTheirGeometry_data();
    void ContainersHaveTheirGeometry();
    void LayoutsHoldTheirItemsInOrder();
    void ContainerLayoutsHaveNoMargins();
    void ControlsHaveTheirTexts_data();
    void ControlsHaveTheirTexts();
    void LabelsHaveTheirAlignment();
    void ControlsHaveNothingElse();
    void DialogHasSizeTitleAndIcon();
    void TextsAreAskedForInOrder();

private:
    std::unique_ptr<QDialog> m_dialog;
    Ui_SettingDialog m_form;
};

void SettingFormTest::init()
{
    m_dialog = std::make_unique<QDialog>();
    m_form.setupUi(m_dialog.get());
}

void SettingFormTest::NameIsSetUnlessTheCallerGaveOne()
{
    QCOMPARE(m_dialog->objectName(), QString("SettingDialog"));
    QCOMPARE(m_dialog->windowTitle(), QString("Setting"));
    QCOMPARE(m_form.pushButton_Cancel->text(), QString("Cancle"));

    QDialog named;
    named.setObjectName("mine");
    Ui_SettingDialog form;
    form.setupUi(&named);
    QCOMPARE(named.objectName(), QString("mine"));
}

void SettingFormTest::SixthCharacterIsRefused_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : { "lineEdit_PageSizeX", "lineEdit_PageSizeY", "lineEdit_ResoX", "lineEdit_ResoY" })
        QTest::newRow(name) << name;
}

void SettingFormTest::SixthCharacterIsRefused()
{
    QFETCH(QString, name);
    auto* field = m_dialog->findChild<QLineEdit*>(name);
    QVERIFY(field);
    QTest::keyClicks(field, "12ab5");
    QCOMPARE(field->text(), QString("12ab5"));
    QTest::keyClicks(field, "6");
    QCOMPARE(field->text(), QString("12ab5"));
    QVERIFY(!field->validator());
}

void SettingFormTest::DepthListKeepsItsWidth()
{
    QCOMPARE(m_form.comboBox_BitCount->minimumSize(), QSize(87, 0));
    QCOMPARE(m_form.comboBox_BitCount->maximumSize(), QSize(87, 16777215));
    m_dialog->show();
    QCOMPARE(m_form.comboBox_BitCount->width(), 87);
    m_form.comboBox_BitCount->addItem(QString(200, 'W'));
    m_form.layoutWidget2->layout()->activate();
    QCOMPARE(m_form.comboBox_BitCount->width(), 87);
}

void SettingFormTest::CancelClosesAndRunsNoSlot()
{
    SettingDialog dialog;
    dialog.show();
    const QString strFormat = Child<QComboBox>(dialog, "comboBox_Format")->currentText();
    QSignalSpy accepted(&dialog, &QDialog::accepted);
    QSignalSpy rejected(&dialog, &QDialog::rejected);
    ClickButton(dialog, "pushButton_Cancel");
    QVERIFY(!dialog.isVisible());
    QCOMPARE(accepted.size(), 0);
    QCOMPARE(rejected.size(), 1);
    QCOMPARE(Child<QComboBox>(dialog, "comboBox_Format")->currentText(), strFormat);

    // The form alone does it: on a dialog without any slot of ours.
    m_dialog->show();
    Click(m_form.pushButton_Cancel);
    QVERIFY(!m_dialog->isVisible());
}

void SettingFormTest::MembersComeInOrder()
{
    QCOMPARE(formtest::ClassesAndNames(formtest::Members(m_form)),
        QStringList({ "QWidget layoutWidget", "QHBoxLayout horizontalLayout", "QPushButton pushButton_Reset",
            "QPushButton pushButton_Ok", "QPushButton pushButton_Cancel", "QWidget layoutWidget1",
            "QVBoxLayout verticalLayout", "QCheckBox checkBox_PageSize", "QHBoxLayout horizontalLayout_2",
            "QLabel label_3", "QLineEdit lineEdit_PageSizeX", "QLabel label_4", "QLineEdit lineEdit_PageSizeY",
            "QCheckBox checkBox_Resolution", "QHBoxLayout horizontalLayout_3", "QLabel label_5",
            "QLineEdit lineEdit_ResoX", "QLabel label_6", "QLineEdit lineEdit_ResoY", "QWidget layoutWidget2",
            "QHBoxLayout horizontalLayout_4", "QLabel label_2", "QComboBox comboBox_BitCount", "QLabel label",
            "QComboBox comboBox_Format", "QGroupBox groupBox", "QWidget layoutWidget3", "QVBoxLayout verticalLayout_2",
            "QHBoxLayout horizontalLayout_5", "QLabel label_9", "QComboBox comboBox_Compress",
            "QHBoxLayout horizontalLayout_6", "QLabel label_7", "QComboBox comboBox_FaxKind" }));
}

void SettingFormTest::ChildrenAreCreatedInOrder()
{
    const QList<QObject*> members = formtest::Members(m_form);
    QCOMPARE(formtest::ChildrenAmong(m_dialog.get(), members),
        QStringList({ "layoutWidget", "layoutWidget1", "layoutWidget2", "groupBox" }));
    QCOMPARE(formtest::ChildrenAmong(m_form.layoutWidget, members),
        QStringList({ "horizontalLayout", "pushButton_Reset", "pushButton_Ok", "pushButton_Cancel" }));
    QCOMPARE(formtest::ChildrenAmong(m_form.layoutWidget1, members),
        QStringList({ "verticalLayout", "checkBox_PageSize", "label_3", "lineEdit_PageSizeX", "label_4",
            "lineEdit_PageSizeY", "checkBox_Resolution", "label_5", "lineEdit_ResoX", "label_6", "lineEdit_ResoY" }));
    QCOMPARE(formtest::ChildrenAmong(m_form.verticalLayout, members),
        QStringList({ "horizontalLayout_2", "horizontalLayout_3" }));
    QCOMPARE(formtest::ChildrenAmong(m_form.layoutWidget2, members),
        QStringList({ "horizontalLayout_4", "label_2", "comboBox_BitCount", "label", "comboBox_Format" }));
    QCOMPARE(formtest::ChildrenAmong(m_form.groupBox, members), QStringList({ "layoutWidget3" }));
    QCOMPARE(formtest::ChildrenAmong(m_form.layoutWidget3, members),
        QStringList({ "verticalLayout_2", "label_9", "comboBox_Compress", "label_7", "comboBox_FaxKind" }));
}

void SettingFormTest::ContainersHaveTheirGeometry_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QRect>("geometry");
    QTest::newRow("buttons") << "layoutWidget" << QRect(131, 251, 246, 41);
    QTest::newRow("sizes") << "layoutWidget1" << QRect(20, 10, 361, 108);
    QTest::newRow("depth and format") << "layoutWidget2" << QRect(20, 130, 361, 39);
    QTest::newRow("group") << "groupBox" << QRect(20, 160, 361, 91);
    QTest::newRow("in the group, from left of it") << "layoutWidget3" << QRect(-60, 20, 421, 77);
}

void SettingFormTest::ContainersHaveTheirGeometry()
{
    QFETCH(QString, name);
    QFETCH(QRect, geometry);
    QCOMPARE(m_dialog->findChild<QWidget*>(name)->geometry(), geometry);
}

void SettingFormTest::LayoutsHoldTheirItemsInOrder()
{
    const auto Items = [](const QLayout* layout) {
        QStringList names;
        for (int i = 0; i < layout->count(); ++i) {
            QLayoutItem* item = layout->itemAt(i);
            names.append(item->widget() ? item->widget()->objectName() : item->layout()->objectName());
            if (item->alignment() != Qt::Alignment())
                names.append("aligned");
            if (static_cast<const QBoxLayout*>(layout)->stretch(i) != 0)
                names.append("stretched");
        }
        return names;
    };
    QCOMPARE(Items(m_form.horizontalLayout), QStringList({ "pushButton_Reset", "pushButton_Ok", "pushButton_Cancel" }));
    QCOMPARE(Items(m_form.verticalLayout),
        QStringList({ "checkBox_PageSize", "horizontalLayout_2", "checkBox_Resolution", "horizontalLayout_3" }));
    QCOMPARE(Items(m_form.horizontalLayout_2),
        QStringList({ "label_3", "lineEdit_PageSizeX", "label_4", "lineEdit_PageSizeY" }));
    QCOMPARE(
        Items(m_form.horizontalLayout_3), QStringList({ "label_5", "lineEdit_ResoX", "label_6", "lineEdit_ResoY" }));
    QCOMPARE(
        Items(m_form.horizontalLayout_4), QStringList({ "label_2", "comboBox_BitCount", "label", "comboBox_Format" }));
    QCOMPARE(Items(m_form.verticalLayout_2), QStringList({ "horizontalLayout_5", "horizontalLayout_6" }));
    QCOMPARE(Items(m_form.horizontalLayout_5), QStringList({ "label_9", "comboBox_Compress" }));
    QCOMPARE(Items(m_form.horizontalLayout_6), QStringList({ "label_7", "comboBox_FaxKind" }));
}

void SettingFormTest::ContainerLayoutsHaveNoMargins()
{
    for (const QLayout* layout : std::initializer_list<QLayout*> {
             m_form.horizontalLayout, m_form.verticalLayout, m_form.horizontalLayout_4, m_form.verticalLayout_2 })
        QCOMPARE(layout->contentsMargins(), QMargins(0, 0, 0, 0));
}

void SettingFormTest::ControlsHaveTheirTexts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QString>("text");
    const auto Row = [](const char* name, const char* text, const char* property = "text") {
        QTest::newRow(name) << QString(name) << QByteArray(property) << QString(text);
    };
    Row("pushButton_Reset", "Reset");
    Row("pushButton_Ok", "OK");
    Row("pushButton_Cancel", "Cancle");
    Row("checkBox_PageSize", "Resize Page");
    Row("label_3", "         Page Size (Pixel):");
    Row("label_4", "x");
    Row("checkBox_Resolution", "Reset Resolution");
    Row("label_5", "         Resolution (DPI):");
    Row("label_6", "x");
    Row("label_2", "Color Depth:");
    Row("label", "Convert to:");
    Row("groupBox", "Set TIFF", "title");
    Row("label_9", "                            Compression:");
    Row("label_7", "                                   Fax TIFF:");
}

void SettingFormTest::ControlsHaveTheirTexts()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, property);
    QFETCH(QString, text);
    QCOMPARE(m_dialog->findChild<QWidget*>(name)->property(property.constData()).toString(), text);
}

void SettingFormTest::LabelsHaveTheirAlignment()
{
    for (const QLabel* label : { m_form.label_3, m_form.label_5, m_form.label_2, m_form.label })
        QCOMPARE(label->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    for (const QLabel* label : { m_form.label_4, m_form.label_6 })
        QCOMPARE(label->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
    for (const QLabel* label : { m_form.label_9, m_form.label_7 })
        QCOMPARE(label->alignment(), QLabel().alignment());
}

void SettingFormTest::ControlsHaveNothingElse()
{
    for (QObject* member : formtest::Members(m_form)) {
        const auto* widget = qobject_cast<QWidget*>(member);
        if (!widget)
            continue;
        QCOMPARE(widget->styleSheet(), QString());
        QCOMPARE(widget->toolTip(), QString());
        QVERIFY(widget->isEnabled());
    }
    QVERIFY(!m_form.checkBox_PageSize->isChecked());
    QVERIFY(!m_form.checkBox_Resolution->isChecked());
    for (const QComboBox* list :
        { m_form.comboBox_BitCount, m_form.comboBox_Format, m_form.comboBox_Compress, m_form.comboBox_FaxKind })
        QCOMPARE(list->count(), 0);
}

void SettingFormTest::DialogHasSizeTitleAndIcon()
{
    QCOMPARE(m_dialog->size(), QSize(400, 300));
    QCOMPARE(m_dialog->windowTitle(), QString("Setting"));
    const QImage icon = m_dialog->windowIcon().pixmap(48, 48).toImage();
    QVERIFY(!icon.isNull());
    QCOMPARE(icon, QIcon(":/MyIco/Image/Main.ico").pixmap(48, 48).toImage());
}

void SettingFormTest::TextsAreAskedForInOrder()
{
    const NotingTranslator translator;
    m_form.retranslateUi(m_dialog.get());
    QStringList texts { "Setting", "Reset", "OK", "Cancle", "Resize Page", "         Page Size (Pixel):", "x",
        "Reset Resolution", "         Resolution (DPI):", "x", "Color Depth:", "Convert to:", "Set TIFF",
        "                            Compression:", "                                   Fax TIFF:" };
    texts.replaceInStrings(QRegularExpression("^"), "SettingDialog: ");
    QCOMPARE(translator.Asked(), texts);
}

PRISMO_TEST_MAIN(SettingFormTest)
#include "settingform_test.moc"
