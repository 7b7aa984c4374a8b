#include "ui/server/BrowseHandlers.h"

#include "platform/FolderList.h"
#include "platform/ProcessEnd.h"
#include "platform/Services.h"
#include "platform/posix/Drives.h"
#include "ui/Browse.h"
#include "ui/DialogProtocol.h"
#include "ui/Setup.h"
#include "ui/WindowRegistry.h"
#include "ui_Browse.h"
#include "ui_Setup.h"

#include <QDir>

void CMDBrowse_Click(Setup& s) {
    auto* b = new Browse(s);
    s.forms.Browse = b;
    Browse_Form_Load(*b);
    OpenDialog(&s, b, StartPosition::CentreOwner);
}

void Browse_Form_Load(Browse& b) {
    const QString home = QDir::homePath();
    {
        const QSignalBlocker quiet(b.ui->Drive1);
        b.ui->Drive1->addItems(ListDrives());
        b.ui->Drive1->setCurrentIndex(b.ui->Drive1->findText(home));
    }
    b.SetPath(home);
}

void Drive1_Change(Browse& b) {
    b.SetPath(b.ui->Drive1->currentText());
}

void Dir1_Change(Browse& b) {
    QListWidget* files = b.ui->File1;
    files->clear();
    files->addItems(ListFiles(b.Path(), files->property("pattern").toString()));
    b.ui->CMDOK->setEnabled(files->count() > 0);
}

void Browse_CMDOK_Click(Browse& b) {
    Setup& s = b.setup;
    s.ui->TXTRFLocate->setText(FolderText(b.Path()));
    s.ui->CMDOK->setEnabled(true);
    CloseDialog(&s, s.forms.Browse);
}

void Browse_CMDCancel_Click(Browse& b) {
    b.setup.services.end.EndNow();
}
