#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class Setup;
}
struct AppState;
struct Services;
struct WindowRegistry;

// The first window of every run: asks for the game directory on the first run and
// hands over to the main window.
class Setup : public QWidget {
    Q_OBJECT
public:
    Setup(AppState& state, WindowRegistry& windows, Services& services, QWidget* parent = nullptr);
    ~Setup() override;

    AppState& app;
    WindowRegistry& forms;
    Services& services;
    std::unique_ptr<Ui::Setup> ui;

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
};
