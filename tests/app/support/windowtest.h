#pragma once

#include "ui/mainwindow.h"

#include <QApplication>
#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>
#include <QVariant>

#include <functional>

class QProcess;
class QPushButton;

// The run's state inside the main window, which no widget shows: what a class derived from it could name.
class MainWindowProbe : public MainWindow {
public:
    MainWindowProbe() = delete;

    static int& CurrentRow(MainWindow& window) { return window.*&MainWindowProbe::m_iCurrentRow; }
    static int FileCount(const MainWindow& window) { return window.*&MainWindowProbe::m_iFileCount; }
    static QString OutputFolder(const MainWindow& window) { return window.*&MainWindowProbe::m_strOutputFolder; }
    static QString Extension(const MainWindow& window) { return window.*&MainWindowProbe::m_strExtension; }
    static QStringList FileList(const MainWindow& window) { return window.*&MainWindowProbe::m_fileList; }
    static bool& Running(MainWindow& window) { return window.*&MainWindowProbe::m_bRunning; }
    static QProcess* Process(const MainWindow& window) { return window.*&MainWindowProbe::m_process; }
    static SettingDialog& Settings(MainWindow& window) { return window.*&MainWindowProbe::m_settingDialog; }
};

namespace windowtest {

// Every test program lies in a folder of its own, so its settings file is nobody else's.
void RemoveSettings();
void WriteSetting(const QString& strKey, const QVariant& value);
// The stored text; a null string where the key is missing.
QString ReadSetting(const QString& strKey);

// Handles events until the claim holds. Sleeps in the event loop only; false after a time no honest run needs.
bool WaitUntil(const std::function<bool()>& claim);

// The object of that name and class below the parent; fails loudly when it is missing.
template <class T> T* Child(const QObject& parent, const char* name)
{
    T* child = parent.findChild<T*>(QLatin1String(name));
    if (!child)
        qFatal("no %s called %s", T::staticMetaObject.className(), name);
    return child;
}

// A mouse click as a user makes it.
void Click(QWidget* widget);
void ClickButton(const QObject& parent, const char* name);

// Makes a file of that many bytes (sparse where the system can) and returns its path.
QString MakeFile(const QString& strPath, qint64 iBytes = 0);

// Lists the paths in the table as AddFile would, through the dialog.
void AddRows(MainWindow& window, const QStringList& paths);

// Chooses these files or this folder in the file dialog, and accepts it.
void ChooseInFileDialog(QWidget* fileDialog, const QStringList& paths);

// Stands in for a language while it lives: notes what is asked for as "context: text", in that order, and answers with
// the text and a "~" behind it.
class NotingTranslator : public QTranslator {
public:
    NotingTranslator();
    ~NotingTranslator() override;

    QStringList Asked() const { return m_asked; }
    void Forget() { m_asked.clear(); }

    QString translate(
        const char* context, const char* sourceText, const char* disambiguation = nullptr, int n = -1) const override;
    bool isEmpty() const override { return false; }

private:
    mutable QStringList m_asked;
};

// Ready for the window's tests: a platform without a screen unless another is asked for, our own file dialogs, and
// nothing read from or written to the user's configuration, where file dialogs keep what they showed last.
class TestEnvironment {
public:
    TestEnvironment();

private:
    QTemporaryDir m_configuration;
};

} // namespace windowtest

// QTEST_MAIN in that environment.
#define PRISMO_TEST_MAIN(TestClass)                                                                                    \
    int main(int argc, char** argv)                                                                                    \
    {                                                                                                                  \
        const windowtest::TestEnvironment environment;                                                                 \
        QApplication application(argc, argv);                                                                          \
        TestClass test;                                                                                                \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }
