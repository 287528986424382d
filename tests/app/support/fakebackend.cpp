#include "tests/app/support/fakebackend.h"

#include "tests/app/support/windowtest.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

FakeBackend::FakeBackend()
    : m_strBackend(QCoreApplication::applicationDirPath() + QLatin1String("/quillrip"))
{
    Remove();
    if (!QFile::copy(QStringLiteral(PRISMO_FAKE_BACKEND), m_strBackend))
        qFatal("cannot put the fake backend to %s", qPrintable(m_strBackend));
    QDir(m_folder.path()).mkdir(QStringLiteral("runs"));
    m_watcher.addPath(m_folder.filePath(QStringLiteral("runs")));
    qputenv("PRISMO_FAKE_RUNS", m_folder.filePath(QStringLiteral("runs")).toLocal8Bit());
}

FakeBackend::~FakeBackend()
{
    Remove();
    for (const char* name :
        { "PRISMO_FAKE_RUNS", "PRISMO_FAKE_EXIT", "PRISMO_FAKE_CRASH", "PRISMO_FAKE_PRINT", "PRISMO_FAKE_GATE" })
        qunsetenv(name);
    if (m_iGate >= 0)
        ::close(m_iGate);
}

void FakeBackend::Remove() { QFile::remove(m_strBackend); }

void FakeBackend::MakeEmpty()
{
    Remove();
    windowtest::MakeFile(m_strBackend);
}

void FakeBackend::MakeNotExecutable()
{
    Remove();
    windowtest::MakeFile(m_strBackend, 10);
}

void FakeBackend::ExitWith(int iCode) { qputenv("PRISMO_FAKE_EXIT", QByteArray::number(iCode)); }

void FakeBackend::Crash() { qputenv("PRISMO_FAKE_CRASH", "1"); }

void FakeBackend::Print(int iBytes) { qputenv("PRISMO_FAKE_PRINT", QByteArray::number(iBytes)); }

void FakeBackend::WaitAtGate()
{
    const QByteArray path = m_folder.filePath(QStringLiteral("gate")).toLocal8Bit();
    if (::mkfifo(path.constData(), 0600) != 0)
        qFatal("cannot make the gate");
    // Held open for both ends, so that neither opening it here nor in the backend blocks.
    m_iGate = ::open(path.constData(), O_RDWR | O_CLOEXEC);
    qputenv("PRISMO_FAKE_GATE", path);
}

void FakeBackend::OpenGate(int iBackends)
{
    const QByteArray tickets(iBackends, 'x');
    if (::write(m_iGate, tickets.constData(), static_cast<size_t>(tickets.size())) != tickets.size())
        qFatal("cannot open the gate");
}

std::vector<BackendRun> FakeBackend::Runs() const
{
    std::vector<BackendRun> runs;
    for (int i = 1;; ++i) {
        QFile record(m_folder.filePath(QStringLiteral("runs/%1").arg(i)));
        if (!record.open(QIODevice::ReadOnly))
            return runs;
        QByteArrayList fields = record.readAll().split('\0');
        fields.removeLast();
        BackendRun run;
        const QByteArray fontSource = fields.takeFirst();
        if (fontSource.startsWith('='))
            run.fontSource = fontSource.mid(1);
        for (const QByteArray& argument : fields)
            run.arguments.append(QString::fromLocal8Bit(argument));
        runs.push_back(run);
    }
}

bool FakeBackend::WaitForRuns(int iRuns)
{
    return windowtest::WaitUntil([this, iRuns] { return static_cast<int>(Runs().size()) >= iRuns; });
}

QStringList FakeBackend::InputsSoFar() const
{
    QStringList inputs;
    for (const BackendRun& run : Runs())
        inputs.append(run.arguments.value(run.arguments.indexOf(QStringLiteral("-i")) + 1));
    return inputs;
}
