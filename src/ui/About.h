#pragma once

#include "ui/ButtonsOnlyWindow.h"

#include <memory>

namespace Ui {
class About;
}
class Hostwarden;

// "About-Help": the program's notes, and "Fix Reg", which resets every setting.
class About : public ButtonsOnlyWindow {
    Q_OBJECT
public:
    explicit About(Hostwarden& main);
    ~About() override;

    Hostwarden& main;
    std::unique_ptr<Ui::About> ui;
};
