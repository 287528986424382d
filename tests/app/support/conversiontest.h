#pragma once

#include "tests/app/support/dialogdriver.h"
#include "tests/app/support/fakebackend.h"
#include "tests/app/support/windowtest.h"

#include <QImage>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>

#include <memory>

// A window at rest with a backend that only records, and what a conversion's tests take hold of. Each test has its own.
class ConversionTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

protected:
    QPushButton* Button() { return windowtest::Child<QPushButton>(*m_window, "pushButton_Convert"); }
    QProgressBar* Bar() { return windowtest::Child<QProgressBar>(*m_window, "progressBarA"); }
    QTableWidget* Table() { return windowtest::Child<QTableWidget>(*m_window, "tableWidget"); }
    QLineEdit* Folder() { return windowtest::Child<QLineEdit>(*m_window, "lineEdit_OutPutPath"); }
    void Press() { windowtest::Click(Button()); }
    bool Running() { return MainWindowProbe::Running(*m_window); }
    bool WaitForEnd();
    // Lists so many files and names an output folder.
    void Prepare(int iFiles);
    // Announces a message box, and checks it when it comes.
    void ExpectWarning(DialogDriver& driver, const QString& strText);
    static QImage Picture(const char* name);
    QImage ShownIcon() { return Button()->icon().pixmap(48, 48).toImage(); }

    std::unique_ptr<FakeBackend> m_backend;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MainWindow> m_window;
    QStringList m_paths;
};
