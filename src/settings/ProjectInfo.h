#pragma once

#include <QString>

// The application name every settings value is stored under.
inline const QString kAppName = QStringLiteral("Hostwarden 2.0");
// The project's update page, quoted in the default messages and the banner notice.
inline const QString kProjectAddress = QStringLiteral("https://hostwarden.example.org/");
