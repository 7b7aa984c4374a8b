#include "Hostwarden.h"

#include "Artifacts.h"
#include "TempHome.h"
#include "XSession.h"

#include <QFile>

namespace e2e {

Process StartHostwarden(const XSession& session, const TempHome& home, const QString& logName) {
    ProcessOptions options;
    options.env = session.Environment() + home.Environment() + QStringList{"QT_QPA_PLATFORM=xcb"};
    options.workDir = home.Path();
    options.stdoutFile = ArtifactPath(logName + ".log");
    QFile::remove(options.stdoutFile);
    options.stderrFile = options.stdoutFile;
    return Process(HostwardenBinary(), {}, options);
}

QStringList SettingsSection(const QByteArray& text, const QString& section) {
    QStringList lines;
    bool inside = false;
    for (QString line : QString::fromUtf8(text).split('\n')) {
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.startsWith('[') && line.endsWith(']')) {
            inside = line.mid(1, line.size() - 2).compare(section, Qt::CaseInsensitive) == 0;
            continue;
        }
        if (inside && !line.isEmpty())
            lines << line;
    }
    return lines;
}

} // namespace e2e
