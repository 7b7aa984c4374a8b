#include "ScriptedMessageBoxes.h"

MsgAnswer ScriptedMessageBoxes::Show(const MessageRequest& request) {
    shown.append(request);
    if (onShow)
        onShow(request);
    if (!answers.isEmpty())
        return answers.takeFirst();
    const bool second = request.defaultButton == MsgDefault::Second;
    switch (request.buttons) {
    case MsgButtons::OK:
        return MsgAnswer::OK;
    case MsgButtons::OKCancel:
        return second ? MsgAnswer::Cancel : MsgAnswer::OK;
    case MsgButtons::YesNo:
        return second ? MsgAnswer::No : MsgAnswer::Yes;
    }
    return MsgAnswer::OK;
}
