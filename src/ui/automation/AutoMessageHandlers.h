#pragma once

#include "automation/AutoMessageHost.h"

class Hostwarden;

// The main window as the automatic messages see it: its check boxes, message boxes,
// countdown label and timers.
class MainWindowMessageHost : public AutoMessageHost {
public:
    explicit MainWindowMessageHost(Hostwarden& w) : w_(w) {}

    bool MessageChecked() override;
    bool RandomChecked() override;
    bool ServRecChecked() override;
    QString MessageText(int index) override;
    void SetCountCaption(const QString& caption) override;
    void EnableAddsTimer(bool enabled) override;
    void EnableSendTimer(bool enabled) override;
    void EnableServRec(bool enabled) override;
    void UncheckServRec() override;
    void Launch() override;
    int TypistIntervalMs() override;

private:
    Hostwarden& w_;
};

// Seconds of the message countdown and the dispatcher are this many milliseconds long:
// 1000, unless the test-only variable HOSTWARDEN_TEST_SECOND_MS says otherwise.
int MessageSecondMs();
