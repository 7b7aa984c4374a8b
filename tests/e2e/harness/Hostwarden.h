#pragma once

#include "Process.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace e2e {

class TempHome;
class XSession;

// The settings application name and the main window's title, as the operator meets them.
inline const QString kHostwardenApp = QStringLiteral("Hostwarden 2.0");
inline const QString kMainWindowTitle = QStringLiteral("Hostwarden 2.0.1 by Velloquin");

// Starts the hostwarden binary on the session's display with the home's settings; its
// output goes to <logName>.log under the artifacts folder.
Process StartHostwarden(const XSession& session, const TempHome& home, const QString& logName);

// The lines of one section of a settings file's text ("key=value" as written), the
// section found without regard to letter case; empty when there is none.
QStringList SettingsSection(const QByteArray& text, const QString& section);

} // namespace e2e
