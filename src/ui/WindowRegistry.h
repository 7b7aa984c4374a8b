#pragma once

class Hostwarden;
class QWidget;

// Single instances of the program's windows; null while not loaded.
struct WindowRegistry {
    Hostwarden* MainWindow = nullptr;
    QWidget* Setup = nullptr;
    QWidget* Browse = nullptr;
    QWidget* About = nullptr;
    QWidget* ShippedMaps = nullptr;
    QWidget* CopyConfig = nullptr;
    QWidget* Mods = nullptr;
    QWidget* MsgRate = nullptr;
    QWidget* NewConf = nullptr;
    QWidget* Text_Rate = nullptr;
};
