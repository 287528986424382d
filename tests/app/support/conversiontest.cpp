#include "tests/app/support/conversiontest.h"

#include <QMessageBox>

using namespace windowtest;

void ConversionTest::init()
{
    RemoveSettings();
    m_backend = std::make_unique<FakeBackend>();
    m_folder = std::make_unique<QTemporaryDir>();
    m_window = std::make_unique<MainWindow>();
    m_window->setFixedSize(730, 450);
    m_window->show();
    m_window->InitAllChoice();
}

void ConversionTest::cleanup()
{
    m_window.reset();
    m_backend.reset();
    RemoveSettings();
}

bool ConversionTest::WaitForEnd()
{
    return WaitUntil([this] { return !Running(); });
}

void ConversionTest::Prepare(int iFiles)
{
    QStringList paths;
    for (int i = 0; i < iFiles; ++i)
        paths.append(MakeFile(m_folder->filePath(QString("job%1.pcl").arg(i)), 10));
    AddRows(*m_window, paths);
    m_paths = paths;
    Folder()->setText(m_folder->path());
}

void ConversionTest::ExpectWarning(DialogDriver& driver, const QString& strText)
{
    driver.Expect([this, strText](QWidget* dialog) {
        auto* box = qobject_cast<QMessageBox*>(dialog);
        QVERIFY(box);
        QCOMPARE(box->windowTitle(), QString("Warning"));
        QCOMPARE(box->text(), strText);
        QCOMPARE(box->icon(), QMessageBox::Information);
        QCOMPARE(box->standardButtons(), QMessageBox::StandardButtons(QMessageBox::Yes));
        QCOMPARE(box->parentWidget(), m_window.get());
        Click(box->button(QMessageBox::Yes));
    });
}

QImage ConversionTest::Picture(const char* name)
{
    return QPixmap(QString(":/MyIco/Image/%1.ico").arg(name)).toImage();
}
