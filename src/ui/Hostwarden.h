#pragma once

#include "server/AppState.h"

#include <QTimer>
#include <QWidget>

#include <array>
#include <cstdint>
#include <memory>

namespace Ui {
class Hostwarden;
}
class QButtonGroup;
class QLineEdit;
struct Services;

// The main window. It creates its controls and connects their signals to the
// handlers; the handlers themselves live with the subsystem they belong to.
class Hostwarden : public QWidget {
    Q_OBJECT
public:
    Hostwarden(AppState& state, Services& services, QWidget* parent = nullptr);
    ~Hostwarden() override;

    AppState& app;
    Services& services;
    std::unique_ptr<Ui::Hostwarden> ui;
    std::array<QLineEdit*, 4> TXTMess{};
    QButtonGroup* gameType = nullptr;

    QTimer Timer1;
    QTimer TMRAdds;
    QTimer TMRSend;
    std::int32_t ServerHandle = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void Connect();
};
