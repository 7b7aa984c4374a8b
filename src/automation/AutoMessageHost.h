#pragma once

#include <QString>

// What the automatic messages need from the main window. The window implements it by
// reading and setting its controls; its QTimers call the tick functions of AutoMessages.
class AutoMessageHost {
public:
    virtual ~AutoMessageHost() = default;

    // Whether CHKMessage ("Auto Message") is checked.
    virtual bool MessageChecked() = 0;
    // Whether CHKRand ("Randomize Messages") is checked.
    virtual bool RandomChecked() = 0;
    // Whether CHKServRec ("Server Recover") is checked.
    virtual bool ServRecChecked() = 0;
    // The current text of TXTMess(index), index 0 to 3.
    virtual QString MessageText(int index) = 0;
    // Sets the caption of LBLCount.
    virtual void SetCountCaption(const QString& caption) = 0;
    // Starts or stops the TMRAdds timer (the countdown).
    virtual void EnableAddsTimer(bool enabled) = 0;
    // Starts or stops the TMRSend timer (the typist).
    virtual void EnableSendTimer(bool enabled) = 0;
    // Enables or disables the CHKServRec check box.
    virtual void EnableServRec(bool enabled) = 0;
    // Unchecks CHKServRec; the box's own click handler stores the new state.
    virtual void UncheckServRec() = 0;
    // Runs the launch exactly as a click on "Launch" (CMDLaunch_Click) does.
    virtual void Launch() = 0;
    // The current interval of TMRSend in milliseconds.
    virtual int TypistIntervalMs() = 0;
};
