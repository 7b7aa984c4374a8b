#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class Mods;
}
class Hostwarden;

// "Select a mod from the list": the usable mods of the game directory.
class Mods : public QWidget {
    Q_OBJECT
public:
    explicit Mods(Hostwarden& main);
    ~Mods() override;

    Hostwarden& main;
    std::unique_ptr<Ui::Mods> ui;

protected:
    void closeEvent(QCloseEvent* event) override;
};
