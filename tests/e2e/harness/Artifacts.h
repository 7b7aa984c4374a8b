#pragma once

#include <QString>

namespace e2e {

// Where tests leave screenshots and logs; created on first use.
QString ArtifactsDir();
QString ArtifactPath(const QString& fileName);

// The programs under test, as the build laid them out.
QString HostwardenBinary();
QString DemoGameDir();
// Empty while the build has no stand-in.
QString StandinBinary();

} // namespace e2e
