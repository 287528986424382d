#include "tests/app/support/windowtest.h"

#include "settings/settingsfile.h"
#include "tests/app/support/dialogdriver.h"

#include <QEventLoop>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTimer>

namespace windowtest {

namespace {
constexpr int kPatienceMilliseconds = 60'000;
}

void RemoveSettings() { QFile::remove(SettingsFilePath()); }

void WriteSetting(const QString& strKey, const QVariant& value)
{
    QSettings settings(SettingsFilePath(), QSettings::IniFormat);
    settings.setValue(strKey, value);
}

QString ReadSetting(const QString& strKey)
{
    const QSettings settings(SettingsFilePath(), QSettings::IniFormat);
    return settings.value(strKey).toString();
}

bool WaitUntil(const std::function<bool()>& claim)
{
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.start(kPatienceMilliseconds);
    while (!claim()) {
        if (!deadline.isActive())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

void Click(QWidget* widget) { QTest::mouseClick(widget, Qt::LeftButton); }

void ClickButton(const QObject& parent, const char* name) { Click(Child<QPushButton>(parent, name)); }

QString MakeFile(const QString& strPath, qint64 iBytes)
{
    QFile file(strPath);
    if (!file.open(QIODevice::WriteOnly) || !file.resize(iBytes))
        qFatal("cannot make %s", qPrintable(strPath));
    return strPath;
}

void ChooseInFileDialog(QWidget* fileDialog, const QStringList& paths)
{
    QStringList quoted;
    for (const QString& strPath : paths)
        quoted.append(paths.size() == 1 ? strPath : QLatin1Char('"') + strPath + QLatin1Char('"'));
    Child<QLineEdit>(*fileDialog, "fileNameEdit")->setText(quoted.join(QLatin1Char(' ')));
    static_cast<QDialog*>(qobject_cast<QFileDialog*>(fileDialog))->accept();
    if (fileDialog->isVisible())
        qFatal("the file dialog does not accept %s", qPrintable(paths.join(QLatin1Char(' '))));
}

void AddRows(MainWindow& window, const QStringList& paths)
{
    DialogDriver driver;
    driver.Expect([&paths](QWidget* dialog) { ChooseInFileDialog(dialog, paths); });
    ClickButton(window, "pushButton_Add");
    if (!driver.AllShown())
        qFatal("the dialog for adding files did not open");
}

NotingTranslator::NotingTranslator() { QCoreApplication::installTranslator(this); }

NotingTranslator::~NotingTranslator() { QCoreApplication::removeTranslator(this); }

// The toolkit asks for its own texts too, in contexts of its own; those stay as they are.
QString NotingTranslator::translate(
    const char* context, const char* sourceText, const char* /*disambiguation*/, int /*n*/) const
{
    const QString strContext = QString::fromUtf8(context);
    if (strContext.startsWith(QLatin1Char('Q')))
        return {};
    m_asked.append(strContext + QLatin1String(": ") + QString::fromUtf8(sourceText));
    return QString::fromUtf8(sourceText) + QLatin1Char('~');
}

TestEnvironment::TestEnvironment()
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("XDG_CONFIG_HOME", m_configuration.path().toLocal8Bit());
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
}

} // namespace windowtest
