#include "ui/DialogProtocol.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

void PrepareDialog(QWidget* dialog) {
    // A dialog-type window stays a dialog: it belongs to the window under it and has no
    // taskbar entry of its own.
    const Qt::WindowType type = dialog->windowType() == Qt::Dialog ? Qt::Dialog : Qt::Window;
    dialog->setWindowFlags(type | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    dialog->setFixedSize(dialog->size());
}

void OpenDialog(QWidget* owner, QWidget* dialog, StartPosition position) {
    PrepareDialog(dialog);
    QRect area;
    if (position == StartPosition::CentreOwner && owner)
        area = owner->frameGeometry();
    else if (position == StartPosition::CentreScreen && QGuiApplication::primaryScreen())
        area = QGuiApplication::primaryScreen()->availableGeometry();
    if (area.isValid())
        dialog->move(area.center() - dialog->rect().center());
    dialog->show();
    if (owner)
        owner->setEnabled(false);
    dialog->activateWindow();
}

void CloseDialog(QWidget* owner, QWidget*& dialog) {
    if (dialog) {
        dialog->hide();
        dialog->deleteLater();
        dialog = nullptr;
    }
    if (owner) {
        owner->setEnabled(true);
        owner->activateWindow();
        owner->setFocus();
    }
}
