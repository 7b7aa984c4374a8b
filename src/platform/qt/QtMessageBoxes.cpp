#include "platform/qt/QtMessageBoxes.h"

#include <QApplication>
#include <QClipboard>
#include <QMessageBox>
#include <QShortcut>

namespace {

QMessageBox::Icon IconOf(MsgIcon icon) {
    return icon == MsgIcon::Critical      ? QMessageBox::Critical
           : icon == MsgIcon::Information ? QMessageBox::Information
                                          : QMessageBox::NoIcon;
}

} // namespace

void QtMessageBoxes::Notify(const MessageRequest& request) {
    if (!notice_) {
        notice_ = new QMessageBox;
        notice_->setAttribute(Qt::WA_DeleteOnClose);
        // The console keeps the keyboard; the operator reads this when they look.
        notice_->setAttribute(Qt::WA_ShowWithoutActivating);
        notice_->setWindowFlag(Qt::WindowStaysOnTopHint);
        notice_->setStandardButtons(QMessageBox::Ok);
        notice_->setModal(false);
    }
    notice_->setText(request.text);
    notice_->setWindowTitle(request.title);
    notice_->setIcon(IconOf(request.icon));
    notice_->show();
}

MsgAnswer QtMessageBoxes::Show(const MessageRequest& request) {
    QMessageBox box;
    box.setText(request.text);
    box.setWindowTitle(request.title);
    box.setIcon(IconOf(request.icon));
    QMessageBox::StandardButton first = QMessageBox::Ok;
    QMessageBox::StandardButton second = QMessageBox::NoButton;
    switch (request.buttons) {
    case MsgButtons::OK:
        break;
    case MsgButtons::OKCancel:
        second = QMessageBox::Cancel;
        break;
    case MsgButtons::YesNo:
        first = QMessageBox::Yes;
        second = QMessageBox::No;
        break;
    }
    box.setStandardButtons(second == QMessageBox::NoButton ? first : (first | second));
    box.setDefaultButton(
        request.defaultButton == MsgDefault::Second && second != QMessageBox::NoButton ? second
                                                                                       : first);
    // The box belongs to no window; keep it above whatever the operator looks at.
    box.setWindowFlag(Qt::WindowStaysOnTopHint);
    // Ctrl+C copies the title and text, to paste an error into a report.
    QObject::connect(
        new QShortcut(QKeySequence::Copy, &box), &QShortcut::activated, &box, [&request] {
            QGuiApplication::clipboard()->setText(request.title + QLatin1Char('\n') + request.text);
        });
    ++showing_;
    const int answer = box.exec();
    --showing_;
    switch (answer) {
    case QMessageBox::Yes:
        return MsgAnswer::Yes;
    case QMessageBox::No:
        return MsgAnswer::No;
    case QMessageBox::Cancel:
        return MsgAnswer::Cancel;
    default:
        return request.buttons == MsgButtons::YesNo ? MsgAnswer::No : MsgAnswer::OK;
    }
}
