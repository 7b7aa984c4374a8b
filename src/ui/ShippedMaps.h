#pragma once

#include "ui/ButtonsOnlyWindow.h"

#include <memory>

namespace Ui {
class ShippedMaps;
} // namespace Ui
class Hostwarden;

// "Select Maps": picks levels from the stock archive or the custom packs for the rotation.
class ShippedMaps : public ButtonsOnlyWindow {
    Q_OBJECT
public:
    explicit ShippedMaps(Hostwarden& main);
    ~ShippedMaps() override;

    Hostwarden& main;
    std::unique_ptr<Ui::ShippedMaps> ui;
};
