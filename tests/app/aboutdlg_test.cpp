#include "tests/app/support/dialogdriver.h"
#include "tests/app/support/fakebackend.h"
#include "tests/app/support/formtest.h"
#include "tests/app/support/windowtest.h"
#include "ui/aboutdlg.h"
#include "ui_aboutdlg.h"

#include <QDesktopServices>
#include <QFontDatabase>
#include <QLineEdit>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QUrl>

#include <memory>

using namespace windowtest;

// Stands in for the desktop's browser.
class Browser : public QObject {
    Q_OBJECT

public:
    QList<QUrl> m_opened;

public slots:
    void Open(const QUrl& url) { m_opened.append(url); }
};

class AboutDlgTest : public QObject {
    Q_OBJECT

private slots:
    void DialogCannotBeResized();
    void HomepageOpensEachTimeAndDialogStays();
    void OpeningDuringAConversionDoesNotStopIt();

    void FormHasItsTwoObjects();
    void ParagraphsAreCentredWithoutMargins();
    void ParagraphsHaveTheirContentAndFonts();
    void HomePageIsALinkToItself();
    void TextIsEditableAndEditsVanish();
    void AllLinesFitTheTextArea_data();
    void AllLinesFitTheTextArea();
    void EscapeClosesIt();
    void TextsAreAskedForInTheDialogsName();
    void EachOpeningIsAFreshDialog();

private:
    static QList<QTextBlock> Paragraphs(const QTextDocument* document)
    {
        QList<QTextBlock> blocks;
        for (QTextBlock block = document->begin(); block.isValid(); block = block.next())
            blocks.append(block);
        return blocks;
    }
    static QList<QTextFragment> Fragments(const QTextBlock& block)
    {
        QList<QTextFragment> fragments;
        for (auto it = block.begin(); !it.atEnd(); ++it)
            fragments.append(it.fragment());
        return fragments;
    }
};

void AboutDlgTest::DialogCannotBeResized()
{
    AboutDlg dialog;
    dialog.show();
    dialog.resize(500, 500);
    QCOMPARE(dialog.size(), QSize(366, 205));
    QCOMPARE(dialog.minimumSize(), QSize(366, 205));
    QCOMPARE(dialog.maximumSize(), QSize(366, 205));
}

void AboutDlgTest::HomepageOpensEachTimeAndDialogStays()
{
    Browser browser;
    QDesktopServices::setUrlHandler("https", &browser, "Open");
    AboutDlg dialog;
    dialog.show();
    for (int i = 1; i <= 3; ++i) {
        ClickButton(dialog, "pushButton_URL");
        QCOMPARE(browser.m_opened.size(), i);
        QVERIFY(dialog.isVisible());
    }
    QDesktopServices::unsetUrlHandler("https");
    for (const QUrl& url : browser.m_opened) {
        QVERIFY(url.isValid());
        QCOMPARE(url.scheme(), QString("https"));
    }
}

void AboutDlgTest::OpeningDuringAConversionDoesNotStopIt()
{
    RemoveSettings();
    FakeBackend backend;
    backend.WaitAtGate();
    const QTemporaryDir folder;
    MainWindow window;
    window.show();
    window.InitAllChoice();
    AddRows(window, { MakeFile(folder.filePath("a.pcl"), 10), MakeFile(folder.filePath("b.pcl"), 10) });
    Child<QLineEdit>(window, "lineEdit_OutPutPath")->setText(folder.path());
    ClickButton(window, "pushButton_Convert");
    QVERIFY(backend.WaitForRuns(1));

    // The first backend ends and the second starts while the dialog is open.
    DialogDriver driver;
    driver.Expect([&backend](QWidget* dialog) {
        QVERIFY(qobject_cast<AboutDlg*>(dialog));
        backend.OpenGate();
        QVERIFY(backend.WaitForRuns(2));
        dialog->close();
    });
    ClickButton(window, "pushButton_About");
    QVERIFY(driver.AllShown());
    QVERIFY(MainWindowProbe::Running(window));
    backend.OpenGate();
    QVERIFY(WaitUntil([&window] { return !MainWindowProbe::Running(window); }));
    QCOMPARE(backend.Runs().size(), std::size_t(2));
    RemoveSettings();
}

void AboutDlgTest::FormHasItsTwoObjects()
{
    QDialog dialog;
    Ui_AboutDlg form;
    form.setupUi(&dialog);
    QCOMPARE(formtest::ClassesAndNames(formtest::Members(form)),
        QStringList({ "QPushButton pushButton_URL", "QTextEdit textEdit" }));
    QCOMPARE(formtest::ChildrenAmong(&dialog, formtest::Members(form)), QStringList({ "pushButton_URL", "textEdit" }));
    QCOMPARE(dialog.objectName(), QString("AboutDlg"));
    QCOMPARE(dialog.windowTitle(), QString("About "));
    QCOMPARE(dialog.size(), QSize(366, 205));
    QCOMPARE(dialog.styleSheet(), QString());
    QCOMPARE(dialog.windowIcon().pixmap(48, 48).toImage(), QIcon(":/MyIco/Image/Main.ico").pixmap(48, 48).toImage());
    QCOMPARE(form.pushButton_URL->geometry(), QRect(10, 140, 341, 41));
    QCOMPARE(form.pushButton_URL->text(), QString("Visit Our Homepage"));
    QCOMPARE(form.pushButton_URL->styleSheet(), QString());
    QCOMPARE(form.textEdit->geometry(), QRect(-10, 20, 381, 111));
    QCOMPARE(form.textEdit->styleSheet(), QString("background-color:transparent;"));

    QDialog named;
    named.setObjectName("mine");
    Ui_AboutDlg namedForm;
    namedForm.setupUi(&named);
    QCOMPARE(named.objectName(), QString("mine"));
}

void AboutDlgTest::ParagraphsAreCentredWithoutMargins()
{
    const AboutDlg dialog;
    const QList<QTextBlock> paragraphs = Paragraphs(Child<QTextEdit>(dialog, "textEdit")->document());
    QCOMPARE(paragraphs.size(), 7);
    for (const QTextBlock& paragraph : paragraphs) {
        const QTextBlockFormat format = paragraph.blockFormat();
        QCOMPARE(format.alignment() & Qt::AlignHorizontal_Mask, Qt::AlignHCenter);
        QCOMPARE(format.topMargin(), 0.0);
        QCOMPARE(format.bottomMargin(), 0.0);
        QCOMPARE(format.leftMargin(), 0.0);
        QCOMPARE(format.rightMargin(), 0.0);
        QCOMPARE(format.indent(), 0);
        QCOMPARE(format.textIndent(), 0.0);
    }
}

void AboutDlgTest::ParagraphsHaveTheirContentAndFonts()
{
    const AboutDlg dialog;
    const QList<QTextBlock> paragraphs = Paragraphs(Child<QTextEdit>(dialog, "textEdit")->document());
    const auto Family
        = [](const QTextFragment& fragment) { return fragment.charFormat().fontFamilies().toStringList().value(0); };
    const auto CompareWith = [&Family](const QTextFragment& fragment, const char* family, int iWeight) {
        QCOMPARE(Family(fragment), QString(family));
        QCOMPARE(fragment.charFormat().fontPointSize(), 12.0);
        QCOMPARE(fragment.charFormat().fontWeight(), iWeight);
    };

    QCOMPARE(paragraphs.at(0).text(), QString("Thank you for purchasing our software!"));
    CompareWith(Fragments(paragraphs.at(0)).at(0), "SimSun", QFont::DemiBold);
    QCOMPARE(Fragments(paragraphs.at(0)).at(0).charFormat().foreground().color(), QColor("#0055ff"));

    QCOMPARE(paragraphs.at(1).text(), QString(42, '-'));
    CompareWith(Fragments(paragraphs.at(1)).at(0), "SimSun", QFont::DemiBold);
    QCOMPARE(Fragments(paragraphs.at(1)).at(0).charFormat().foreground().color(), QColor("#000000"));

    const QList<QTextFragment> product = Fragments(paragraphs.at(2));
    QCOMPARE(product.size(), 2);
    QCOMPARE(product.at(0).text(), QString("Prismo v2.0"));
    CompareWith(product.at(0), "MS Shell Dlg 2", QFont::Normal);
    QCOMPARE(product.at(1).text(), QString(" "));
    CompareWith(product.at(1), "SimSun", QFont::Normal);

    QVERIFY(paragraphs.at(3).text().startsWith("Copyright"));
    CompareWith(Fragments(paragraphs.at(3)).at(0), "MS Shell Dlg 2", QFont::Normal);

    CompareWith(Fragments(paragraphs.at(4)).at(0), "SimSun", QFont::DemiBold);
    QCOMPARE(Fragments(paragraphs.at(4)).at(0).charFormat().foreground().color(), QColor("#0000ff"));
    QVERIFY(Fragments(paragraphs.at(4)).at(0).charFormat().fontUnderline());

    QVERIFY(paragraphs.at(5).text().contains('@'));
    CompareWith(Fragments(paragraphs.at(5)).at(0), "MS Shell Dlg 2", QFont::Normal);

    QCOMPARE(paragraphs.at(6).text(), QString());
    QCOMPARE(paragraphs.at(6).charFormat().fontFamilies().toStringList().value(0), QString("MS Shell Dlg 2"));
    QCOMPARE(paragraphs.at(6).charFormat().fontPointSize(), 12.0);
}

void AboutDlgTest::HomePageIsALinkToItself()
{
    const AboutDlg dialog;
    const QTextBlock paragraph = Paragraphs(Child<QTextEdit>(dialog, "textEdit")->document()).at(4);
    QVERIFY(Fragments(paragraph).at(0).charFormat().isAnchor());
    QCOMPARE(Fragments(paragraph).at(0).charFormat().anchorHref(), paragraph.text());
}

void AboutDlgTest::TextIsEditableAndEditsVanish()
{
    const QString strFirstLine = "Thank you for purchasing our software!";
    {
        AboutDlg dialog;
        auto* text = Child<QTextEdit>(dialog, "textEdit");
        QVERIFY(!text->isReadOnly());
        QTest::keyClicks(text, "x");
        QVERIFY(text->toPlainText() != strFirstLine);
        QVERIFY(text->document()->isModified());
    }
    const AboutDlg dialog;
    QVERIFY(Child<QTextEdit>(dialog, "textEdit")->toPlainText().startsWith(strFirstLine));
}

void AboutDlgTest::AllLinesFitTheTextArea_data()
{
    QTest::addColumn<QString>("family");
    QTest::newRow("the desktop's own") << QString();
    for (const QString& strFamily : QFontDatabase::families())
        QTest::newRow(qPrintable(strFamily)) << strFamily;
}

// On a screen of any resolution, in whatever font the desktop takes for those that the text names: nothing is cut and
// no scroll bar comes up at the dialog's edge.
void AboutDlgTest::AllLinesFitTheTextArea()
{
    QFETCH(QString, family);
    const QStringList named { "SimSun", "MS Shell Dlg 2" };
    if (!family.isEmpty()) {
        for (const QString& strNamed : named)
            QFont::insertSubstitution(strNamed, family);
    }
    AboutDlg dialog;
    dialog.show();
    QCoreApplication::processEvents();
    const auto* text = Child<QTextEdit>(dialog, "textEdit");
    QVERIFY(text->document()->size().height() <= text->viewport()->height());
    QCOMPARE(text->verticalScrollBar()->maximum(), 0);
    for (const QTextBlock& paragraph : Paragraphs(text->document()))
        QCOMPARE(paragraph.layout()->lineCount(), 1);
    for (const QString& strNamed : named)
        QFont::removeSubstitutions(strNamed);
}

void AboutDlgTest::EscapeClosesIt()
{
    AboutDlg dialog;
    DialogDriver driver;
    driver.Expect([](QWidget* shown) { QTest::keyClick(shown, Qt::Key_Escape); });
    QCOMPARE(dialog.exec(), static_cast<int>(QDialog::Rejected));
}

void AboutDlgTest::TextsAreAskedForInTheDialogsName()
{
    const NotingTranslator translator;
    const AboutDlg dialog;
    QCOMPARE(translator.Asked().size(), 3);
    QVERIFY(translator.Asked().contains("AboutDlg: About "));
    QVERIFY(translator.Asked().contains("AboutDlg: Visit Our Homepage"));
    for (const QString& strAsked : translator.Asked())
        QVERIFY(strAsked.startsWith("AboutDlg: "));
}

void AboutDlgTest::EachOpeningIsAFreshDialog()
{
    MainWindow window;
    DialogDriver driver;
    for (const int opening : { 1, 2 }) {
        driver.Expect([](QWidget* dialog) {
            QVERIFY(!dialog->parentWidget());
            auto* text = Child<QTextEdit>(*dialog, "textEdit");
            QVERIFY(text->toPlainText().startsWith("Thank you"));
            text->setPlainText("edited");
            dialog->close();
        });
        ClickButton(window, "pushButton_About");
        QCOMPARE(driver.ShownCount(), opening);
    }
    QVERIFY(driver.AllShown());
}

PRISMO_TEST_MAIN(AboutDlgTest)
#include "aboutdlg_test.moc"
