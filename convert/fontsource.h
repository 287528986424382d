#pragma once

#include <QByteArray>
#include <QString>

// The environment entry that tells the backend where its fonts lie: "PCLFONTSOURCE=" and the folder "fonts/" beside the
// application's bundle, with forward slashes only. For an application folder outside a bundle, "fonts/" lies beside
// whatever the path's last "." belongs to, or beside the folder itself where there is none.
QByteArray FontSourceEntry(const QString& strApplicationFolder);

// Writes the entry to the debug output and installs it in the process environment. An entry that does not fit into
// 1,024 bytes with its terminating zero is not installed, and the debug output says so; returns whether it was.
bool InstallFontSource(const QByteArray& entry);
