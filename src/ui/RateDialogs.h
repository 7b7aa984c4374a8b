#pragma once

#include "ui/ButtonsOnlyWindow.h"

#include <memory>

namespace Ui {
class Text_Rate;
class MsgRate;
} // namespace Ui
class Hostwarden;

// "Set Text Rate": milliseconds between typed characters.
class Text_Rate : public ButtonsOnlyWindow {
    Q_OBJECT
public:
    explicit Text_Rate(Hostwarden& main);
    ~Text_Rate() override;

    Hostwarden& main;
    std::unique_ptr<Ui::Text_Rate> ui;
};

// "Message Rate": minutes between automatic message batches.
class MsgRate : public ButtonsOnlyWindow {
    Q_OBJECT
public:
    explicit MsgRate(Hostwarden& main);
    ~MsgRate() override;

    Hostwarden& main;
    std::unique_ptr<Ui::MsgRate> ui;
};
