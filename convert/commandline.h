#pragma once

#include <QString>

class QProcess;

// The pieces of the line that starts the backend for one file. Everything travels as one text; quoted words keep
// their blanks and lose their quotes when the line is split.

// The backend's executable, beside the application's own.
QString BackendPath();

// The image that a conversion writes: the input file's name without folder and last extension, in the output folder.
// Nothing is normalised; an empty folder gives a path below the root.
QString OutputFilePath(const QString& strOutputFolder, const QString& strInputPath, const QString& strExtension);

// The whole line. strOptions comes from MainWindow::GetCmdArg and brings its own blanks.
QString BackendCommandLine(const QString& strBackendPath, const QString& strOptions, const QString& strOutputPath,
    const QString& strInputPath);

// Splits the line at blanks outside double quotes and starts the program it names; no shell sees it.
void StartCommandLine(QProcess& process, const QString& strCommandLine);
