#include "Artifacts.h"

#include <QDir>

namespace e2e {

QString ArtifactsDir() {
    const QString dir = QStringLiteral(E2E_ARTIFACTS);
    QDir().mkpath(dir);
    return dir;
}

QString ArtifactPath(const QString& fileName) {
    return QDir(ArtifactsDir()).filePath(fileName);
}

QString HostwardenBinary() {
    return QStringLiteral(HOSTWARDEN_BIN);
}

QString DemoGameDir() {
    return QStringLiteral(DEMO_GAME_DIR);
}

QString StandinBinary() {
#ifdef STANDIN_BIN
    return QStringLiteral(STANDIN_BIN);
#else
    return {};
#endif
}

} // namespace e2e
