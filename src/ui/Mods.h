#pragma once

#include "ui/ButtonsOnlyWindow.h"

#include <memory>

namespace Ui {
class Mods;
}
class Hostwarden;

// "Select a mod from the list": the usable mods of the game directory.
class Mods : public ButtonsOnlyWindow {
    Q_OBJECT
public:
    explicit Mods(Hostwarden& main);
    ~Mods() override;

    Hostwarden& main;
    std::unique_ptr<Ui::Mods> ui;
};
