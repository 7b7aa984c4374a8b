#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class About;
}
class Hostwarden;

// "About-Help": the program's notes, and "Fix Reg", which resets every setting.
class About : public QWidget {
    Q_OBJECT
public:
    explicit About(Hostwarden& main);
    ~About() override;

    Hostwarden& main;
    std::unique_ptr<Ui::About> ui;

protected:
    void closeEvent(QCloseEvent* event) override;
};
