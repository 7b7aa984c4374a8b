#pragma once

#include <initializer_list>

class QEvent;
class QWidget;

enum class StartPosition { CentreOwner, CentreScreen, SystemDefault };

// Gives a dialog the frame every dialog has: a fixed border and no title-bar buttons.
void PrepareDialog(QWidget* dialog);

// Dialogs borrow the window that opens them: the dialog is shown non-modal and the
// owner is disabled but stays visible.
void OpenDialog(QWidget* owner, QWidget* dialog, StartPosition position);

// An owner's change event: when a click activates the disabled owner, which may raise it over
// its open dialog, the dialog comes forward again and keeps the input.
void KeepDialogForward(QWidget* owner, QEvent* event, std::initializer_list<QWidget*> dialogs);

// Hides and unloads the dialog, enables the owner again and gives it the focus. The
// reference to the dialog is cleared at once; the object goes when control returns
// to the event loop.
void CloseDialog(QWidget* owner, QWidget*& dialog);
