#pragma once

class Hostwarden;
class Text_Rate;
class MsgRate;

// Main-window buttons that open the two rate dialogs.
void CMDTextRate_Click(Hostwarden& w);
void CMDMsgRate_Click(Hostwarden& w);

void Text_Rate_Form_Load(Text_Rate& d);
void SlideTextRate_Change(Text_Rate& d);
// OK: the typist takes the new rate from its next tick, and the rate is stored.
void Text_Rate_Command1_Click(Text_Rate& d);
void Text_Rate_Command2_Click(Text_Rate& d);

void MsgRate_Form_Load(MsgRate& d);
void SLDMsgRate_Change(MsgRate& d);
// OK: the rate is stored; the running countdown keeps its rate until the next start.
void MsgRate_CMDOK_Click(MsgRate& d);
void MsgRate_CMDCancel_Click(MsgRate& d);
