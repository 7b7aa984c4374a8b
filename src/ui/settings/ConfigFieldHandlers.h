#pragma once

class Hostwarden;

// Game type options.
void OPTCTF_Click(Hostwarden& w);
void OPTDM_Click(Hostwarden& w);
void OPTTDM_Click(Hostwarden& w);

// Limit and rule-switch drop-downs, raised when an item of the list is chosen.
void MaxPlayers_Click(Hostwarden& w);
void MaxTime_Click(Hostwarden& w);
void MaxKills_Click(Hostwarden& w);
void MaxCaps_Click(Hostwarden& w);
void MaxGeo_Click(Hostwarden& w);
void TeamDamage_Click(Hostwarden& w);
void FallDamage_Click(Hostwarden& w);
void WeaponStay_Click(Hostwarden& w);
void ForceSpawn_Click(Hostwarden& w);
void Balance_Click(Hostwarden& w);

// Text fields.
void TXTServName_Change(Hostwarden& w);
void TXTPassword_Change(Hostwarden& w);
void TXTRconPass_Change(Hostwarden& w);
void TXTSTat_Change(Hostwarden& w);
void TXTMess_Change(Hostwarden& w);
void TXTMod_Change(Hostwarden& w);

void Image1_Click(Hostwarden& w);
