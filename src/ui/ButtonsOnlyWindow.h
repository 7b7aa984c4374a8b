#pragma once

#include <QCloseEvent>
#include <QWidget>

// A dialog window that only its own buttons close: the window manager's close request,
// which the window may still offer, is ignored.
class ButtonsOnlyWindow : public QWidget {
protected:
    void closeEvent(QCloseEvent* event) override { event->ignore(); }
};
