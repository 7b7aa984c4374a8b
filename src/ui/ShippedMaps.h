#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class ShippedMaps;
} // namespace Ui
class Hostwarden;

// "Select Maps": picks levels from the stock archive or the custom packs for the rotation.
class ShippedMaps : public QWidget {
    Q_OBJECT
public:
    explicit ShippedMaps(Hostwarden& main);
    ~ShippedMaps() override;

    Hostwarden& main;
    std::unique_ptr<Ui::ShippedMaps> ui;

protected:
    void closeEvent(QCloseEvent* event) override;
};
