#include "ui/DialogProtocol.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

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
    // move() places the frame: its middle, not the client area's, goes to the middle, as
    // far as the window system tells the frame before the window shows.
    dialog->winId();
    const QRect frame = dialog->frameGeometry();
    if (area.isValid())
        dialog->move(area.center() - (frame.center() - frame.topLeft()));
    // The dialog is not the owner's child (a disabled owner would disable it too), but the
    // window system learns whose it is: a dialog-type window stays above its owner.
    if (owner)
        dialog->windowHandle()->setTransientParent(owner->window()->windowHandle());
    dialog->show();
    if (owner)
        owner->setEnabled(false);
    dialog->activateWindow();
}

void KeepDialogForward(QWidget* owner, QEvent* event, std::initializer_list<QWidget*> dialogs) {
    if (event->type() != QEvent::ActivationChange || owner->isEnabled() || !owner->isActiveWindow())
        return;
    for (QWidget* dialog : dialogs)
        if (dialog) {
            dialog->raise();
            dialog->activateWindow();
        }
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
