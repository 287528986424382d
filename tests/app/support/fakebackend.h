#pragma once

#include <QByteArray>
#include <QFileSystemWatcher>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <vector>

// One start of the fake backend, as it saw itself.
struct BackendRun {
    QStringList arguments; // without the program
    QByteArray fontSource; // value of PCLFONTSOURCE; null when unset
};

// A `quillrip` beside the test program that records each start and does nothing else, until told otherwise.
// Take one per test: its records, gate and orders end with it.
class FakeBackend {
public:
    FakeBackend();
    ~FakeBackend();

    // Instead of the recording program: no file, an empty one, one that cannot be executed.
    void Remove();
    void MakeEmpty();
    void MakeNotExecutable();

    // Orders for backends started from now on.
    void ExitWith(int iCode);
    void Crash();
    void Print(int iBytes); // to standard output and standard error each
    void WaitAtGate();

    // Lets that many waiting backends, or those that come later, go on.
    void OpenGate(int iBackends = 1);

    // The starts so far, in order. A start is recorded before the backend waits, prints or ends.
    std::vector<BackendRun> Runs() const;
    // Handles events until that many starts are recorded.
    bool WaitForRuns(int iRuns);
    QStringList InputsSoFar() const; // the -i argument of each start

private:
    QTemporaryDir m_folder;
    QFileSystemWatcher m_watcher;
    QString m_strBackend;
    int m_iGate = -1;
};
