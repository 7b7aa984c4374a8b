#include "ui/settings/AboutHandlers.h"

#include "settings/ProjectInfo.h"
#include "ui/About.h"
#include "ui/DialogProtocol.h"
#include "ui/Hostwarden.h"
#include "ui/WindowRegistry.h"
#include "ui/settings/ResetHandlers.h"
#include "ui_About.h"

QStringList AboutLines() {
    const QString site = kProjectAddress;
    return {
        QStringLiteral("Hostwarden 2.0 by Velloquin"),
        QStringLiteral("Questions and comments are welcome through the project's page: ") + site,
        QString(),
        QString(),
        QStringLiteral("Keystrokes reach the server console through Hostwarden's own key-sending "
                       "module, modPushKeys, not through the window system's key-sending "
                       "facility."),
        QString(),
        QStringLiteral("modPushKeys is part of Hostwarden and is distributed under the same terms "
                       "as the rest of the program."),
        QString(),
        QStringLiteral("Key-sending module:"),
        QStringLiteral("The Hostwarden project"),
        QStringLiteral("No postal address: the project lives on the web."),
        QStringLiteral("Write to us through the project's page,"),
        QStringLiteral("where every message is answered in public."),
        QStringLiteral("E-mail: through the contact form at ") + site,
        QStringLiteral("Web: ") + site,
        QString(),
        QString(),
        QStringLiteral("Questions about the program can be sent through ") + site,
        QStringLiteral("Please report faults there too, with an accurate description of how you "
                       "met the fault."),
        QStringLiteral("Updates are published at ") + site,
        QString(),
        QString(),
        QStringLiteral("Note This"),
        QStringLiteral(
            "If you wish to use the Server Recovery option you MUST use AutoMessages. The server "
            "Recovery use some of the subs that Automsgs uses. Also It isn't 100% successfull. It "
            "relys on the dedicated server closing or not responding. A mere error wont be "
            "enough to trigger it."),
        QString(),
        QStringLiteral("I removed time scripting because it was full of bugs and wasn't realy in "
                       "demand. It also was having bad effects on Automsgs."),
        QString(),
    };
}

void CMDAbout_Click(Hostwarden& w) {
    auto* d = new About(w);
    w.forms.About = d;
    About_Form_Load(*d);
    OpenDialog(&w, d, StartPosition::CentreOwner);
}

void About_Form_Load(About& d) {
    QString text;
    for (const QString& line : AboutLines())
        text += line + QStringLiteral("\r\n");
    d.ui->Text1->setPlainText(text);
}

void About_CMDOK_Click(About& d) {
    CloseDialog(&d.main, d.main.forms.About);
}

void About_CMDReset_Click(About& d) {
    CMDReset_Click(d.main.services, d.main.app);
}
