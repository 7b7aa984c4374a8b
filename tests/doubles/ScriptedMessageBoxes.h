#pragma once

#include "platform/MessageBoxes.h"

#include <QList>

#include <functional>

// Records every message box and answers from a script. With the script used up it
// answers the box's default button.
class ScriptedMessageBoxes : public MessageBoxes {
public:
    MsgAnswer Show(const MessageRequest& request) override {
        shown.append(request);
        if (onShow)
            onShow(request);
        if (!answers.isEmpty())
            return answers.takeFirst();
        const bool second = request.defaultButton == MsgDefault::Second;
        if (request.buttons == MsgButtons::YesNo)
            return second ? MsgAnswer::No : MsgAnswer::Yes;
        return second && request.buttons == MsgButtons::OKCancel ? MsgAnswer::Cancel
                                                                 : MsgAnswer::OK;
    }

    void Notify(const MessageRequest& request) override { notices.append(request); }
    bool IsShowing() override { return false; }

    QList<MessageRequest> shown, notices;
    QList<MsgAnswer> answers;
    // Runs while a box is "open", before it is answered (e.g. to look at the windows).
    std::function<void(const MessageRequest&)> onShow;
};
