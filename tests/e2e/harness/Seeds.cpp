#include "Seeds.h"

namespace e2e {

QByteArray LaterRunSettings(const LaterRun& run) {
    QString text = "[Startup]\nHasRunSetup=1\nRFLocation=" + run.rfLocation + "\n";
    for (const QString& line : run.startup)
        text += line + "\n";
    text += "\n[Default]\n"
            "gametype=CTF\n"
            "servname=$Me's Dedicated CTF Running Hostwarden 2.0\n"
            "name=Default\n"
            "maxplayers=16\n"
            "password=\n"
            "rconpass=\n"
            "maxtime=30\n"
            "maxcaps=5\n"
            "maxkills=50\n"
            "maxgeo=128\n"
            "teamdamage=false\n"
            "forcespawn=false\n"
            "balance=true\n"
            "weaponstay=false\n"
            "falldamage=true\n"
            "default=1\n";
    for (int k = 0; k < int(run.messages.size()); ++k)
        text += QStringLiteral("Text%1=%2\n").arg(k).arg(run.messages[k]);
    text += "MessageOn=1\n"
            "MapCount=0\n"
            "\n[ConfName]\n"
            "ConfCount=1\n"
            "Conf1=" +
            run.listEntry + "\n";
    return text.toUtf8();
}

} // namespace e2e
